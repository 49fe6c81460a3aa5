#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "gateway/model/Batch.h"
#include "words/text/Json.h"

namespace harvlink::gateway {

/// One value of one reading, as clients see it.
struct ApiItem {
    std::uint32_t id = 0; ///< from 1, in the order of readings and their items
    std::uint32_t reading = 0;
    std::size_t place = 0; ///< of the item in the reading
};

std::vector<ApiItem> ItemsOf(Controller const& controller);

words::Json ItemJson(Controller const& controller, ApiItem const& item);

/// The item alone of a recorded value: null if there is none.
words::Json ValueJson(recording::RecordedItem const& item, recording::RecordedValue const& value);

/// [id, time, value, quality]; of what was never read, too.
words::Json ItemValueJson(Controller const& controller, ApiItem const& item, SamplePtr const& sample);

/// The same as text behind what is there: live values are most of what open pages cost, and a JSON tree takes five times as long.
void AppendItemValue(std::string& text, Controller const& controller, ApiItem const& item, SamplePtr const& sample);

inline std::int64_t Milliseconds(recording::Microseconds time) {
    return time / 1000;
}

inline std::int64_t NowMilliseconds() {
    using std::chrono::duration_cast;
    return duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace harvlink::gateway
