#include "behaviour/Operation.h"
#include "support/ScratchFolder.h"

// What only the plain functions do with their arguments. The table of operations compares them with the methods otherwise.

namespace harvlink::test {
namespace {

Bytes WriteOf(unsigned command, unsigned instance, Bytes const& payload) {
    return RobotRequest(command, instance, 1, 16, payload);
}

TEST(PlainForms, OnlyTheLowBitsOfAWiderValueCount) {
    static constexpr unsigned wide = 0xabcdef12;
    struct {
        IStatusInfo (*write)(ControllerHandle);
        Script script;
        Bytes sent;
    } const cases[] = {
        {[](auto h) { return io_interface_address_WriteBit(h, 10010, 256); },
         {{909}},
         RobotRequest(909, 0, 0, 2, Words({10010, 1}))}, // all but 0 is a 1
        {[](auto h) { return io_interface_type_WriteByte(h, 3, 1, wide); },
         {{120}},
         WriteOf(120, 2701, Little(0x12, 8))},
        {[](auto h) { return io_interface_address_WriteWord(h, 27010, wide); },
         {{120}, {120}},
         WriteOf(120, 2701, U8(0x12)) + WriteOf(120, 2702, U8(0xef))},
        {[](auto h) { return io_interface_uint32_WriteRegister(h, 5, &wide); },
         {{121}},
         WriteOf(121, 5, Little(0xef12, 8))},
        {[](auto h) {
             char text[] = "cut\0here";
             IStringVariableData const variable{text, 5};
             return string_variable_interface_write(h, &variable);
         },
         {{140}},
         WriteOf(140, 5, Text("cut"))},
    };
    for (auto const& [write, script, sent] : cases) {
        Robot robot;
        robot.machine.Play(script);
        EXPECT_EQ(Take(write(&robot.cell)).StatusCode, 0);
        Bytes actual = robot.machine.Sent();
        for (std::size_t at = 0; at < actual.size(); at += 32 + actual[at + 6]) {
            actual[at + idOffset] = 0;
        }
        EXPECT_TRUE(SameBytes(sent, actual));
    }
    ScratchFolder const folder;
    WriteFile("A.DAT", "old");
    Robot robot;
    robot.machine.Play({});
    EXPECT_EQ(Take(file_interface_SaveFromControllerToFile(&robot.cell, "A.DAT", "A.DAT", 256)).StatusCode, 0x20002);
}

TEST(PlainForms, AFailedConnectionHasAHandleAndAShortRecordNoState) {
    for (unsigned const timeout : {0U, 20U}) {
        IStatusInfo status;
        ControllerHandle const handle = open_connection("127.255.255.254", &status, timeout, 0);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(Take(status).Message, "No response from controller after 0 retries.");
        close_connection(handle);
    }
    Robot robot;
    HarvlinkTrajectoryState state{};
    state.size = sizeof(state) - 1;
    EXPECT_EQ(Take(harvlink_motion_get_state(&robot.cell, &state)).StatusCode, 0x50000);
}

} // namespace
} // namespace harvlink::test
