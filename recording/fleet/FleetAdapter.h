#pragma once

#include <functional>
#include <map>
#include <string>
#include <tuple>

#include "harvlink/Fleet.h"
#include "recording/model/Records.h"
#include "words/text/Encoding.h"

/// @file
/// The one place where records of the fleet engine become records of a recording.

namespace harvlink::recording {

/// "press1" reads this: a reading without the id of its controller.
RecordedReading ReadingOf(FleetItem const& item);

/// The values of a sample in the order of the items of its reading; empty if it has none.
std::vector<RecordedValue> ValuesOf(FleetSample const& sample);

/// Makes the texts among the values UTF-8.
void DecodeTexts(words::TextEncoding const& encoding, std::vector<RecordedValue>& values);

/// Quality and times. The monotonic time of the answer is found from the two clocks of now.
RecordedMoment MomentOf(FleetSample const& sample);

/// An event without the id of its controller. An alarm has a card, if there is one.
RecordedEvent EventOf(FleetEvent const& event);

/// Gives samples and events of a fleet the ids that a recorder knows.
class FleetAdapter {
public:
    /// Where ids come from: AddController and AddReading of a recorder.
    struct Ids {
        std::function<std::uint32_t(RecordedController const&)> addController;
        std::function<std::uint32_t(RecordedReading const&)> addReading;
    };

    explicit FleetAdapter(Ids ids) : ids_(std::move(ids)) {}

    /// Names a controller before its first sample. Its texts are decoded.
    void AddController(RecordedController const& controller);

    RecordedSample Convert(FleetSample const& sample);
    RecordedEvent Convert(FleetEvent const& event);

private:
    using Key = std::tuple<std::uint32_t, FleetItemKind, std::uint32_t, ControlGroupId, CoordinateType, std::uint8_t,
                           std::uint8_t, std::int32_t, std::int32_t>;

    struct Controller {
        std::uint32_t id = 0;
        words::TextEncoding encoding;
    };
    Controller const& Find(std::string const& name);

    Ids ids_;
    std::map<std::string, Controller> controllers_;
    std::map<Key, std::uint32_t> readings_;
};

} // namespace harvlink::recording
