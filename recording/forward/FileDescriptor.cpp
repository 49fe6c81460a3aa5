#include "recording/forward/FileDescriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace harvlink::recording {

namespace {

constexpr mode_t ForOwner = 0600; // what a plant does is nobody else's business

} // namespace

FileDescriptor::FileDescriptor(std::filesystem::path const& path)
    : descriptor_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ForOwner)), error_(descriptor_ < 0 ? errno : 0) {}

FileDescriptor::~FileDescriptor() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

int FileDescriptor::WriteAt(std::uint64_t place, std::string_view bytes) const {
    if (error_ != 0) {
        return error_;
    }
    while (!bytes.empty()) {
        auto const count = pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(place));
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        if (count > 0) {
            place += static_cast<std::uint64_t>(count);
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    return fdatasync(descriptor_) == 0 ? 0 : errno;
}

void FileDescriptor::CutTo(std::uint64_t size) const {
    if (descriptor_ >= 0 && ftruncate(descriptor_, static_cast<off_t>(size)) != 0) {
        return; // what stays behind is not a whole entry, or has the number of one that is there: readers pass over both
    }
}

int SyncFolder(std::filesystem::path const& folder) {
    int const descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return errno;
    }
    int const error = fsync(descriptor) == 0 ? 0 : errno;
    close(descriptor);
    return error;
}

} // namespace harvlink::recording
