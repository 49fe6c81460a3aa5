#include "recording/model/Kinds.h"

#include <array>
#include <map>
#include <stdexcept>

#include <fmt/format.h>

namespace harvlink::recording {

namespace {

constexpr std::int32_t PulseCoordinate = 0;
constexpr std::array<char const*, 8> PulseAxes{"s", "l", "u", "r", "b", "t", "e", "w"};
constexpr std::array<char const*, 8> CartesianAxes{"x", "y", "z", "rx", "ry", "rz", "re", "rw"};
constexpr std::size_t Lengths = 3; ///< axes before the angles

RecordedItem Integer(std::string field, std::string unit = {}) {
    return {std::move(field), std::move(unit), RecordedType::Integer, 1};
}
RecordedItem Real(std::string field, std::string unit, std::int64_t divisor) {
    return {std::move(field), std::move(unit), RecordedType::Real, divisor};
}
RecordedItem Text(std::string field) {
    return {std::move(field), "", RecordedType::Text, 1};
}
RecordedItem Truth(std::string field) {
    return {std::move(field), "", RecordedType::Truth, 1};
}

/// As the wire has them: pulses, thousandths of a millimetre, ten-thousandths of a degree.
RecordedItem AxisItem(std::int32_t coordinate, std::size_t axis) {
    if (coordinate == PulseCoordinate) {
        return Real(PulseAxes.at(axis), "pulse", 1);
    }
    bool const isLength = axis < Lengths;
    return Real(CartesianAxes.at(axis), isLength ? "mm" : "deg", isLength ? 1000 : 10000);
}

void AddPlace(std::vector<RecordedItem>& items) {
    for (char const* const field : {"coordinate", "tool", "user", "figure"}) {
        items.push_back(Integer(field));
    }
}

std::vector<RecordedItem> PositionItems(RecordedReading const& reading) {
    if (reading.axis >= 0) {
        RecordedItem item = AxisItem(reading.coordinate, static_cast<std::size_t>(reading.axis) % PulseAxes.size());
        item.field.clear(); // the name of the reading has it
        return {item};
    }
    std::vector<RecordedItem> items;
    items.reserve(position_item::Count);
    for (std::size_t axis = 0; axis < position_item::Axes; ++axis) {
        items.push_back(AxisItem(reading.coordinate, axis));
    }
    AddPlace(items);
    return items;
}

/// What unit its axes have, a position variable says itself, in its coordinate.
std::vector<RecordedItem> PositionVariableItems() {
    std::vector<RecordedItem> items;
    items.reserve(position_item::Count);
    for (std::size_t axis = 0; axis < position_item::Axes; ++axis) {
        items.push_back(Real(fmt::format("axis{}", axis + 1), "", 10000));
    }
    AddPlace(items);
    return items;
}

std::vector<RecordedItem> AxisNumbers(RecordedReading const& reading, std::string const& unit) {
    if (reading.axis >= 0) {
        return {Integer("", unit)};
    }
    std::vector<RecordedItem> items;
    items.reserve(PulseAxes.size());
    for (char const* const axis : PulseAxes) {
        items.push_back(Integer(axis, unit));
    }
    return items;
}

std::vector<RecordedItem> AlarmsItems() {
    std::vector<RecordedItem> items{Integer("count")};
    for (std::size_t place = 1; place <= AlarmPlaces; ++place) {
        items.push_back(Integer(fmt::format("code{}", place)));
        items.push_back(Integer(fmt::format("subcode{}", place)));
        items.push_back(Text(fmt::format("time{}", place)));
        items.push_back(Text(fmt::format("name{}", place)));
    }
    return items;
}

} // namespace

void SetItems(RecordedReading& reading) {
    using Items = std::vector<RecordedItem>;
    static std::map<std::string_view, Items (*)(RecordedReading const&)> const ByKind{
        {kind::State,
         [](auto const&) {
             return Items{Integer("mode"), Integer("cycle"), Truth("running"), Truth("hold"),
                          Truth("alarm"),  Truth("error"),   Truth("servo")};
         }},
        {kind::Job,
         [](auto const&) {
             return Items{Text("name"), Integer("line"), Integer("step"), Real("speed", "%", 100)};
         }},
        {kind::Alarms, [](auto const&) { return AlarmsItems(); }},
        {kind::Position, [](RecordedReading const& position) { return PositionItems(position); }},
        {kind::Torque, [](RecordedReading const& torque) { return AxisNumbers(torque, ""); }},
        {kind::PositionError, [](RecordedReading const& error) { return AxisNumbers(error, "pulse"); }},
        {kind::ByteVariable, [](auto const&) { return Items{Integer("")}; }},
        {kind::IntegerVariable, [](auto const&) { return Items{Integer("")}; }},
        {kind::DoubleIntVariable, [](auto const&) { return Items{Integer("")}; }},
        {kind::RealVariable, [](auto const&) { return Items{Real("", "", 1)}; }},
        {kind::StringVariable, [](auto const&) { return Items{Text("")}; }},
        {kind::RobotPositionVariable, [](auto const&) { return PositionVariableItems(); }},
        {kind::BasePositionVariable, [](auto const&) { return PositionVariableItems(); }},
        {kind::StationPositionVariable, [](auto const&) { return PositionVariableItems(); }},
        {kind::Signal, [](auto const&) { return Items{Truth("")}; }},
        {kind::SignalGroup, [](auto const&) { return Items{Integer("")}; }},
        {kind::Register, [](auto const&) { return Items{Integer("")}; }},
        {kind::OperatingTime,
         [](auto const&) {
             return Items{Integer("start", "s"), Integer("elapsed", "s")};
         }},
        {kind::Software,
         [](auto const&) {
             return Items{Text("version"), Text("model")};
         }},
        {kind::TargetProgress, [](auto const&) { return Items{Real("", "", 1)}; }},
    };
    auto const found = ByKind.find(reading.kind);
    if (found == ByKind.end()) {
        throw std::invalid_argument("there is no kind of reading '" + reading.kind + "'");
    }
    reading.items = found->second(reading);
}

} // namespace harvlink::recording
