#include "recording/capture/CaptureFormat.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

#include <fmt/format.h>

#include "recording/model/RecordingError.h"

namespace harvlink::recording {

std::FILE* OpenCapture(std::filesystem::path const& path) {
    std::FILE* const file = std::fopen(path.c_str(), "rbe");
    if (file == nullptr) {
        throw RecordingError(fmt::format("can't read {}: {}", path.string(), std::strerror(errno)));
    }
    return file;
}

bool IsCapture(std::filesystem::path const& path) {
    // Classic captures in both byte orders with times in micro- and nanoseconds, and the new format.
    constexpr std::array<std::array<unsigned char, 4>, 5> Beginnings{{{0xA1, 0xB2, 0xC3, 0xD4},
                                                                      {0xD4, 0xC3, 0xB2, 0xA1},
                                                                      {0xA1, 0xB2, 0x3C, 0x4D},
                                                                      {0x4D, 0x3C, 0xB2, 0xA1},
                                                                      {0x0A, 0x0D, 0x0D, 0x0A}}};
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(OpenCapture(path), std::fclose);
    std::array<unsigned char, 4> first{};
    bool const isWhole = std::fread(first.data(), first.size(), 1, file.get()) == 1;
    return isWhole && std::find(Beginnings.begin(), Beginnings.end(), first) != Beginnings.end();
}

} // namespace harvlink::recording
