#pragma once

#include <filesystem>

namespace harvlink::cli::snapshot {

/// A new folder in `parent`. The destructor removes it with all that is still in it, unless Keep was called.
class ScratchFolder {
public:
    /// Throws InputError if the program can't write there.
    explicit ScratchFolder(std::filesystem::path const& parent);
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;
    ~ScratchFolder();

    std::filesystem::path const& Path() const { return path_; }

    /// Lets the destructor leave the folder where it is.
    void Keep() { isKept_ = true; }

private:
    std::filesystem::path path_;
    bool isKept_ = false;
};

/// The path of a snapshot to be written, without links and closing slashes. Throws InputError if its parent does not exist,
/// or if the folder exists and is not empty. With `force` it may be a snapshot with nothing else in it.
std::filesystem::path CheckTarget(std::filesystem::path const& target, bool force);

/// Moves a finished folder to its place. What was there is moved into `scratch` first, and back if the move fails. If it
/// can't be moved back, it stays in `scratch`, which is kept. Throws std::filesystem::filesystem_error.
void MoveInto(std::filesystem::path const& finished, std::filesystem::path const& target, ScratchFolder& scratch);

} // namespace harvlink::cli::snapshot
