#include "recording/store/FileLock.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "recording/store/Database.h"

namespace harvlink::recording {

FileLock::FileLock(std::filesystem::path const& recording) : path_(NameFor(recording)) {
    // The owner before may remove its file between our opening and locking it.
    constexpr int MostTries = 100;
    for (int attempt = 0; attempt < MostTries; ++attempt) {
        if (TryLock()) {
            return;
        }
    }
    throw Busy(fmt::format("{}: other recorders keep opening this file; try again", recording.string()));
}

bool FileLock::TryLock() {
    constexpr mode_t ForAll = 0644;
    descriptor_ = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ForAll);
    if (descriptor_ < 0) {
        throw RecordingError(fmt::format("can't write {}: {}", path_.string(), std::strerror(errno)));
    }
    if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
        close(descriptor_);
        std::string const name = path_.string();
        throw Busy(fmt::format("{}: another recorder writes this file", name.substr(0, name.size() - 5)));
    }
    struct stat own {};
    struct stat current {};
    bool const isSame = fstat(descriptor_, &own) == 0 && stat(path_.c_str(), &current) == 0 &&
                        own.st_ino == current.st_ino && own.st_dev == current.st_dev;
    if (!isSame) {
        close(descriptor_);
    }
    return isSame;
}

FileLock::~FileLock() {
    unlink(path_.c_str());
    close(descriptor_);
}

} // namespace harvlink::recording
