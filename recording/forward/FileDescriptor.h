#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace harvlink::recording {

/// An open file of the system, made if it does not exist.
class FileDescriptor {
public:
    explicit FileDescriptor(std::filesystem::path const& path);
    FileDescriptor(FileDescriptor const&) = delete;
    FileDescriptor& operator=(FileDescriptor const&) = delete;
    ~FileDescriptor();

    /// Writes and waits until the disk has it. Returns 0 or the error of the system, also of opening.
    int WriteAt(std::uint64_t place, std::string_view bytes) const;

    void CutTo(std::uint64_t size) const;

private:
    int descriptor_;
    int error_; ///< of opening
};

/// Waits until the disk has the names of the files of a folder. Returns 0 or the error of the system.
int SyncFolder(std::filesystem::path const& folder);

} // namespace harvlink::recording
