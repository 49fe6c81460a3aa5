#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "fleet/EventQueue.h"
#include "fleet/Item.h"
#include "fleet/Record.h"

namespace harvlink::fleet {

/// Makes events of what changes from one value to the next.
class Edges {
public:
    Edges(EventQueue& queue, std::uint32_t controllerId) : events(queue), controller(controllerId) {}

    /// Whether values of the item make events.
    static bool Knows(Item const& item) {
        return item.Kind() == FleetItemKind::State || item.Kind() == FleetItemKind::Alarms ||
               item.Kind() == FleetItemKind::Job;
    }

    /// A new good value, and the one before it; empty if that was not good.
    void Look(Item const& item, std::span<std::byte const> before, std::span<std::byte const> now, std::int64_t time);

    /// An event with a text.
    void Tell(FleetEventKind kind, std::int64_t time, std::string_view text = {}, std::int64_t before = 0,
              std::int64_t after = 0, std::int32_t code = 0);

private:
    void CompareStates(std::span<std::byte const> before, std::span<std::byte const> now, std::int64_t time);
    void CompareAlarms(std::span<std::byte const> before, std::span<std::byte const> now, std::int64_t time);
    void CompareJobs(std::span<std::byte const> before, std::span<std::byte const> now, std::int64_t time);

    EventQueue& events;
    std::uint32_t controller;
};

} // namespace harvlink::fleet
