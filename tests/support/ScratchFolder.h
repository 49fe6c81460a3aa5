#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace harvlink::test {

/// A temporary folder for one test. It is the working directory during the lifetime of this object.
class ScratchFolder {
public:
    ScratchFolder() : previous(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "harvlink-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), "TMPDIR: no folder can be made as " + name);
        }
        path = name;
        std::filesystem::current_path(path);
    }
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::current_path(previous, ignored);
        std::filesystem::remove_all(path, ignored);
    }

    std::filesystem::path const& Path() const { return path; }

private:
    std::filesystem::path previous;
    std::filesystem::path path;
};

inline std::string ContentOf(std::filesystem::path const& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteFile(std::filesystem::path const& file, std::string const& content) {
    std::ofstream(file, std::ios::binary) << content;
}

} // namespace harvlink::test
