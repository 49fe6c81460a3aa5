#pragma once

#include <map>

#include "motion/MotionManager.h"
#include "support/ScriptedController.h"

namespace harvlink::test {

inline Bytes SlotRead(int parameter) {
    return RobotRequest(924, 0, 0, 1, Words({11, 0, parameter}));
}
/// The request of a motion command that writes.
inline Bytes MotionRequest(unsigned command, std::vector<std::int64_t> const& words) {
    return RobotRequest(command, 0, 0, 2, Words(words));
}
inline Bytes ClearRequest(int group = 15) {
    return MotionRequest(841, {group, 0});
}
inline Bytes AlarmRequest(std::string_view text, int subCode) {
    return RobotRequest(916, 0, 0, 2, U16(8015) + Text(text.substr(0, 31), 32) + U8(subCode) + U8(0));
}

/// The target of one group, with eight or fewer axes.
inline Bytes WireTarget(int moveType, std::vector<std::int64_t> axes, std::vector<std::int64_t> middle = {}) {
    axes.resize(8);
    middle.resize(8);
    return Words({0, moveType}) + Words(axes) + Words(middle);
}
inline Bytes TargetRequest(std::map<unsigned, Bytes> const& targets) {
    unsigned bits = 0;
    Bytes records;
    for (unsigned slot = 0; slot < 4; ++slot) {
        auto const target = targets.find(slot);
        bits |= target != targets.end() ? 1U << slot : 0;
        records = std::move(records) + (target != targets.end() ? target->second : Bytes(72));
    }
    return RobotRequest(842, 0, 0, 2, U32(bits) + records + U32(1));
}

inline unsigned CommandOf(Datagram const& datagram) {
    return datagram.bytes[24] + 256U * datagram.bytes[25];
}
/// An axis in the first slot of a target datagram.
inline int AxisOf(Datagram const& datagram, std::size_t axis) {
    auto const* const bytes = &datagram.bytes[44 + 4 * axis];
    return bytes[0] + 256 * bytes[1] + 65536 * bytes[2];
}

inline Motion Point(double x, ControlGroupId group = ControlGroupId::R1) {
    Motion motion;
    motion.controlGroup = group;
    motion.speed = 50.0;
    motion.moveType = MoveInterpolationType::Joint;
    motion.position.coordinateType = CoordinateType::Pulse;
    motion.position.toolNumber = -1;
    motion.position.axes[0] = x;
    return motion;
}

/// A manager with the given motion slots, as the controller counts its groups.
struct MotionSession {
    explicit MotionSession(std::vector<std::int64_t> const& slots = {1}, std::string_view version = "YA1.00",
                           ConnectionPolicy const& policy = {})
        : network(controller.Connect(version, 0, policy)) {
        for (std::size_t i = 0; i < slots.size(); ++i) {
            controller.Expect(SlotRead(33 + static_cast<int>(i)), Payload(U32(slots[i])));
        }
        if (slots.size() < 4) {
            controller.Expect(SlotRead(33 + static_cast<int>(slots.size())), Payload(U32(0)));
        }
        if (!version.starts_with("FS")) {
            controller.Expect(ClearRequest());
        }
        manager = std::make_unique<MotionManager>(network.get());
        before = controller.Received().size();
    }

    /// The datagrams since the manager was made, after waiting for at least `count`.
    std::vector<Datagram> Sent(std::size_t count = 0) {
        auto all = controller.Received(before + count);
        all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(before));
        return all;
    }

    ScriptedController controller;
    std::unique_ptr<NetworkManager> network;
    std::unique_ptr<MotionManager> manager;
    std::size_t before = 0;
};

} // namespace harvlink::test
