#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "recording/model/Records.h"

namespace harvlink::recording {

struct ForwardEntry {
    std::uint64_t number = 0;
    Microseconds time = 0; ///< UTC
    std::string content;

    static constexpr std::size_t MostBytes = 64U << 10;
};

/// A file of entries, each with a check sum.
struct Segment {
    std::filesystem::path path;
    std::uint64_t bytes = 0;
    Microseconds newest = 0; ///< time of its newest entry

    /// Appends entries and makes them safe against a cut of power. Returns 0, or the error of the system; then the file is as
    /// it was.
    int Append(std::vector<ForwardEntry> const& entries);

    /// Calls `use` with each undamaged entry of a file's content, until it returns false. Returns the place behind the last.
    static std::size_t ForEach(std::string_view content, std::size_t begin,
                               std::function<bool(ForwardEntry const&)> const& use);

    /// The number of bytes that an entry takes.
    static std::uint64_t SizeOf(ForwardEntry const& entry);

    /// Empty if the file can't be read.
    std::string Load() const;
};

} // namespace harvlink::recording
