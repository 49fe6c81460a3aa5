#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "recording/store/Database.h"

/// @file
/// The tables and views of a recording, a public interface: docs/recordings.md describes them.

namespace harvlink::recording {

/// Rises with each change that an older program could misread; all versions up to this one are read. Columns and tables that are
/// added don't raise it: readers use names.
inline constexpr std::int64_t SchemaVersion = 1;

/// Marks the file: "HVLK".
inline constexpr std::int64_t ApplicationId = 0x48564C4B;

/// Values that are read together lie in one row. The tables of rows differ in how many values a row has place for.
inline constexpr std::array<int, 3> FrameWidths{8, 32, 128};

/// In a column of times: microseconds from the row's time to the request, above so many bits for those of the round trip.
inline constexpr int RoundTripBits = 20;

/// The least width that takes so many values.
int FrameWidthFor(std::size_t values);

/// "frames_32"
std::string FrameTable(int width);

/// Whether the controllers have the column `encoding`, which the first recordings lack.
bool HasEncodings(Database& database);

/// Makes a new file a recording, or checks that it is one. Throws RecordingError that names both versions for a newer one.
void PrepareSchema(Database& database);
void CheckSchema(Database& database);

} // namespace harvlink::recording
