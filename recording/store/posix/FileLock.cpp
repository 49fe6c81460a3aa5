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

namespace {

/// Opens and locks the file of the lock. -1: its owner has removed it in between.
int TryLock(std::filesystem::path const& path, std::filesystem::path const& recording) {
    constexpr mode_t ForAll = 0644;
    int const descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ForAll);
    if (descriptor < 0) {
        throw RecordingError(fmt::format("can't write {}: {}", path.string(), std::strerror(errno)));
    }
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        close(descriptor);
        throw Busy(fmt::format("{}: another recorder writes this file", recording.string()));
    }
    struct stat own {};
    struct stat current {};
    bool const isSame = fstat(descriptor, &own) == 0 && stat(path.c_str(), &current) == 0 &&
                        own.st_ino == current.st_ino && own.st_dev == current.st_dev;
    if (!isSame) {
        close(descriptor);
    }
    return isSame ? descriptor : -1;
}

} // namespace

FileLock::FileLock(std::filesystem::path const& recording) : path_(NameFor(recording)) {
    constexpr int MostTries = 100;
    for (int attempt = 0; attempt < MostTries; ++attempt) {
        file_ = TryLock(path_, recording);
        if (file_ >= 0) {
            return;
        }
    }
    throw Busy(fmt::format("{}: other recorders keep opening this file; try again", recording.string()));
}

FileLock::~FileLock() {
    unlink(path_.c_str());
    close(static_cast<int>(file_));
}

} // namespace harvlink::recording
