#include "gateway/watch/Converter.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include "recording/fleet/FleetAdapter.h"

namespace harvlink::gateway {

namespace {

/// What tells one item from another, also if they come from different groups.
Converter::Key KeyOf(FleetItem const& item) {
    return {static_cast<std::int32_t>(item.kind),
            static_cast<std::int32_t>(item.index),
            static_cast<std::int32_t>(item.group),
            static_cast<std::int32_t>(item.coordinate),
            item.toolNumber,
            item.userCoordinateNumber,
            item.axis,
            item.detail};
}

/// Addresses of signals end in 0 to 7; rows go on in the next group of eight.
std::uint32_t ElementIndex(FleetItem const& item, std::uint32_t place) {
    constexpr std::uint32_t Step = 10;
    constexpr std::uint32_t Bits = 8;
    if (item.kind == FleetItemKind::SignalGroup) {
        return item.index + place * Step;
    }
    if (item.kind == FleetItemKind::Signal) {
        std::uint32_t const bit = item.index % Step + place;
        return (item.index / Step + bit / Bits) * Step + bit % Bits;
    }
    return item.index + place;
}

/// Each element of each item once.
std::vector<FleetItem> ElementsOf(std::vector<FleetGroup> const& groups) {
    std::vector<FleetItem> elements;
    std::set<Converter::Key> known;
    for (FleetGroup const& group : groups) {
        for (FleetItem const& item : group.items) {
            for (std::uint32_t place = 0; place < item.count; ++place) {
                FleetItem element = item;
                element.index = ElementIndex(item, place);
                element.count = 1;
                if (known.insert(KeyOf(element)).second) {
                    elements.push_back(element);
                }
            }
        }
    }
    return elements;
}

/// The short name leaves out what is rarely other than zero.
std::string LongName(FleetItem const& item, std::string name) {
    if (item.userCoordinateNumber != 0) {
        name += fmt::format(" number {}", item.userCoordinateNumber);
    }
    if (item.toolNumber != 0) {
        name += fmt::format(" tool {}", item.toolNumber);
    }
    if (item.kind == FleetItemKind::OperatingTime) {
        name += item.detail != 0 ? fmt::format(" application {}", item.detail)
                                 : fmt::format(" group {}", static_cast<int>(item.group));
    }
    return name;
}

} // namespace

std::vector<recording::RecordedReading> ReadingsOf(std::vector<FleetGroup> const& groups) {
    std::vector<recording::RecordedReading> readings;
    for (FleetItem const& element : ElementsOf(groups)) {
        readings.push_back(recording::ReadingOf(element));
        readings.back().name = LongName(element, readings.back().name);
    }
    return readings;
}

std::vector<std::chrono::milliseconds> PeriodsOf(std::vector<FleetGroup> const& groups) {
    std::map<Converter::Key, std::chrono::nanoseconds> shortest;
    for (FleetGroup const& group : groups) {
        for (FleetItem const& element : ElementsOf({group})) {
            auto const [found, isNew] = shortest.try_emplace(KeyOf(element), group.period);
            found->second = std::min(found->second, group.period);
        }
    }
    std::vector<std::chrono::milliseconds> periods;
    for (FleetItem const& element : ElementsOf(groups)) {
        periods.push_back(std::chrono::duration_cast<std::chrono::milliseconds>(shortest.at(KeyOf(element))));
    }
    return periods;
}

std::size_t Converter::KeyHash::operator()(Key const& key) const {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the bytes of an array of integers
    return std::hash<std::string_view>()({reinterpret_cast<char const*>(key.data()), sizeof key});
}

void Converter::Add(ControllerPtr const& controller, std::vector<FleetGroup> const& groups) {
    Entry entry{controller, words::TextEncoding(controller->encoding), {}};
    std::uint32_t place = 0;
    for (FleetItem const& element : ElementsOf(groups)) {
        entry.readings.emplace(KeyOf(element), place++);
    }
    entries_.insert_or_assign(controller->name, std::move(entry));
}

void Converter::Remove(ControllerPtr const& controller) {
    auto const found = entries_.find(controller->name);
    if (found != entries_.end() && found->second.controller == controller) {
        entries_.erase(found);
    }
}

SamplePtr Converter::Convert(FleetSample const& sample) const {
    auto const entry = entries_.find(sample.controller);
    if (entry == entries_.end()) {
        return nullptr;
    }
    auto const reading = entry->second.readings.find(KeyOf(sample.item));
    if (reading == entry->second.readings.end()) {
        return nullptr;
    }
    bool const hasValue = sample.quality == FleetQuality::Good || sample.quality == FleetQuality::Stale;
    auto values = hasValue ? recording::ValuesOf(sample) : std::vector<recording::RecordedValue>();
    recording::DecodeTexts(entry->second.encoding, values);
    return std::make_shared<Sample const>(
        Sample{entry->second.controller, reading->second, recording::MomentOf(sample), std::move(values)});
}

Event Converter::Convert(FleetEvent const& event) const {
    auto const entry = entries_.find(event.controller);
    if (entry == entries_.end()) {
        return {};
    }
    Event converted{entry->second.controller, event.kind, recording::EventOf(event)};
    converted.record.text = entry->second.encoding.Decode(converted.record.text);
    return converted;
}

} // namespace harvlink::gateway
