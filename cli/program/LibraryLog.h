#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace harvlink::cli {

/// What the library has added to its log file since this was made. It writes the file into the working directory, and
/// only failures that no caller learns of.
class LibraryLog {
public:
    LibraryLog();

    /// Absolute, so that it can be found.
    std::filesystem::path const& Path() const { return path_; }

    /// Empty if nothing was added.
    std::string Added() const;

private:
    std::filesystem::path path_;
    std::uintmax_t start_ = 0;
};

} // namespace harvlink::cli
