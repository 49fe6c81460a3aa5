#include "gateway/http/Items.h"

#include <array>
#include <cmath>
#include <map>
#include <string_view>

#include <fmt/compile.h>
#include <fmt/format.h>

#include "recording/model/Kinds.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::gateway {

namespace {

namespace kind = recording::kind;
using recording::RecordedItem;
using recording::RecordedReading;
using recording::RecordedType;
using words::Json;

constexpr std::array<std::string_view, 4> Qualities{"good", "refused", "stale", "never"}; ///< by RecordedQuality

std::string_view WhatOf(RecordedReading const& reading) {
    static std::map<std::string_view, std::string_view> const Names{{kind::Position, "position"},
                                                                    {kind::Torque, "torque"},
                                                                    {kind::PositionError, "position-error"},
                                                                    {kind::Signal, "signal"},
                                                                    {kind::SignalGroup, "signals"},
                                                                    {kind::Register, "register"},
                                                                    {kind::State, "state"},
                                                                    {kind::Job, "job"},
                                                                    {kind::Alarms, "alarms"},
                                                                    {kind::OperatingTime, "times"},
                                                                    {kind::Software, "software"},
                                                                    {kind::TargetProgress, "progress"}};
    auto const found = Names.find(reading.kind);
    return found == Names.end() ? "variable" : found->second;
}

bool HasAxes(RecordedReading const& reading) {
    return reading.kind == kind::Position || reading.kind == kind::Torque || reading.kind == kind::PositionError;
}

/// The name of the axis; empty for what is not one.
std::string AxisOf(RecordedReading const& reading, std::size_t place) {
    if (!HasAxes(reading)) {
        return {};
    }
    if (reading.axis >= 0) {
        RecordedReading whole = reading;
        whole.axis = -1;
        recording::SetItems(whole);
        return words::UpperCase(whole.items.at(static_cast<std::size_t>(reading.axis)).field);
    }
    return place < recording::position_item::Axes ? words::UpperCase(reading.items[place].field) : "";
}

std::string CoordinateOf(RecordedReading const& reading) {
    return words::CoordinateName({static_cast<CoordinateType>(reading.coordinate), reading.user});
}

} // namespace

std::vector<ApiItem> ItemsOf(Controller const& controller) {
    std::vector<ApiItem> items;
    for (std::uint32_t reading = 0; reading < controller.readings.size(); ++reading) {
        for (std::size_t place = 0; place < controller.readings[reading].items.size(); ++place) {
            items.push_back({static_cast<std::uint32_t>(items.size() + 1), reading, place});
        }
    }
    return items;
}

Json ItemJson(Controller const& controller, ApiItem const& item) {
    constexpr std::array<std::string_view, 4> Kinds{"number", "number", "text", "boolean"}; // by RecordedType
    RecordedReading const& reading = controller.readings[item.reading];
    RecordedItem const& own = reading.items[item.place];
    std::string const axis = AxisOf(reading, item.place);
    std::string const field = axis.empty() || reading.axis >= 0 ? own.field : axis;
    Json json{{"id", item.id},
              {"name", field.empty() ? reading.name : reading.name + " " + field},
              {"kind", Kinds.at(static_cast<std::size_t>(own.type))},
              {"unit", own.unit},
              {"period", controller.periods.at(item.reading).count()},
              {"what", WhatOf(reading)}};
    if (HasAxes(reading)) {
        json["group"] = words::GroupName(static_cast<ControlGroupId>(reading.group));
    }
    if (!axis.empty()) {
        json["axis"] = axis;
    }
    if (reading.kind == kind::Position) {
        json["coordinate"] = CoordinateOf(reading);
    }
    return json;
}

Json ValueJson(RecordedItem const& item, recording::RecordedValue const& value) {
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        return item.type == RecordedType::Truth ? Json(*integer != 0) : Json(*integer);
    }
    if (auto const* const real = std::get_if<double>(&value)) {
        return std::isfinite(*real) ? Json(*real) : Json(); // JSON has no other numbers
    }
    auto const* const text = std::get_if<std::string>(&value);
    return text == nullptr ? Json() : Json(*text);
}

Json ItemValueJson(Controller const& controller, ApiItem const& item, SamplePtr const& sample) {
    if (sample == nullptr) {
        return Json::array({item.id, 0, nullptr, Qualities.back()});
    }
    bool const isGood = sample->moment.quality == recording::RecordedQuality::Good;
    RecordedItem const& own = controller.readings[item.reading].items[item.place];
    Json value = isGood && item.place < sample->values.size() ? ValueJson(own, sample->values[item.place]) : Json();
    return Json::array({item.id, Milliseconds(sample->moment.answer), std::move(value),
                        Qualities.at(static_cast<std::size_t>(sample->moment.quality))});
}

void AppendItemValue(std::string& text, Controller const& controller, ApiItem const& item, SamplePtr const& sample) {
    bool const isNumber = sample != nullptr && sample->moment.quality == recording::RecordedQuality::Good &&
                          item.place < sample->values.size() &&
                          controller.readings[item.reading].items[item.place].type != RecordedType::Truth;
    recording::RecordedValue const* const value = isNumber ? &sample->values[item.place] : nullptr;
    auto const append = [&](auto const& number) {
        fmt::format_to(std::back_inserter(text), FMT_COMPILE("[{},{},{},\"{}\"]"), item.id,
                       Milliseconds(sample->moment.answer), number,
                       Qualities.at(static_cast<std::size_t>(sample->moment.quality)));
    };
    if (value != nullptr && std::holds_alternative<std::int64_t>(*value)) {
        append(std::get<std::int64_t>(*value));
    } else if (value != nullptr && std::holds_alternative<double>(*value) && std::isfinite(std::get<double>(*value))) {
        append(std::get<double>(*value));
    } else {
        text += ItemValueJson(controller, item, sample).dump(-1, ' ', false, Json::error_handler_t::replace);
    }
}

} // namespace harvlink::gateway
