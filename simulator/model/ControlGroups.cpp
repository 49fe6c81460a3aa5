#include "simulator/model/ControlGroups.h"

#include <algorithm>
#include <charconv>

namespace harvlink::simulator {

namespace {

struct Kind {
    char letter;
    std::uint32_t highest;
    std::uint32_t idOffset;
    std::uint32_t defaultAxes;
};

constexpr Kind Kinds[] = {{'R', 8, 0, 6}, {'B', 8, 10, 1}, {'S', 24, 20, 2}};

std::optional<std::uint32_t> ParseNumber(std::string_view text, std::uint32_t highest) {
    std::uint32_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number < 1 || number > highest) {
        return std::nullopt;
    }
    return number;
}

} // namespace

ControlGroup const* ControlGroups::Find(ControlGroupId id) const {
    auto const found = std::ranges::find(groups_, id, &ControlGroup::id);
    return found == groups_.end() ? nullptr : &*found;
}

ControlGroup const* ControlGroups::Find(GroupAddress const& address) const {
    auto const found = std::ranges::find_if(groups_, [&](ControlGroup const& group) {
        GroupAddress const own(group.id);
        return own.kind == address.kind && own.index == address.index;
    });
    return found == groups_.end() ? nullptr : &*found;
}

std::uint32_t ControlGroups::ContinuousNumber(ControlGroupId id) {
    auto const number = static_cast<std::uint32_t>(id);
    if (id < ControlGroupId::B1) {
        return number;
    }
    return id < ControlGroupId::S1 ? number - 2 : number - 4;
}

std::optional<ControlGroup> ControlGroups::FromText(std::string_view text) {
    auto const colon = text.find(':');
    auto const name = text.substr(0, colon);
    auto const kind =
        std::ranges::find_if(Kinds, [&](Kind const& candidate) { return name.starts_with(candidate.letter); });
    if (kind == std::end(Kinds)) {
        return std::nullopt;
    }
    auto const number = ParseNumber(name.substr(1), kind->highest);
    auto const axes = colon == std::string_view::npos ? kind->defaultAxes : ParseNumber(text.substr(colon + 1), 8);
    if (!number || !axes) {
        return std::nullopt;
    }
    return ControlGroup{static_cast<ControlGroupId>(*number + kind->idOffset), *axes};
}

} // namespace harvlink::simulator
