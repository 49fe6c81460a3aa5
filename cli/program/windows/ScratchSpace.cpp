#include "cli/program/ScratchSpace.h"

#include <cerrno>
#include <fstream>
#include <mutex>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <windows.h>

#include "words/text/Path.h"

namespace harvlink::cli {

namespace filesystem = std::filesystem;

namespace {

constexpr std::string_view Prefix = ".harvlink-scratch-";

/// The folders that live, for the handler of Ctrl-C, which runs on a thread of its own.
struct Living {
    std::mutex mutex;
    std::vector<filesystem::path> folders;
};

Living& All() {
    static auto* const all = new Living; // NOLINT(cppcoreguidelines-owning-memory): the handler may run at the very end
    return *all;
}

[[noreturn]] void Fail(filesystem::path const& path, int code) {
    throw FileError("can't write", path, code);
}

int CodeOf(DWORD error) {
    return std::error_code(static_cast<int>(error), std::system_category()).default_error_condition().value();
}

void Flush(filesystem::path const& path) {
    HANDLE const file = ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        Fail(path, CodeOf(::GetLastError()));
    }
    ::FlushFileBuffers(file);
    ::CloseHandle(file);
}

} // namespace

struct ScratchSpace::SignalPaths {};

FileError::FileError(std::string_view what, filesystem::path const& path, int code)
    : std::runtime_error(fmt::format("{} {}: {}", what, TextOf(path), std::generic_category().message(code))),
      code_(code) {}

ScratchSpace::ScratchSpace(filesystem::path const& parent) {
    std::random_device random;
    std::error_code error;
    do {
        path_ = parent / fmt::format("{}{:08x}", Prefix, random());
    } while (!filesystem::create_directory(path_, error) && !error);
    if (error) {
        throw FileError("can't write into", parent, error.default_error_condition().value());
    }
    std::scoped_lock const lock(All().mutex);
    All().folders.push_back(path_);
}

ScratchSpace::~ScratchSpace() {
    std::scoped_lock const lock(All().mutex);
    std::erase(All().folders, path_);
    if (!isKept_) {
        std::error_code ignored;
        filesystem::remove_all(path_, ignored);
    }
}

void ScratchSpace::MoveFileTo(filesystem::path const& target, bool overwrite) const {
    Flush(File());
    DWORD const how = MOVEFILE_WRITE_THROUGH | (overwrite ? MOVEFILE_REPLACE_EXISTING : 0U);
    if (::MoveFileExW(File().c_str(), target.c_str(), how) == 0) {
        Fail(target, CodeOf(::GetLastError()));
    }
}

void ScratchSpace::RemoveAtSignal() {
    std::scoped_lock const lock(All().mutex);
    for (filesystem::path const& each : All().folders) {
        std::error_code ignored;
        filesystem::remove_all(each, ignored);
    }
}

void WriteNewFile(filesystem::path const& path, std::string_view text) {
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file) {
        Fail(path, errno == 0 ? EIO : errno);
    }
}

void WriteWholeFile(filesystem::path const& path, std::string_view text, bool overwrite) {
    std::error_code error;
    filesystem::file_status const status = filesystem::status(path, error);
    if (filesystem::exists(status) && !filesystem::is_regular_file(status)) {
        WriteNewFile(path, text);
        return;
    }
    ScratchSpace const scratch(path.has_parent_path() ? path.parent_path() : ".");
    WriteNewFile(scratch.File(), text);
    scratch.MoveFileTo(path, overwrite);
}

} // namespace harvlink::cli
