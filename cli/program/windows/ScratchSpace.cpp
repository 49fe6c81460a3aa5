#include "cli/program/ScratchSpace.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <windows.h>

#include "cli/program/Interrupt.h"
#include "cli/program/WholeFile.h"
#include "words/text/Path.h"

namespace harvlink::cli {

namespace filesystem = std::filesystem;
using words::TextOf;

namespace {

constexpr std::string_view Prefix = ".harvlink-scratch-";
constexpr char const* LockName = "lock";

struct Held {
    filesystem::path folder;
    HANDLE lock = INVALID_HANDLE_VALUE; ///< a file in it, which is gone when the process is, however it ends
};

/// The folders that live, for the handler of Ctrl-C, which runs on a thread of its own.
struct Living {
    std::mutex mutex;
    std::vector<Held> folders;
};

Living& All() {
    static auto* const all = new Living; // NOLINT(cppcoreguidelines-owning-memory): the handler may run at the very end
    return *all;
}

/// As <cerrno> names it; EIO for what has no name there.
int CodeOf(std::error_code const& error) {
    std::error_condition const condition = error.default_error_condition();
    return condition.category() == std::generic_category() ? condition.value() : EIO;
}

[[noreturn]] void Fail(filesystem::path const& path, DWORD error) {
    throw FileError("can't write", path, CodeOf({static_cast<int>(error), std::system_category()}));
}

HANDLE Lock(filesystem::path const& folder) {
    return ::CreateFileW((folder / LockName).c_str(), DELETE, 0, nullptr, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE,
                         nullptr);
}

/// Whether all that is in a folder is what an interrupted command had not finished. A snapshot that was moved away is not.
bool IsWorthless(filesystem::path const& folder) {
    std::error_code error;
    for (filesystem::directory_iterator each(folder, error); !error && each != filesystem::directory_iterator();
         each.increment(error)) {
        std::string const name = TextOf(each->path().filename());
        if (name != "transfer" && name != "finished" && name != LockName) {
            return false;
        }
    }
    return !error;
}

void RemoveLeftovers(filesystem::path const& parent) {
    std::error_code error;
    for (filesystem::directory_iterator each(parent, error); !error && each != filesystem::directory_iterator();
         each.increment(error)) {
        bool const isScratch = TextOf(each->path().filename()).starts_with(Prefix);
        HANDLE const lock = isScratch ? Lock(each->path()) : INVALID_HANDLE_VALUE;
        if (lock != INVALID_HANDLE_VALUE) {
            bool const isWorthless = IsWorthless(each->path());
            ::CloseHandle(lock);
            std::error_code ignored;
            if (isWorthless) {
                filesystem::remove_all(each->path(), ignored);
            }
        }
    }
}

void Flush(filesystem::path const& path) {
    HANDLE const file = ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        Fail(path, ::GetLastError());
    }
    ::FlushFileBuffers(file);
    ::CloseHandle(file);
}

} // namespace

ScratchSpace::ScratchSpace(filesystem::path const& parent) {
    RemoveLeftovers(parent);
    SignalsHeldBack const untilItIsNoted;
    std::random_device random;
    HANDLE lock = INVALID_HANDLE_VALUE;
    // Another process may take the new folder for a leftover before it is locked.
    for (int attempt = 0; lock == INVALID_HANDLE_VALUE && attempt < 10; ++attempt) {
        path_ = parent / fmt::format("{}{:08x}", Prefix, random());
        std::error_code error;
        if (!filesystem::create_directory(path_, error) && error) {
            throw FileError("can't write into", parent, CodeOf(error));
        }
        lock = Lock(path_);
    }
    ::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_HIDDEN);
    std::scoped_lock const guard(All().mutex);
    All().folders.push_back({path_, lock});
}

ScratchSpace::~ScratchSpace() {
    SignalsHeldBack const untilItIsGone;
    std::scoped_lock const guard(All().mutex);
    auto const held = std::ranges::find(All().folders, path_, &Held::folder);
    ::CloseHandle(held->lock);
    All().folders.erase(held);
    if (!isKept_) {
        std::error_code ignored;
        filesystem::remove_all(path_, ignored);
    }
}

// Unlike elsewhere, a link is replaced: they are rare here.
void ScratchSpace::MoveFileTo(filesystem::path const& target, bool overwrite) const {
    Flush(File());
    DWORD const how = MOVEFILE_WRITE_THROUGH | (overwrite ? MOVEFILE_REPLACE_EXISTING : 0U);
    if (::MoveFileExW(File().c_str(), target.c_str(), how) == 0) {
        Fail(target, ::GetLastError());
    }
}

// A folder that holds more, such as a snapshot that is half written, stays for the next process to remove.
void ScratchSpace::RemoveAtSignal() {
    std::scoped_lock const lock(All().mutex);
    for (Held const& each : All().folders) {
        std::error_code ignored;
        ::CloseHandle(each.lock);
        filesystem::remove(each.folder / "transfer", ignored);
        filesystem::remove(each.folder, ignored);
    }
}

/// There is no call for a folder: each file in it is flushed.
void FlushFolder(filesystem::path const& folder) {
    std::error_code error;
    for (filesystem::recursive_directory_iterator each(folder, error);
         !error && each != filesystem::recursive_directory_iterator(); each.increment(error)) {
        if (filesystem::is_regular_file(each->path())) {
            Flush(each->path());
        }
    }
    if (error) {
        throw FileError("can't write", folder, CodeOf(error));
    }
}

} // namespace harvlink::cli
