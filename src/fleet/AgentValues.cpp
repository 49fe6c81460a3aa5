#include <sstream>

#include "fleet/ControllerAgent.h"

// How an agent publishes the values of its controller: table, samples and events.

namespace harvlink::fleet {

/// The value before is only read where somebody looks at it.
void ControllerAgent::Publish(std::uint32_t item, Stamp const& stamp, std::span<std::byte const> bytes) {
    Item const& own = record->items[item];
    std::array<std::byte, LargestRecord> room{};
    Stamped before;
    if (Edges::Knows(own) || record->groups[own.group].onChange) {
        before.stamp = record->table.Read(own, room);
        before.record = std::span(room).first(before.stamp.size);
    }
    record->table.Write(own, stamp, bytes);
    if (stamp.quality == FleetQuality::Good) {
        edges.Look(own, before.record, bytes, stamp.answerTime);
    }
    if (filter.Passes(item, before, {stamp, bytes})) {
        services.samples.Put(record->id, item, stamp, bytes);
    }
}

/// Of a refusal nothing is kept: the value is not there. Of silence the last value is.
void ControllerAgent::PublishFailure(Worker const& worker, FleetQuality quality, std::int32_t code, std::int64_t now) {
    for (std::uint32_t i = worker.begin; i < worker.end; ++i) {
        if (quality == FleetQuality::Stale) {
            MarkStale(i, code);
        } else {
            Stamp stamp = StampOf(worker, 0, now);
            stamp.quality = quality;
            stamp.code = code;
            Publish(i, stamp, {});
        }
    }
}

void ControllerAgent::MarkStale(std::uint32_t item, std::int32_t code) {
    Item const& own = record->items[item];
    std::array<std::byte, LargestRecord> last{};
    Stamp stamp = record->table.Read(own, last);
    if (stamp.quality != FleetQuality::Good) {
        return;
    }
    stamp.quality = FleetQuality::Stale;
    stamp.code = code;
    record->table.WriteQuality(own, stamp.quality, code);
    services.samples.Put(record->id, item, stamp, std::span(last).first(stamp.size));
}

void ControllerAgent::MarkAllStale(std::int32_t code) {
    for (std::uint32_t i = 0; i < record->items.size(); ++i) {
        MarkStale(i, code);
    }
}

/// Items that the generation does not have are not asked for.
void ControllerAgent::RefuseItems(std::int64_t now) {
    refused.clear();
    for (std::uint32_t i = 0; i < record->items.size(); ++i) {
        Item const& item = record->items[i];
        std::int32_t const code = RefusalByGeneration(item, facts.generation);
        if (code == 0) {
            continue;
        }
        refused.resize(record->items.size());
        refused[i] = true;
        std::int64_t const time = services.WallTime(now);
        Publish(i, {.answerTime = time, .code = code, .quality = FleetQuality::Refused}, {});
        std::ostringstream name;
        name << ToPublic(item);
        edges.Tell(FleetEventKind::ItemRefused, time, name.str(), 0, i, code);
    }
}

} // namespace harvlink::fleet
