#include "gateway/http/Summary.h"

#include <array>
#include <string_view>

#include "gateway/http/Items.h"
#include "recording/model/Kinds.h"

namespace harvlink::gateway {

namespace {

namespace kind = recording::kind;
using recording::RecordedValue;
using words::Json;

constexpr std::array<std::string_view, 5> Links{"connecting", "online", "late", "silent", "refused"};
constexpr std::array<std::string_view, 3> Modes{"teach", "play", "remote"};

std::int64_t IntegerOf(RecordedValue const& value) {
    auto const* const integer = std::get_if<std::int64_t>(&value);
    return integer == nullptr ? 0 : *integer;
}

std::string TextOf(RecordedValue const& value) {
    auto const* const text = std::get_if<std::string>(&value);
    return text == nullptr ? "" : *text;
}

/// Model and software stay known while a controller does not answer; all else may have become other.
bool Holds(Sample const& sample, std::string_view what) {
    using recording::RecordedQuality;
    bool const isLast = sample.moment.quality == RecordedQuality::Stale && !sample.values.empty();
    return sample.moment.quality == RecordedQuality::Good || (isLast && what == kind::Software);
}

/// The first sample of a kind that holds; null if there is none.
Sample const* Find(LatestController const& latest, std::string_view what) {
    for (SamplePtr const& sample : latest.samples) {
        if (sample != nullptr && Holds(*sample, what) && latest.controller->readings[sample->reading].kind == what) {
            return sample.get();
        }
    }
    return nullptr;
}

Json AlarmJson(LatestController const& latest, Sample const* state, Sample const* alarms) {
    auto const time = Milliseconds(latest.alarmSince);
    if (alarms != nullptr && IntegerOf(alarms->values.at(0)) > 0) {
        return {{"code", IntegerOf(alarms->values.at(1))},
                {"subcode", IntegerOf(alarms->values.at(2))},
                {"text", TextOf(alarms->values.at(4))},
                {"time", time != 0 ? time : Milliseconds(alarms->moment.answer)},
                {"count", IntegerOf(alarms->values.at(0))}};
    }
    bool const isAlarming = state != nullptr && (IntegerOf(state->values.at(4)) != 0);
    if (isAlarming && alarms == nullptr) {
        return {{"code", 0},
                {"subcode", 0},
                {"text", ""},
                {"time", time != 0 ? time : Milliseconds(state->moment.answer)},
                {"count", 1}};
    }
    return nullptr;
}

void AddState(Json& json, Sample const* state) {
    auto const truth = [&](std::size_t place) {
        return state == nullptr ? Json() : Json(IntegerOf(state->values.at(place)) != 0);
    };
    auto const mode = state == nullptr ? -1 : IntegerOf(state->values.at(0));
    bool const isMode = mode >= 0 && static_cast<std::size_t>(mode) < Modes.size();
    json["mode"] = isMode ? Json(Modes.at(static_cast<std::size_t>(mode))) : Json();
    json["servo"] = truth(6);
    json["running"] = truth(2);
    json["hold"] = truth(3);
}

std::string EventText(recording::RecordedEvent const& event) {
    bool const isMode =
        event.kind == "mode" && event.after >= 0 && event.after < static_cast<std::int64_t>(Modes.size());
    if (isMode) {
        return std::string(Modes.at(static_cast<std::size_t>(event.after)));
    }
    return event.text;
}

} // namespace

Json SummaryJson(LatestController const& latest, LastRoundTrips const& roundTrips) {
    Controller const& controller = *latest.controller;
    Sample const* const software = Find(latest, kind::Software);
    Sample const* const state = Find(latest, kind::State);
    Sample const* const job = Find(latest, kind::Job);
    std::string const version = software == nullptr ? "" : TextOf(software->values.at(0));
    constexpr std::size_t Letters = 2;
    Json json{{"name", controller.name},
              {"host", controller.address},
              {"model", software == nullptr ? "" : TextOf(software->values.at(1))},
              {"software", version},
              {"generation", version.substr(0, Letters)},
              {"link", Links.at(static_cast<std::size_t>(latest.link))}};
    AddState(json, state);
    json["alarm"] = AlarmJson(latest, state, Find(latest, kind::Alarms));
    json["job"] =
        job == nullptr ? Json() : Json{{"name", TextOf(job->values.at(0))}, {"line", IntegerOf(job->values.at(1))}};
    json["answered"] = latest.lastAnswer == 0 ? Json() : Json(Milliseconds(latest.lastAnswer));
    auto const roundTrip = roundTrips.find(controller.id);
    json["roundTrip"] = roundTrip == roundTrips.end() ? Json() : Json(roundTrip->second);
    json["virtual"] = controller.isVirtual;
    json["group"] = controller.polls;
    return json;
}

bool IsInSummary(recording::RecordedReading const& reading) {
    return reading.kind == kind::State || reading.kind == kind::Job || reading.kind == kind::Alarms ||
           reading.kind == kind::Software;
}

Json EventJson(std::uint64_t id, std::string const& controller, recording::RecordedEvent const& event) {
    bool const isAlarm = event.kind == "alarm-raised" || event.kind == "alarm-cleared";
    return {{"id", id},
            {"time", Milliseconds(event.time)},
            {"controller", controller},
            {"kind", event.kind},
            {"code", isAlarm ? (event.after != 0 ? event.after : event.before) : event.code},
            {"subcode", 0},
            {"text", EventText(event)}};
}

Json EventJson(NumberedEvent const& event) {
    return EventJson(event.number, event.event.controller->name, event.event.record);
}

} // namespace harvlink::gateway
