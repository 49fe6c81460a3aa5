#include "cli/program/ScratchSpace.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <linux/limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/program/Interrupt.h"
#include "cli/program/WholeFile.h"

namespace harvlink::cli {

namespace filesystem = std::filesystem;

namespace {

constexpr std::string_view Prefix = ".harvlink-scratch-";

void SetPath(std::array<char, PATH_MAX>& to, std::string const& path) {
    to[0] = '\0';
    if (path.size() < to.size()) {
        // The first byte comes last, so that a handler never sees half a path.
        std::copy_n(path.data() + (path.empty() ? 0 : 1), std::max<std::size_t>(path.size(), 1) - 1, to.begin() + 1);
        to.at(std::max<std::size_t>(path.size(), 1)) = '\0';
        std::atomic_signal_fence(std::memory_order_release);
        to[0] = path.empty() ? '\0' : path[0];
    }
}

[[noreturn]] void Fail(char const* what, filesystem::path const& path) {
    throw FileError(what, path, errno);
}

/// The descriptor of a folder with the only lock on it, or -1.
int Lock(filesystem::path const& folder) {
    int const descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

/// Whether all that is in a folder is what an interrupted command had not finished. A snapshot that was moved away is not.
bool IsWorthless(filesystem::path const& folder) {
    std::error_code error;
    for (filesystem::directory_iterator each(folder, error); !error && each != filesystem::directory_iterator();
         each.increment(error)) {
        std::string const name = each->path().filename().string();
        if (name != "transfer" && name != "finished") {
            return false;
        }
    }
    return !error;
}

void RemoveLeftovers(filesystem::path const& parent) {
    std::error_code error;
    for (filesystem::directory_iterator each(parent, error); !error && each != filesystem::directory_iterator();
         each.increment(error)) {
        bool const isScratch = each->path().filename().string().starts_with(Prefix);
        int const lock = isScratch ? Lock(each->path()) : -1;
        if (lock >= 0) {
            std::error_code ignored;
            if (IsWorthless(each->path())) {
                filesystem::remove_all(each->path(), ignored);
            }
            ::close(lock);
        }
    }
}

void Flush(filesystem::path const& path, int flags) {
    int const descriptor = ::open(path.c_str(), flags | O_CLOEXEC);
    bool const isFlushed = descriptor >= 0 && (::fsync(descriptor) == 0 || errno == EINVAL);
    int const error = errno;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (!isFlushed) {
        errno = error;
        Fail("can't write", path);
    }
}

} // namespace

/// The paths of a folder that lives, for a signal handler. Empty: none. They are used again and never freed, so that a handler
/// can look at all of them at any time.
struct ScratchSpace::SignalPaths {
    std::array<char, PATH_MAX> file{};
    std::array<char, PATH_MAX> folder{};
    std::atomic<bool> isTaken = true;
    SignalPaths* next = nullptr;

    static SignalPaths& Take() {
        for (SignalPaths* each = all.load(); each != nullptr; each = each->next) {
            if (!each->isTaken.exchange(true)) {
                return *each;
            }
        }
        auto* const added = new SignalPaths; // NOLINT(cppcoreguidelines-owning-memory): never freed, see above
        added->next = all.load();
        while (!all.compare_exchange_weak(added->next, added)) {
        }
        return *added;
    }

    // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a signal handler reaches nothing else
    static std::atomic<SignalPaths*> all;
};
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): see above
std::atomic<ScratchSpace::SignalPaths*> ScratchSpace::SignalPaths::all = nullptr;

ScratchSpace::ScratchSpace(filesystem::path const& parent) {
    RemoveLeftovers(parent);
    SignalsHeldBack const untilItIsNoted;
    // Another process may take the new folder for a leftover before it is locked.
    for (int attempt = 0; lock_ < 0 && attempt < 10; ++attempt) {
        ::rmdir(path_.c_str()); // of a file system that has no locks
        std::string name = (parent / (std::string(Prefix) + "XXXXXX")).string();
        if (::mkdtemp(name.data()) == nullptr) {
            Fail("can't write into", parent);
        }
        lock_ = Lock(name);
        std::error_code ignored;
        if (lock_ >= 0 && !filesystem::exists(name, ignored)) {
            ::close(lock_);
            lock_ = -1;
        }
        path_ = name;
    }
    signalPaths_ = &SignalPaths::Take();
    SetPath(signalPaths_->file, File().string());
    SetPath(signalPaths_->folder, path_.string());
}

ScratchSpace::~ScratchSpace() {
    // A signal removes one file and the folder. While more than that is being removed it has to wait.
    SignalsHeldBack const untilItIsGone;
    if (!isKept_) {
        std::error_code ignored;
        filesystem::remove_all(path_, ignored);
    }
    SetPath(signalPaths_->folder, "");
    SetPath(signalPaths_->file, "");
    signalPaths_->isTaken = false;
    if (lock_ >= 0) {
        ::close(lock_);
    }
}

void ScratchSpace::MoveFileTo(filesystem::path const& target, bool overwrite) const {
    Flush(File(), O_RDONLY);
    std::error_code error;
    bool const exists = filesystem::exists(filesystem::symlink_status(target, error));
    if (exists && !overwrite) {
        errno = EEXIST;
        Fail("can't write", target);
    }
    filesystem::path const place = exists ? filesystem::weakly_canonical(target) : target;
    struct stat former {};
    if (exists && ::stat(place.c_str(), &former) == 0) {
        ::chmod(File().c_str(), former.st_mode & 07777U);
    }
    // Linking never replaces a file that has come meanwhile; not every file system can do it.
    bool const isLinked = !overwrite && ::link(File().c_str(), place.c_str()) == 0;
    if (!isLinked && ((!overwrite && errno == EEXIST) || ::rename(File().c_str(), place.c_str()) != 0)) {
        Fail("can't write", target);
    }
    if (isLinked) {
        ::unlink(File().c_str());
    }
    Flush(place.has_parent_path() ? place.parent_path() : ".", O_RDONLY | O_DIRECTORY);
}

void ScratchSpace::RemoveAtSignal() {
    for (SignalPaths* each = SignalPaths::all.load(); each != nullptr; each = each->next) {
        if (each->folder[0] != '\0') {
            ::unlink(each->file.data());
            ::rmdir(each->folder.data());
        }
    }
}

void FlushFolder(filesystem::path const& folder) {
    int const descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    bool const isFlushed = descriptor >= 0 && ::syncfs(descriptor) == 0;
    int const error = errno;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (!isFlushed) {
        throw FileError("can't write", folder, error);
    }
}

} // namespace harvlink::cli
