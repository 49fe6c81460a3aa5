#include "cli/program/WholeFile.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>

#include <fmt/format.h>

#include "cli/program/ScratchSpace.h"
#include "words/text/Path.h"

namespace harvlink::cli {

namespace filesystem = std::filesystem;

namespace {

void WriteNewFileWith(filesystem::path const& path, std::function<void(std::ostream&)> const& write) {
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    if (file) {
        write(file);
        file.flush();
    }
    if (!file) {
        throw FileError("can't write", path, errno == 0 ? EIO : errno);
    }
}

} // namespace

FileError::FileError(std::string_view what, filesystem::path const& path, int code)
    : std::runtime_error(fmt::format("{} {}: {}", what, words::TextOf(path), std::generic_category().message(code))),
      code_(code) {}

void WriteNewFile(filesystem::path const& path, std::string_view text) {
    WriteNewFileWith(path, [text](std::ostream& file) { file << text; });
}

void WriteWholeFile(filesystem::path const& path, std::string_view text, bool overwrite) {
    WriteWholeFile(
        path, [text](std::ostream& file) { file << text; }, overwrite);
}

void WriteWholeFile(filesystem::path const& path, std::function<void(std::ostream&)> const& write, bool overwrite) {
    std::error_code error;
    filesystem::file_status const status = filesystem::status(path, error);
    if (filesystem::exists(status) && !filesystem::is_regular_file(status)) {
        WriteNewFileWith(path, write);
        return;
    }
    // A link is followed before the folder is made: a file can't be moved to another file system.
    filesystem::path const place = filesystem::exists(status) ? filesystem::weakly_canonical(path) : path;
    ScratchSpace const scratch(place.has_parent_path() ? place.parent_path() : ".");
    WriteNewFileWith(scratch.File(), write);
    scratch.MoveFileTo(place, overwrite);
}

} // namespace harvlink::cli
