#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "binding/Binding.h"

inline namespace harvlink_c {

struct HarvlinkFleetCell {
    explicit HarvlinkFleetCell(harvlink::FleetOptions const& options) : fleet(options) {}

    harvlink::Fleet fleet;
};

} // namespace harvlink_c

namespace harvlink::Binding {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr std::size_t batchSize = 64; ///< samples that are taken at once, so that a large array takes no memory twice

template <std::size_t size>
std::uint32_t CopyText(std::string const& text, char (&field)[size]) {
    std::size_t const length = std::min(text.size(), size - 1);
    std::memcpy(field, text.data(), length);
    std::fill(field + length, field + size, '\0');
    return static_cast<std::uint32_t>(length);
}

/// Null stands for what is empty, here and in the arrays below: the fleet says what it lacks.
std::string TextOf(char const* text) {
    return text != nullptr ? text : "";
}

template <typename Plain>
std::span<Plain> ArrayOf(Plain* plain, std::uint32_t count) {
    return {plain, plain != nullptr ? count : 0};
}

/// Fields of the wire are filled up with zero bytes.
std::string UpToZero(std::string const& text) {
    return text.substr(0, text.find('\0'));
}

std::int64_t ToNanoseconds(std::chrono::system_clock::time_point time) {
    return std::chrono::duration_cast<nanoseconds>(time.time_since_epoch()).count();
}

FleetItem FromPlain(HarvlinkFleetItem const& plain) {
    return {.kind = static_cast<FleetItemKind>(plain.kind),
            .index = plain.index,
            .count = plain.count,
            .group = static_cast<ControlGroupId>(plain.group),
            .coordinate = static_cast<CoordinateType>(plain.coordinate),
            .toolNumber = static_cast<std::uint8_t>(std::clamp(plain.toolNumber, 0, 0xff)),
            .userCoordinateNumber = static_cast<std::uint8_t>(std::clamp(plain.userCoordinateNumber, 0, 0xff)),
            .axis = plain.axis,
            .detail = plain.detail,
            .deadBand = plain.deadBand};
}

HarvlinkFleetItem ItemToPlain(FleetItem const& item) {
    HarvlinkFleetItem plain{};
    plain.kind = static_cast<HarvlinkFleetItemKind>(item.kind);
    plain.index = item.index;
    plain.count = item.count;
    plain.group = static_cast<::ControlGroupId>(item.group);
    plain.coordinate = static_cast<::CoordinateType>(item.coordinate);
    plain.toolNumber = item.toolNumber;
    plain.userCoordinateNumber = item.userCoordinateNumber;
    plain.axis = item.axis;
    plain.detail = item.detail;
    plain.deadBand = item.deadBand;
    return plain;
}

std::vector<FleetGroup> FromPlain(HarvlinkFleetGroup const* groups, std::uint32_t count) {
    std::vector<FleetGroup> made;
    for (HarvlinkFleetGroup const& plain : ArrayOf(groups, count)) {
        FleetGroup& group = made.emplace_back();
        group.period = nanoseconds(plain.period);
        group.onChange = plain.onChange != 0;
        group.longestSilence = milliseconds(plain.longestSilence);
        std::ranges::transform(ArrayOf(plain.items, plain.itemCount), std::back_inserter(group.items),
                               [](HarvlinkFleetItem const& item) { return FromPlain(item); });
    }
    return made;
}

FleetControllerOptions FromPlain(HarvlinkFleetOptions const& plain) {
    return {.address = TextOf(plain.address),
            .timeout = plain.timeout,
            .retries = plain.retries,
            .lanes = plain.lanes,
            .gap = std::chrono::microseconds(plain.gap),
            .mostRequestsPerSecond = plain.mostRequestsPerSecond,
            .generation = static_cast<ControllerVersion>(plain.generation)};
}

/// Puts each kind of value into its fields.
struct ValueWriter {
    HarvlinkFleetSample& plain;

