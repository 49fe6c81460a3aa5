#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

/// @file
/// What a recording holds, in records of its own: a file must be readable for years, and does not change when a record of
/// the library does. All times are microseconds: UTC since 1970, or monotonic, which no change of the clock reaches.

namespace harvlink::recording {

using Microseconds = std::int64_t;

/// Truth values are the integers 0 and 1.
using RecordedValue = std::variant<std::monostate, std::int64_t, double, std::string>;

enum class RecordedQuality : std::int32_t {
    Good = 0,
    Refused = 1, ///< the controller refused to answer; `code` says why
    Stale = 2, ///< the controller did not answer
    NeverRead = 3,
};

struct RecordedController {
    std::string name;
    std::string address;
    /// Of the texts as the controller sent them, a name of words::TextEncoding. In a recording they are UTF-8.
    std::string encoding = "utf-8";

    bool operator==(RecordedController const&) const = default;
};

enum class RecordedType : std::int32_t { Integer = 0, Real = 1, Text = 2, Truth = 3 };

/// One value of a reading.
struct RecordedItem {
    std::string field; ///< "x", "servo"; empty if the reading has one value only
    std::string unit; ///< "mm", "deg", "pulse", "%"; empty if it has none
    RecordedType type = RecordedType::Integer;
    /// A real that is a whole number of this part of its unit is stored as that number: 1000 for thousandths of a millimetre.
    std::int64_t divisor = 1;

    bool operator==(RecordedItem const&) const = default;
};

/// What is read at once, and how: enough to answer the same request again.
struct RecordedReading {
    std::uint32_t controller = 0; ///< its id in the recording
    std::string name; ///< "state", "position R1 base", "B005"
    std::string kind; ///< "state", "position", "byte-variable"
    std::uint32_t index = 0;
    std::int32_t group = 0; ///< a ControlGroupId; 0: of no group
    std::int32_t coordinate = 0; ///< a CoordinateType
    std::int32_t tool = 0;
    std::int32_t user = 0;
    std::int32_t axis = -1; ///< -1: all
    std::int32_t detail = 0;
    std::vector<RecordedItem> items; ///< at most MostItems

    static constexpr std::size_t MostItems = 128;
};

/// When a reading was read, and what it is worth.
struct RecordedMoment {
    RecordedQuality quality = RecordedQuality::Good;
    std::int32_t code = 0;
    Microseconds request = 0; ///< UTC, when the request left
    Microseconds answer = 0; ///< UTC, when the answer came
    Microseconds monotonic = 0; ///< of the answer
};

struct RecordedSample {
    std::uint32_t reading = 0; ///< its id in the recording
    RecordedMoment moment{};
    std::vector<RecordedValue> values; ///< one for each item; none if the quality is not Good
};

struct RecordedEvent {
    Microseconds time = 0;
    Microseconds monotonic = 0;
    std::uint32_t controller = 0; ///< its id in the recording
    std::string kind; ///< "alarm-raised", "servo-off"
    std::int64_t before = 0;
    std::int64_t after = 0;
    std::int32_t code = 0;
    std::string text;
    std::string card; ///< cause and advice of an alarm, if they are known
};

/// Samples that are missing because they could not be written in time.
struct RecordedGap {
    Microseconds time = 0; ///< of the first that is missing
    Microseconds monotonic = 0;
    Microseconds duration = 0;
    std::uint64_t count = 0;
    std::string reason;
};

} // namespace harvlink::recording
