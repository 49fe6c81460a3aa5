#include "simulator/model/Parameters.h"

#include <algorithm>

namespace harvlink::simulator {

namespace {

constexpr std::uint32_t FirstMotionSlot = 33;
constexpr std::uint32_t HighestNumber = 4095;

constexpr std::uint32_t Number(SystemParameterType type) {
    return static_cast<std::uint32_t>(type);
}

} // namespace

Parameters::Parameters(ControlGroups const& groups, int rs022) : groups_(groups) {
    values_[Key{Number(SystemParameterType::RS), 0, 22}] = rs022;
    values_[Key{Number(SystemParameterType::S2C), 0, 430}] = 0; // positions are resolved by their figure
}

bool Parameters::BelongsToGroup(std::uint32_t type) {
    return type == Number(SystemParameterType::S1C) || type == Number(SystemParameterType::S1E) ||
           type == Number(SystemParameterType::S2E);
}

Refusal Parameters::Check(std::uint32_t type, std::uint32_t group, std::uint32_t number) const {
    if (type == Number(SystemParameterType::MotionSlot)) {
        auto const isSlot = number >= FirstMotionSlot && number < FirstMotionSlot + ControlGroups::MotionSlots;
        return isSlot ? Refusal::None : Refusal::InvalidParameter;
    }
    if (type > Number(SystemParameterType::S2E) || number > HighestNumber) {
        return Refusal::InvalidParameter;
    }
    auto const isGroupKnown =
        BelongsToGroup(type) ? std::ranges::any_of(groups_.All(),
                                                   [&](ControlGroup const& candidate) {
                                                       return ControlGroups::ContinuousNumber(candidate.id) == group;
                                                   })
                             : group <= 1;
    return isGroupKnown ? Refusal::None : Refusal::InvalidParameterGroup;
}

std::int32_t Parameters::MotionSlot(std::uint32_t number) const {
    auto const* const group = groups_.Slot(number - FirstMotionSlot);
    return group == nullptr ? 0 : static_cast<std::int32_t>(ControlGroups::ContinuousNumber(group->id));
}

Refusal Parameters::Read(std::uint32_t type, std::uint32_t group, std::uint32_t number, std::int32_t& value) const {
    auto const refusal = Check(type, group, number);
    if (refusal != Refusal::None) {
        return refusal;
    }
    if (type == Number(SystemParameterType::MotionSlot)) {
        value = MotionSlot(number);
        return Refusal::None;
    }
    auto const found = values_.find(Key{type, BelongsToGroup(type) ? group : 0, number});
    value = found == values_.end() ? 0 : found->second;
    return Refusal::None;
}

Refusal Parameters::Set(SystemParameterType type, std::uint32_t group, std::uint32_t number, std::int32_t value) {
    auto const refusal = Check(Number(type), group, number);
    if (refusal != Refusal::None || type == SystemParameterType::MotionSlot) {
        return refusal == Refusal::None ? Refusal::InvalidParameter : refusal;
    }
    values_[Key{Number(type), BelongsToGroup(Number(type)) ? group : 0, number}] = value;
    return Refusal::None;
}

int Parameters::Rs022() const {
    std::int32_t value = 0;
    static_cast<void>(Read(Number(SystemParameterType::RS), 0, 22, value));
    return value;
}

} // namespace harvlink::simulator
