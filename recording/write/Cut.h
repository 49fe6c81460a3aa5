#pragma once

#include <cstdint>
#include <filesystem>
#include <map>

#include "recording/read/Recording.h"
#include "recording/write/SampleStore.h"

namespace harvlink::recording {

/// Reading ids of a recording and those of a copy.
using ReadingIds = std::map<std::uint32_t, std::uint32_t>;

/// Puts a part of a recording into a new store whose transaction has begun: a full picture of what was known at the begin, and
/// what followed. Only of one controller, or of all with 0.
ReadingIds CopyPart(Recording& recording, TimeRange const& range, std::uint32_t controller, SampleStore& store);

/// Writes a part of a recording as a recording of its own, which begins with a full picture. Throws RecordingError, also if
/// there is a file of that name.
void Cut(Recording& recording, TimeRange const& range, std::filesystem::path const& path);

} // namespace harvlink::recording
