#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace harvlink::test {

/// A temporary folder for one test. It is the working directory during the lifetime of this object.
class ScratchFolder {
public:
    ScratchFolder() : previous(std::filesystem::current_path()) {
        static std::atomic<unsigned> number = 0;
        auto const now = std::chrono::system_clock::now().time_since_epoch().count();
        path = std::filesystem::temp_directory_path() /
               ("harvlink-test-" + std::to_string(now) + '-' + std::to_string(std::random_device{}()) + '-' +
                std::to_string(++number));
        if (!std::filesystem::create_directory(path)) {
            throw std::runtime_error("TMPDIR: no folder can be made as " + path.string());
        }
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
