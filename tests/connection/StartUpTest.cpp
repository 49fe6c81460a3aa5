#include "connection/StartUp.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace harvlink::test {
namespace {

using enum ControlGroupId;

constexpr char const* creationFailed =
    "Unable to create the QuorvanController object. Check the Robot Controller setup documentation.";

TEST_F(StartUp, NewGenerationInExactOrder) {
    controller.ExpectProbe("YA1.00");
    ExpectRs022(0);
    ExpectFile("TOOL.CND", "//TOOL 0\r\n///NAME\r\n//TOOL 1\r\n//TOOLS\r\n");
    ExpectMotionSlots();
    ExpectFile("SYSTEM.SYS", "//SERVO POWER\r\nR1 : a\r\nR2 : b\r\n\r\nS12\r\n//ROBOT NAME\r\nR1 X0\r\nR2 B2\r\nR3 "
                             "B3\r\n"); // a base beyond the robots is none
    ExpectAxes(1, Payload(Words({'S', 'L', 'U', 'R', 'B', 'T'})));
    ExpectAxes(2, Payload(Words({'S', 'L', 'U', 'R', 'B', 'T', 'E', '8'})));
    ExpectAxes(21, Refusal(40961));
    ExpectAxes(12, Payload(Words({'S'})));
    Connection connection = Open();
    EXPECT_EQ(status.StatusCode, 0);
    EXPECT_EQ(status.Message, "OK");
    ASSERT_TRUE(connection);
    auto const& c = *connection;
    EXPECT_TRUE(c.ControlGroup && c.Status && c.Variables && c.Faults && c.Job && c.Files && c.IO &&
                c.ControlCommands && c.MotionManager && c.Kinematics);
    ExpectAttached(connection, {R1, R2, B2, S1});

    PositionData position; // its reads depend on the numbers of axes and tools that opening has read
    Bytes const eightAxes = Words({0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8});
    for (ControlGroupId const group : {R1, R2}) {
        controller.Expect(RobotRequest(117, static_cast<unsigned>(group), 0, 1), Payload(eightAxes));
        c.ControlGroup->ReadPositionData(group, CoordinateType::Pulse, 0, 0, position);
        EXPECT_EQ(position.axes[7], group == R2 ? 8.0 : 0.0);
    }
    EXPECT_EQ(c.ControlGroup->ReadPositionData(R1, CoordinateType::UserCoordinate, 1, 3, position).StatusCode, 45069);
    controller.Expect(RobotRequest(829, 0, 0, 1, Words({0, 0}) + U16(2) + U16(2) + U32(0)), Payload(Bytes(48)));
    EXPECT_EQ(c.ControlGroup->ReadPositionData(R1, CoordinateType::UserCoordinate, 1, 2, position).StatusCode, 0);

    std::size_t const sent = controller.Received().size();
    connection.reset();
    EXPECT_EQ(controller.Received().size(), sent) << "closing sends nothing";
}

TEST_F(StartUp, OlderGenerationInExactOrder) {
    for (char const* const software : {"FS2", "DS", "unknown"}) {
        controller.ExpectProbe(software);
        ExpectFile("RS.PRM", "//RS 1\r\n///SHARE 2\r\n0,5,1,0\r\n");
        ExpectNoFile("TOOL.CND");
        ExpectParameter(11, 33, Refusal(40960));
        if (software[0] == 'u') { // counts as new for motion
            controller.Expect(RobotRequest(841, 0, 0, 2, Words({15, 0})), Refusal(40960));
        }
        ExpectFile("SYSTEM.SYS", "//SERVO POWER\r\nR1\r\nR1\r\n");
        ExpectAxes(1, Payload(Words({'S', 'L', 'U', 'R', 'B', 'T'})));
        ExpectAxes(1, Payload(Words({'S'})));
        Connection const connection = Open();
        EXPECT_EQ(status.StatusCode, 0) << software << ' ' << status.Message;
        ASSERT_TRUE(connection);
        controller.Expect(RobotRequest(122, 7, 1, 14), Payload(U8(1))); // RS022 is 1: instances equal indexes
        ByteVariableData variable;
        EXPECT_EQ(connection->Variables->byteVariable->Read(7, variable).StatusCode, 0);
    }
}

TEST_F(StartUp, StateOfRs022DecidesTheInstances) {
    struct {
        char const* file;
        unsigned instance; ///< of variable 7
    } const cases[] = {{"a b c d 0,0,1", 7}, {"a b c d 0,0,0", 8}, {"a b c d 0,0,11 0,0,1", 8}, {"a b c d 1,1,,1", 8}};
    for (auto const& [file, instance] : cases) {
        controller.ExpectProbe("DN1");
        ExpectFile("RS.PRM", file);
        ExpectNoFile("TOOL.CND");
        ExpectParameter(11, 33, Refusal(40960));
        ExpectNoFile("SYSTEM.SYS"); // a connection opens without groups too
        Connection const connection = Open();
        ASSERT_TRUE(connection) << status.Message;
        controller.Expect(RobotRequest(122, instance, 1, 14), Payload(U8(1)));
        ByteVariableData variable;
        EXPECT_EQ(connection->Variables->byteVariable->Read(7, variable).StatusCode, 0) << file;
        EXPECT_EQ(ReadPulse(connection, R1), 0x30015);
    }
}

TEST_F(StartUp, FailuresOfTheSequence) {
    controller.ExpectProbe("YN");
    ExpectParameter(4, 22, Refusal(65534));
    EXPECT_FALSE(Open());
    EXPECT_EQ(status.StatusCode, 0x10007);
    EXPECT_EQ(status.Message, creationFailed);
    controller.ExpectProbe("YB");
    ExpectRs022(-1);
    EXPECT_FALSE(Open());
    EXPECT_EQ(status.StatusCode, 0x10007);
    controller.ExpectProbe("FS");
    ExpectNoFile("RS.PRM");
    EXPECT_FALSE(Open());
    EXPECT_EQ(status.StatusCode, 0x10007);
    for (char const* const tooShort : {"", "a b c d", "a b c d 1", "a b c d 1,1", "a b c d ,,"}) {
        controller.ExpectProbe("FS");
        ExpectFile("RS.PRM", tooShort);
        EXPECT_FALSE(Open()) << tooShort;
        EXPECT_EQ(status.Message, creationFailed);
    }
    controller.Expect(RobotRequest(137, 11, 0, 1), Refusal(40961));
    EXPECT_FALSE(Open());
    EXPECT_EQ(status.Message, "Instance value is invalid");
}

TEST_F(StartUp, HeadersOfAnotherVersionAreRefusedUnheard) {
    std::string_view const versions[] = {"", "1.1", "1.1.30", "1.1.4", " 1.1.3", std::string_view("1.1.3\0", 6)};
    for (std::string_view const version : versions) {
        status = {};
        EXPECT_EQ(OpenConnection(controller.Address(), status, longTimeout, 0, true, version), nullptr) << version;
        EXPECT_EQ(status.StatusCode, 0x30013);
        EXPECT_EQ(status.Message, "The header version and the library version do not match.");
    }
    CloseConnection(nullptr);
    static_assert(
        std::is_same_v<decltype(OpenConnection("", std::declval<StatusInfo&>(), 0, 0, true)), QuorvanController*>);
}

TEST_F(StartUp, SocketsThatCannotBeMadeAreReportedAndReleased) {
    // Open once as usual: some sanitizers use a pipe when they see a type for the first time.
    controller.Expect(RobotRequest(137, 11, 0, 1), Refusal(8));
    EXPECT_FALSE(Open());
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    int const firstFree = ::dup(STDERR_FILENO);
    ::close(firstFree);
    for (int const available : {0, 1}) {
        rlimit const few{static_cast<rlim_t>(firstFree + available), limit.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        Connection const connection = Open();
        ::setrlimit(RLIMIT_NOFILE, &limit);
        EXPECT_FALSE(connection);
        EXPECT_EQ(status.StatusCode, 0x10003);
        EXPECT_EQ(status.Message, "Failed to create socket.");
        EXPECT_EQ(::fcntl(firstFree, F_GETFD), -1);
    }
}

} // namespace
} // namespace harvlink::test
