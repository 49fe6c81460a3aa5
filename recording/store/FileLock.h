#pragma once

#include <cstdint>
#include <filesystem>

#include "words/text/Path.h"

namespace harvlink::recording {

/// Keeps a second recorder from a file: one that is ended by any means lets go. It lies beside the file, because closing a
/// second descriptor of the file itself would end the locks of SQLite in this process.
class FileLock {
public:
    /// Throws Busy if another recorder has the file, RecordingError if the folder can't be written.
    explicit FileLock(std::filesystem::path const& recording);
    FileLock(FileLock const&) = delete;
    FileLock& operator=(FileLock const&) = delete;
    ~FileLock();

    /// Is there from before the recording is until after it has ended, and stays if its recorder is killed.
    static std::filesystem::path NameFor(std::filesystem::path const& recording) {
        return words::Beside(recording, "-lock");
    }

private:
    std::filesystem::path path_;
    std::intptr_t file_ = -1; ///< descriptor or handle of the system
};

} // namespace harvlink::recording
