#pragma once

#include <filesystem>

#include "recording/read/Recording.h"

namespace harvlink::recording {

/// Writes a part of a recording as a recording of its own, which begins with a full picture. Throws RecordingError, also if
/// there is a file of that name.
void Cut(Recording& recording, TimeRange const& range, std::filesystem::path const& path);

} // namespace harvlink::recording
