#pragma once

#include <filesystem>

namespace harvlink::cli {

/// A new hidden folder beside the files that are to be written. A file is written in it first, so a full disk or Ctrl-C leaves
/// neither a part of a new file nor a damaged old one. The destructor removes it with all that is still in it, unless Keep was
/// called. What another process left there when it was killed is removed by the next.
class ScratchSpace {
public:
    /// Throws FileError if the program can't write there.
    explicit ScratchSpace(std::filesystem::path const& parent);
    ScratchSpace(ScratchSpace const&) = delete;
    ScratchSpace& operator=(ScratchSpace const&) = delete;
    ~ScratchSpace();

    std::filesystem::path const& Path() const { return path_; }

    /// For one file at a time. It is removed if a signal ends the process.
    std::filesystem::path File() const { return path_ / "transfer"; }

    /// Flushes File() to the disk and moves it to `target`. A link is followed, and a file that is replaced keeps its mode; on
    /// Windows a link is replaced. Throws FileError; without `overwrite` also if `target` exists.
    void MoveFileTo(std::filesystem::path const& target, bool overwrite) const;

    /// Lets the destructor leave the folder where it is.
    void Keep() { isKept_ = true; }

    /// Removes the files and the folders of those that live. A signal handler may call it.
    static void RemoveAtSignal();

private:
    std::filesystem::path path_;
#if !defined(_WIN32)
    struct SignalPaths;

    SignalPaths* signalPaths_ = nullptr;
    int lock_ = -1; ///< on the folder, as long as the process lives
#endif
    bool isKept_ = false;
};

/// Flushes all that was written below a folder to the disk. Throws FileError.
void FlushFolder(std::filesystem::path const& folder);

} // namespace harvlink::cli
