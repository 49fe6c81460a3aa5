#pragma once

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "controller/ControlGroupMessages.h"
#include "motion/MotionMessages.h"
#include "support/VirtualClient.h"

namespace harvlink::test {

/// A virtual controller with servo power that gets datagrams. The test advances its clock.
class Cell : public VirtualClient {
public:
    explicit Cell(std::vector<simulator::ControlGroup> groups = {{ControlGroupId::R1, 6}})
        : VirtualClient({.groups = std::move(groups)}) {
        controller.With([](simulator::ControllerModel& model) { model.SetServo(true); });
    }

    template <typename Payload>
    std::uint16_t Send(CommandNumber command, Payload const& payload, std::uint16_t instance = 0,
                       std::uint8_t service = ServiceWriteAll) {
        Bytes bytes(sizeof(Payload));
        std::memcpy(bytes.data(), &payload, sizeof(Payload));
        answer_ = Ask(static_cast<unsigned>(command), instance, 0, service, bytes);
        return static_cast<std::uint16_t>(answer_.code);
    }

    /// A read without payload.
    std::uint16_t Read(CommandNumber command, std::uint16_t instance) {
        answer_ = Ask(static_cast<unsigned>(command), instance, 0, ServiceReadAll);
        return static_cast<std::uint16_t>(answer_.code);
    }

    template <typename Record>
    Record Answer() const {
        Record record{};
        EXPECT_EQ(answer_.payload.size(), sizeof(Record));
        std::memcpy(static_cast<void*>(&record), answer_.payload.data(),
                    std::min(answer_.payload.size(), sizeof(Record)));
        return record;
    }

    std::uint16_t Start() { return Send(CommandNumber::MotionStart, std::int32_t{0}); }
    std::uint16_t Stop() { return Send(CommandNumber::MotionStop, std::int32_t{0}); }
    std::uint16_t Clear(std::int32_t group = MotionClearGroupTargets::AllGroups) {
        return Send(CommandNumber::MotionClearTargets, MotionClearGroupTargets{group, 0});
    }
    std::uint16_t SetCoordinates(UAPICoordType type, std::int32_t user = 0, int slot = 0) {
        return Send(CommandNumber::MotionSetCoord, MotionSetCoord{static_cast<TargetControlGroup>(slot), type, user});
    }

    std::uint16_t SendTarget(MoveInterpolationType type, WireAxes const& axes, WireAxes const& through = {}) {
        MotionTargetSend step;
        step.groupBits = 1;
        step.targets[0].moveType = type;
        step.targets[0].axes = axes;
        step.targets[0].auxiliaryAxes = through;
        return Send(CommandNumber::MotionSendTarget, step);
    }

    double Progress(std::int32_t slot = 0) {
        EXPECT_EQ(Send(CommandNumber::MotionTargetProgress, slot, 0, ServiceReadAll), 0);
        return Answer<double>();
    }

    /// In the units of the wire.
    UAPIPositionData Position(std::uint16_t selector = 0, std::uint16_t tool = 0,
                              ControlGroupId group = ControlGroupId::R1) {
        EXPECT_EQ(Send(CommandNumber::UAPIPositionRead, UAPIGetPositionSendData{GroupAddress(group), selector, tool, 0},
                       0, ServiceReadAll),
                  0);
        return Answer<UAPIPositionData>();
    }

    void Advance(double seconds) {
        controller.Advance(
            std::chrono::duration_cast<simulator::Clock::Duration>(std::chrono::duration<double>(seconds)));
    }

private:
    test::Answer answer_;
};

} // namespace harvlink::test
