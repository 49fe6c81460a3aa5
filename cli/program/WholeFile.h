#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <stdexcept>
#include <string_view>

namespace harvlink::cli {

/// A file of this computer could not be written.
class FileError : public std::runtime_error {
public:
    FileError(std::string_view what, std::filesystem::path const& path, int code);

    int Code() const { return code_; } ///< of the operating system

private:
    int code_;
};

/// Writes a file at its place, for what is moved as a whole later. Throws FileError.
void WriteNewFile(std::filesystem::path const& path, std::string_view text);

/// Writes a file as a ScratchSpace does; a device or a pipe directly, whatever `overwrite` is. Throws FileError.
void WriteWholeFile(std::filesystem::path const& path, std::string_view text, bool overwrite);
void WriteWholeFile(std::filesystem::path const& path, std::function<void(std::ostream&)> const& write, bool overwrite);

} // namespace harvlink::cli