    void operator()(std::monostate /*none*/) const {}
    void operator()(bool value) const { plain.integer = value ? 1 : 0; }
    void operator()(std::int64_t value) const { plain.integer = value; }
    void operator()(double value) const { plain.real = value; }
    void operator()(std::string const& value) const { plain.textLength = CopyText(value, plain.text); }
    void operator()(ControllerStateData const& value) const { As<ControllerStateData>(&plain.state) = value; }
    void operator()(JobData const& value) const {
        // NOLINTNEXTLINE(readability-redundant-string-cstr): it cuts the text at its padding
        plain.textLength = CopyText(UpToZero(value.name), plain.text);
        plain.line = value.line;
        plain.step = value.stepNumber;
        plain.real = value.speedOverride;
    }
    void operator()(ActiveAlarms const& value) const {
        plain.integer = value.numberOfAlarms;
        for (std::size_t i = 0; i < value.alarms.size(); ++i) {
            AlarmData const& alarm = value.alarms[i];
            plain.alarms[i].code = alarm.code;
            plain.alarms[i].subcode = alarm.subcode;
            CopyText(alarm.time, plain.alarms[i].time);
            CopyText(alarm.name, plain.alarms[i].name);
        }
    }
    void operator()(PositionData const& value) const { As<PositionData>(&plain.position) = value; }
    void operator()(TorqueData const& value) const { std::ranges::copy(value.axes, plain.axes); }
    void operator()(PositionErrorData const& value) const { std::ranges::copy(value.axes, plain.axes); }
    void operator()(TimeData const& value) const {
        plain.integer = value.startTimeEpoch;
        As<ElapsedTime>(&plain.elapsedTime) = value.elapsedTime;
    }
    void operator()(SystemInfoData const& value) const {
        // NOLINTNEXTLINE(readability-redundant-string-cstr): it cuts the text at its padding
        plain.textLength = CopyText(UpToZero(value.modelName), plain.text);
        CopyText(value.softwareVersion, plain.software);
    }
};

void ToPlain(FleetSample const& sample, HarvlinkFleetSample& plain) {
    plain = {};
    CopyText(sample.controller, plain.controller);
    plain.item = ItemToPlain(sample.item);
    plain.group = sample.group;
    plain.quality = static_cast<HarvlinkFleetQuality>(sample.quality);
    plain.code = sample.code;
    plain.requestTime = ToNanoseconds(sample.requestTime);
    plain.answerTime = ToNanoseconds(sample.answerTime);
    std::visit(ValueWriter{plain}, sample.value);
}

void ToPlain(FleetEvent const& event, HarvlinkFleetEvent& plain) {
    plain = {};
    CopyText(event.controller, plain.controller);
    plain.kind = static_cast<std::int32_t>(event.kind);
    plain.code = event.code;
    plain.time = ToNanoseconds(event.time);
    plain.before = event.before;
    plain.after = event.after;
    CopyText(event.text, plain.text);
}

void ToPlain(FleetControllerPlan const& plan, HarvlinkFleetPlan& plain) {
    plain = {};
    CopyText(plan.controller, plain.controller);
    plain.exchangesPerSecond = plan.exchangesPerSecond;
    plain.longestRoundTrip = plan.longestRoundTrip.count();
}

void ToPlain(FleetControllerStatistics const& seen, HarvlinkFleetStatistics& plain) {
    plain = {};
    CopyText(seen.controller, plain.controller);
    plain.state = static_cast<HarvlinkFleetState>(seen.state);
    plain.groups = static_cast<std::uint32_t>(seen.groups.size());
    plain.stateSince = ToNanoseconds(seen.stateSince);
    plain.exchanges = seen.exchanges;
    plain.timeouts = seen.timeouts;
    plain.repeatedRequests = seen.repeatedRequests;
    plain.lateAnswers = seen.lateAnswers;
    plain.malformedAnswers = seen.malformedAnswers;
    plain.refusals = seen.refusals;
    plain.startUps = seen.startUps;
    for (std::size_t i = 0; i < std::min(seen.groups.size(), std::size(plain.rounds)); ++i) {
        plain.rounds[i] = seen.groups[i].rounds;
        plain.overruns[i] = seen.groups[i].overruns;
        plain.effectiveRates[i] = seen.groups[i].effectiveRate;
    }
}

/// Fills an array and returns how many there are.
template <typename Record, typename Plain>
std::uint32_t Fill(std::vector<Record> const& records, Plain* plain, std::uint32_t capacity) {
    auto const room = ArrayOf(plain, capacity).size();
    for (std::size_t i = 0; i < std::min(records.size(), room); ++i) {
        ToPlain(records[i], plain[i]);
    }
    return static_cast<std::uint32_t>(records.size());
}

/// Takes in batches; only the first one waits.
template <typename Record, typename Plain, typename TakeSome>
std::uint32_t TakeInto(Plain* plain, std::uint32_t capacity, std::uint32_t wait, TakeSome const& take) {
    capacity = plain != nullptr ? capacity : 0;
    std::vector<Record> batch(std::min<std::size_t>(capacity, batchSize));
    std::uint32_t taken = 0;
    std::size_t count = batch.size();
    while (taken < capacity && count == batch.size()) {
        auto const room = std::min<std::size_t>(capacity - taken, batch.size());
        count = take(std::span(batch).first(room), milliseconds(taken == 0 ? wait : 0));
        for (std::size_t i = 0; i < count; ++i) {
            ToPlain(batch[i], plain[taken++]);
        }
    }
    return taken;
}

/// Runs an operation that no exception leaves: it returns a failure, or nothing.
template <typename Operation>
auto Unthrown(Operation const& operation) -> decltype(operation()) {
    using Result = decltype(operation());
    try {
        return operation();
    } catch (...) {
        if constexpr (std::is_same_v<Result, IStatusInfo>) {
            return InteropHelper::ToPlain(StatusInformation(ErrorStatusCodes::OutOfMemory));
        } else {
            return Result{};
        }
    }
}

/// An operation on a fleet that is there, with a status.
template <typename Operation>
IStatusInfo OnFleet(HarvlinkFleet fleet, Operation const& operation) {
    return Unthrown([&] {
        return InteropHelper::ToPlain(fleet != nullptr
                                          ? operation(fleet->fleet)
                                          : StatusInformation(ErrorStatusCodes::InvalidFleet, "There is no fleet."));
    });
}

/// An operation on a fleet that is there, with a number.
template <typename Operation>
std::uint32_t CountOnFleet(HarvlinkFleet fleet, Operation const& operation) {
    return Unthrown([&] { return fleet != nullptr ? operation(fleet->fleet) : 0U; });
}

bool IsKnownSize(HarvlinkFleetOptions const* options) {
    return options != nullptr && options->size == sizeof(HarvlinkFleetOptions);
}

StatusInfo InvalidFleetSize() {
    return StatusInformation(ErrorStatusCodes::InvalidFleet,
                             "The size of the options is not set, or not one that this library knows.");
}

} // namespace
} // namespace harvlink::Binding

