#include "cli/program/LibraryLog.h"

#include <fstream>
#include <iterator>
#include <system_error>

namespace harvlink::cli {

namespace {

std::filesystem::path LogPath() {
    std::error_code error;
    return std::filesystem::absolute("HarvlinkLog.txt", error);
}

} // namespace

LibraryLog::LibraryLog() : path_(LogPath()) {
    std::error_code error;
    std::uintmax_t const size = std::filesystem::file_size(path_, error);
    start_ = error ? 0 : size;
}

std::string LibraryLog::Added() const {
    std::ifstream file(path_, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(start_));
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "";
}

} // namespace harvlink::cli
