#include <sstream>

#include "controller/JobImplementation.h"
#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

class Job : public testing::Test {
protected:
    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager = controller.Connect();
    JobImplementation job{manager.get()};
};

constexpr char const* alarm = "There is an active Error or Alarm.";

/// Codes of the job table become negative.
struct {
    std::uint16_t code;
    int reported;
    char const* message;
} const refusals[] = {
    {20992, -79979008, "Invalid line number."},
    {16448, -79983552, "Invalid job name."},
    {65535, -79934465, "Invalid task number."},
    {8288, 8288, alarm},
};

TEST_F(Job, SelectsByNameAndLine) {
    std::string const thirtyTwo = "abcdefghijklmnopqrstuvwxyz-12345";
    struct {
        std::string name;
        unsigned line;
        std::optional<std::string> sent;
        int code;
        char const* message;
    } const cases[] = {
        {"job1.jbi", 0, "JOB1", 0, "OK"},
        {"JOB.JBI.jbi", 9999, "JOB.JBI", 0, "OK"}, // only one extension is removed
        {".JBI", 1, "", 0, "OK"},
        {"", 1, "", 0, "OK"},
        {"JBI", 1, "JBI", 0, "OK"},
        {thirtyTwo, 1, "ABCDEFGHIJKLMNOPQRSTUVWXYZ-12345", 0, "OK"},
        {thirtyTwo.substr(0, 28) + ".JBI", 1, "ABCDEFGHIJKLMNOPQRSTUVWXYZ-1", 0, "OK"},
        {thirtyTwo.substr(0, 29) + ".JBI", 10000, {}, 0x20007, "Job name invalid. Check length."},
        {thirtyTwo + 'x', 1, {}, 0x20007, "Job name invalid. Check length."},
        {"JOB1", 10000, {}, -79979008, "Invalid line number."},
        {"JOB1", UINT32_MAX, {}, -79979008, "Invalid line number."},
    };
    for (auto const& [name, line, sent, code, message] : cases) {
        SCOPED_TRACE(name);
        if (sent) {
            controller.Expect(RobotRequest(135, 1, 0, 2, Text(*sent, 32) + U32(line)));
        }
        StatusInfo const status = job.SetActiveJob(name, line);
        EXPECT_EQ(status.StatusCode, code);
        EXPECT_EQ(status.Message, message);
    }
    for (auto const& [code, reported, message] : refusals) {
        controller.Expect(RobotRequest(135, 1, 0, 2, Text("J", 32) + U32(2)), Refusal(code));
        StatusInfo const status = job.SetActiveJob("j", 2);
        EXPECT_EQ(status.StatusCode, reported);
        EXPECT_EQ(status.Message, message);
    }
}

TEST_F(Job, ReportsWhatATaskExecutes) {
    JobData data;
    controller.Expect(RobotRequest(115, 301, 0, 1));
    EXPECT_EQ(job.GetExecutingJobInformation(TesselTaskNumber{300}, data).StatusCode, 0);
    std::ostringstream stream;
    stream << JobData{"A", 1, 2, 12.345};
    EXPECT_EQ(stream.str(), "Name: A\nLine: 1\nStep Number: 2\nSpeed Override: 12.345%");

    controller.Expect(RobotRequest(115, 1, 0, 1), Refusal(40961));
    EXPECT_EQ(job.GetExecutingJobInformation(TesselTaskNumber::Master, data).Message,
              "The tessel task number selection is invalid.");
}

TEST_F(Job, StackHoldsAtMostTwelveNames) {
    Bytes names;
    for (char letter = 'A'; letter < 'A' + 12; ++letter) {
        names = std::move(names) + Text(std::string(3, letter), 33);
    }
    std::vector<std::string> jobs;
    for (auto const& [count, expected] : std::vector<std::pair<int, std::size_t>>{
             {0, 0}, {1, 1}, {12, 12}, {13, 12}, {127, 12}, {0x80, 0}, {0xff, 0}}) {
        controller.Expect(RobotRequest(981, 0, 0, 1, U32(5)), Payload(U8(count) + Bytes(3, 0xee) + names));
        jobs = {"old"};
        EXPECT_EQ(job.GetJobStack(TesselTaskNumber::Sub5, jobs).StatusCode, 0);
        ASSERT_EQ(jobs.size(), expected) << count;
        if (expected > 0) {
            EXPECT_EQ(jobs.back(), std::string(3, static_cast<char>('A' + expected - 1)) + std::string(30, '\0'));
        }
    }
    controller.Expect(RobotRequest(981, 0, 0, 1, U32(0xfffe)), Payload(Bytes(400))); // the low 16 bits of the task
    EXPECT_EQ(job.GetJobStack(static_cast<TesselTaskNumber>(-2), jobs).StatusCode, 0);
    manager->controllerVersion = ControllerVersion::VersionUnknown; // counts as new
    controller.Expect(RobotRequest(981, 0, 0, 1, U32(0)), Payload({}));
    EXPECT_EQ(job.GetJobStack(TesselTaskNumber::Master, jobs).StatusCode, 0);
}

} // namespace
} // namespace harvlink::test