namespace fleets = harvlink::Binding;

inline namespace harvlink_c {

HarvlinkFleet harvlink_fleet_create(uint32_t queueCapacity, IStatusInfo* status) {
    HarvlinkFleet fleet = nullptr;
    IStatusInfo const created = fleets::Unthrown([&] {
        harvlink::FleetOptions options;
        if (queueCapacity != 0) {
            options.queueCapacity = queueCapacity;
        }
        fleet = new HarvlinkFleetCell(options);
        return harvlink::InteropHelper::ToPlain(harvlink::StatusInformation(harvlink::ErrorStatusCodes::Ok));
    });
    if (status != nullptr) {
        *status = created;
    } else {
        harvlink_free(created.Message);
    }
    return fleet;
}

IStatusInfo harvlink_fleet_add(HarvlinkFleet fleet, char const* name, HarvlinkFleetOptions const* options,
                               HarvlinkFleetGroup const* groups, uint32_t groupCount) {
    return fleets::OnFleet(fleet, [&](harvlink::Fleet& own) {
        return fleets::IsKnownSize(options)
                   ? own.Add(fleets::TextOf(name), fleets::FromPlain(*options), fleets::FromPlain(groups, groupCount))
                   : fleets::InvalidFleetSize();
    });
}

IStatusInfo harvlink_fleet_change(HarvlinkFleet fleet, char const* name, HarvlinkFleetOptions const* options,
                                  HarvlinkFleetGroup const* groups, uint32_t groupCount) {
    return fleets::OnFleet(fleet, [&](harvlink::Fleet& own) {
        return fleets::IsKnownSize(options) ? own.Change(fleets::TextOf(name), fleets::FromPlain(*options),
                                                         fleets::FromPlain(groups, groupCount))
                                            : fleets::InvalidFleetSize();
    });
}

IStatusInfo harvlink_fleet_remove(HarvlinkFleet fleet, char const* name) {
    return fleets::OnFleet(fleet, [&](harvlink::Fleet& own) { return own.Remove(fleets::TextOf(name)); });
}

uint32_t harvlink_fleet_plan(HarvlinkFleet fleet, HarvlinkFleetPlan* plans, uint32_t capacity) {
    return fleets::CountOnFleet(
        fleet, [&](harvlink::Fleet& own) { return fleets::Fill(own.Plan().controllers, plans, capacity); });
}

IStatusInfo harvlink_fleet_start(HarvlinkFleet fleet) {
    return fleets::OnFleet(fleet, [](harvlink::Fleet& own) { return own.Start(); });
}

void harvlink_fleet_stop(HarvlinkFleet fleet) {
    if (fleet != nullptr) {
        fleet->fleet.Stop();
    }
}

uint32_t harvlink_fleet_take(HarvlinkFleet fleet, HarvlinkFleetSample* samples, uint32_t capacity,
                             uint32_t waitMilliseconds) {
    return fleets::CountOnFleet(fleet, [&](harvlink::Fleet& own) {
        return fleets::TakeInto<harvlink::FleetSample>(
            samples, capacity, waitMilliseconds,
            [&](std::span<harvlink::FleetSample> batch, std::chrono::milliseconds wait) {
                return own.Take(batch, wait);
            });
    });
}

uint32_t harvlink_fleet_take_events(HarvlinkFleet fleet, HarvlinkFleetEvent* events, uint32_t capacity,
                                    uint32_t waitMilliseconds) {
    return fleets::CountOnFleet(fleet, [&](harvlink::Fleet& own) {
        return fleets::TakeInto<harvlink::FleetEvent>(
            events, capacity, waitMilliseconds,
            [&](std::span<harvlink::FleetEvent> batch, std::chrono::milliseconds wait) {
                return own.TakeEvents(batch, wait);
            });
    });
}

uint32_t harvlink_fleet_latest(HarvlinkFleet fleet, char const* name, HarvlinkFleetSample* samples, uint32_t capacity) {
    return fleets::CountOnFleet(fleet, [&](harvlink::Fleet& own) {
        return fleets::Fill(name != nullptr ? own.Latest(name) : own.Latest(), samples, capacity);
    });
}

uint32_t harvlink_fleet_statistics(HarvlinkFleet fleet, HarvlinkFleetStatistics* statistics, uint32_t capacity,
                                   uint64_t* droppedSamples) {
    return fleets::CountOnFleet(fleet, [&](harvlink::Fleet& own) {
        harvlink::FleetStatistics const seen = own.Statistics();
        if (droppedSamples != nullptr) {
            *droppedSamples = seen.droppedSamples;
        }
        return fleets::Fill(seen.controllers, statistics, capacity);
    });
}

void harvlink_fleet_destroy(HarvlinkFleet fleet) {
    delete fleet;
}

} // namespace harvlink_c
