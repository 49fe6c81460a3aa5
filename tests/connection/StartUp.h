#pragma once

#include <algorithm>

#include "harvlink/harvlink.h"
#include "support/ScriptedController.h"

namespace harvlink::test {

inline constexpr unsigned longTimeout = 8000;
inline constexpr std::uint32_t lastBlock = 0x80000001;

/// A controller, and the result of opening a connection to it.
class StartUp : public testing::Test {
protected:
    void ExpectFile(char const* name, std::string_view content) {
        controller.Expect(FileRequest(22, Text(name)), Reply{.payload = Text(content), .block = lastBlock});
        controller.Expect(FileRequest(22, {}, 1, lastBlock), Replies{});
    }
    void ExpectNoFile(char const* name) { controller.Expect(FileRequest(22, Text(name)), Refusal(58035)); }
    void ExpectAxes(unsigned group, Reply const& reply) { controller.Expect(RobotRequest(116, group, 0, 1), reply); }
    void ExpectParameter(unsigned type, unsigned number, Reply const& reply) {
        controller.Expect(RobotRequest(924, 0, 0, 1, Words({type, 0, number})), reply);
    }
    void ExpectRs022(std::int32_t value) { ExpectParameter(4, 22, Payload(U32(value))); }
    void ExpectSlotParameters() {
        ExpectParameter(11, 33, Payload(U32(1)));
        ExpectParameter(11, 34, Payload(U32(9)));
        ExpectParameter(11, 35, Payload(U32(0)));
    }
    /// The motion manager of a new controller: two motion slots, the third empty.
    void ExpectMotionSlots() {
        ExpectSlotParameters();
        controller.Expect(RobotRequest(841, 0, 0, 2, Words({15, 0})));
    }
    Connection Open(unsigned timeout = longTimeout, unsigned retries = 0) {
        return Connect(controller.Address(), status, timeout, retries, false);
    }
    int ReadPulse(Connection const& connection, ControlGroupId group) {
        PositionData position;
        return connection->ControlGroup->ReadPositionData(group, CoordinateType::Pulse, 0, 0, position).StatusCode;
    }
    /// Checks the attached groups: the library reads a position only for these.
    void ExpectAttached(Connection const& connection, std::vector<ControlGroupId> const& groups) {
        using enum ControlGroupId;
        for (ControlGroupId const group : {R1, R2, R3, B1, B2, S1, S2}) {
            bool const isAttached = std::ranges::find(groups, group) != groups.end();
            if (isAttached) {
                controller.Expect(RobotRequest(117, static_cast<unsigned>(group), 0, 1), Payload(Bytes(52)));
            }
            EXPECT_EQ(ReadPulse(connection, group), isAttached ? 0 : 0x30015) << static_cast<int>(group);
        }
    }

    ScriptedController controller;
    StatusInfo status;
};

} // namespace harvlink::test
