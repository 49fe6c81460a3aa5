#pragma once

#include <filesystem>

namespace harvlink::cli::snapshot {

/// A folder of our own in `parent`, gone at the end of the scope with all that is still in it, unless it is to be kept.
class ScratchFolder {
public:
    /// Throws InputError if nothing can be written there.
    explicit ScratchFolder(std::filesystem::path const& parent);
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;
    ~ScratchFolder();

    std::filesystem::path const& Path() const { return path_; }

    /// At the end of the scope, leaves the folder where it is.
    void Keep() { isKept_ = true; }

private:
    std::filesystem::path path_;
    bool isKept_ = false;
};

/// The place of a snapshot, without links and closing slashes. Throws InputError if it can't be one: its parent does not
/// exist, or it is there and is not empty, unless it is a snapshot with nothing else in it and `force` is given.
std::filesystem::path CheckTarget(std::filesystem::path const& target, bool force);

/// Moves a finished folder to its place. What was there is moved into `scratch` first, and back if the move fails;
/// where that fails too, it stays in `scratch`, which is kept. Throws std::filesystem::filesystem_error.
void MoveInto(std::filesystem::path const& finished, std::filesystem::path const& target, ScratchFolder& scratch);

} // namespace harvlink::cli::snapshot
