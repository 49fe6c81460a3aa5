#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace harvlink::cli {

/// What the library has written to its log file since this object was made. The file is in the working directory; the
/// library writes only failures of motion, which no caller gets.
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
