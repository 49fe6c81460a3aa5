#pragma once

#include <cstdio>
#include <filesystem>

namespace harvlink::recording {

/// Opens a file to read. Throws RecordingError.
std::FILE* OpenCapture(std::filesystem::path const& path);

/// Whether a file begins as the captures of packet sniffers do. Throws RecordingError if it can't be read.
bool IsCapture(std::filesystem::path const& path);

} // namespace harvlink::recording
