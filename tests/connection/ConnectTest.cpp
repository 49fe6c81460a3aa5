#include "connection/StartUp.h"

namespace harvlink::test {
namespace {

using enum ControlGroupId;

class ConnectOptionsTest : public StartUp {
protected:
    ConnectOptions Options(Access access = Access::Full) {
        ConnectOptions options;
        options.address = controller.Address();
        options.timeout = longTimeout;
        options.retries = 0;
        options.access = access;
        return options;
    }

    /// A request of the start-up and what becomes of it.
    struct Step {
        Bytes request;
        Replies replies;
    };

    static std::vector<Step> Steps(Access access, bool clears = true) {
        auto const file = [](std::string_view text) { return Replies{{.payload = Text(text), .block = lastBlock}}; };
        auto const parameter = [](unsigned type, unsigned number) {
            return RobotRequest(924, 0, 0, 1, Words({type, 0, number}));
        };
        Bytes const end = FileRequest(22, {}, 1, lastBlock);
        std::vector<Step> steps{
            {RobotRequest(137, 11, 0, 1), {Payload(Text("YA1.00", 48))}},
            {parameter(4, 22), {Payload(U32(0))}},
            {FileRequest(22, Text("TOOL.CND")), file("//TOOL 0\r\n//TOOL 1\r\n")},
            {end, {}},
            {parameter(11, 33), {Payload(U32(1))}},
            {parameter(11, 34), {Payload(U32(0))}},
            {RobotRequest(841, 0, 0, 2, Words({15, 0})), {{}}},
            {FileRequest(22, Text("SYSTEM.SYS")), file("//SERVO POWER\r\nR1 : a\r\n")},
            {end, {}},
            {RobotRequest(116, 1, 0, 1), {Payload(Words({'S', 'L', 'U', 'R', 'B', 'T', 0, 0}))}},
        };
        if (access != Access::Full || !clears) {
            steps.erase(steps.begin() + 6);
        }
        return steps;
    }
    void Expect(std::vector<Step> const& steps) {
        for (Step const& step : steps) {
            controller.Expect(step.request, step.replies);
        }
    }
};

TEST_F(ConnectOptionsTest, WhatIsNotValidIsRefusedUnsent) {
    auto const change = [&](auto&& setting) {
        ConnectOptions options = Options();
        setting(options);
        return options;
    };
    std::pair<ConnectOptions, char const*> const cases[] = {
        {change([](auto& o) { o.address = ""; }), "IPv4"},
        {change([](auto& o) { o.address = "::1"; }), "IPv4"},
        {change([](auto& o) { o.address = "127.0.0.256"; }), "IPv4"},
        {change([](auto& o) { o.address = "127.1"; }), "IPv4"},
        {change([](auto& o) { o.address += '\0'; }), "IPv4"},
        {change([](auto& o) { o.address = "0.0.0.0"; }), "IPv4"},
        {change([](auto& o) { o.address = "239.1.2.3"; }), "IPv4"},
        {change([](auto& o) { o.address = "255.255.255.255"; }), "IPv4"},
        {change([](auto& o) { o.timeout = 0; }), "timeout"},
        {change([](auto& o) { o.timeout = 3'600'001; }), "timeout"},
        {change([](auto& o) { o.retries = 1001; }), "retries"},
        {change([](auto& o) { o.access = static_cast<Access>(3); }), "access"},
        {change([](auto& o) { o.access = static_cast<Access>(-1); }), "access"},
        {change([](auto& o) { o.rules.bits = 1U << 13U; }), "rule"},
        {change([](auto& o) { o.largestFile = 0; }), "largestFile"},
    };
    for (auto const& [options, word] : cases) {
        EXPECT_FALSE(Connect(options, status));
        EXPECT_EQ(status.StatusCode, 0x50000) << options.address;
        EXPECT_NE(status.Message.find(word), std::string::npos) << status.Message;
    }
}

TEST_F(ConnectOptionsTest, OnlyFullAccessClearsUnlessItKeepsAndEachAllowsWhatItSays) {
    struct {
        Access access;
        int write, motion;
    } const cases[] = {{Access::Observe, 0x50001, 0x50001}, {Access::Operate, 0, 0x50001}, {Access::Full, 0, 0}};
    for (auto const& [access, write, motion] : cases) {
        // Access holds in an audit all the same, and so does the wish to keep the targets.
        for (auto const& [audits, clears] : {std::pair{false, true}, {true, true}, {false, false}, {true, false}}) {
            Expect(Steps(access, clears));
            ConnectOptions options = Options(access);
            options.audit = audits;
            options.clearTargets = clears;
            Connection const connection = Connect(options, status);
            ASSERT_TRUE(connection) << status.Message;
            EXPECT_EQ(status.Message, "OK");
            if (write == 0) {
                controller.Expect(RobotRequest(122, 1, 1, 16, U8(7)));
            }
            StatusInfo const written = connection->Variables->byteVariable->Write({7, 0});
            EXPECT_EQ(written.StatusCode, write);
            if (motion == 0) {
                controller.Expect(RobotRequest(839, 0, 0, 2, Words({0})));
            }
            StatusInfo const started = connection->MotionManager->MotionStart();
            EXPECT_EQ(started.StatusCode, motion) << started.Message;
        }
    }
}

/// A start-up that lost something: the designed way goes on with less, the strict one fails with the code.
TEST_F(ConnectOptionsTest, ConnectionKnowsItsGroupsAndToolsOrIsNone) {
    constexpr std::size_t nothing = 99;
    Replies const silence{};
    Replies const noFile{Refusal(58035)};
    struct {
        std::size_t step; ///< the number of the one that goes wrong, and how
        Replies replies;
        std::size_t skipped; ///< a step that is not made therefore
        std::size_t last; ///< of a strict connection
        int strict; ///< its code; 0 where it opens as well
        int designed = 0;
    } const cases[] = {
        {1, silence, nothing, 1, 0x30006, 0x10007},
        {1, {Refusal(40961)}, nothing, 1, 40961, 0x10007},
        {2, silence, 3, 2, 0x30006},
        {2, {Refusal(2010)}, 3, 2, 2010},
        {2, noFile, 3, 9, 0}, // a controller without tools
        {4, silence, 5, 6, 0x30006},
        {4, {Refusal(40960)}, 5, 9, 0}, // fewer motion slots are normal
        {6, silence, nothing, 6, 0x30006},
        {6, {Refusal(8288)}, nothing, 9, 0},
        {7, silence, 8, 7, 0x30006},
        {7, noFile, 8, 7, 58035},
        {9, silence, nothing, 9, 0x30006},
        {9, {Refusal(40961)}, nothing, 9, 0}, // its word, too: the group is there
        {9, {Payload(U16(1))}, nothing, 9, 0x50003},
    };
    for (auto const& [step, replies, skipped, last, strict, designed] : cases) {
        for (bool const isStrict : {false, true}) {
            int const code = isStrict ? strict : designed;
            SCOPED_TRACE(testing::Message() << "step " << step << " code " << code);
            auto steps = Steps(Access::Full);
            steps[step].replies = replies;
            steps.resize(code == 0x10007 ? step + 1 : isStrict ? last + 1 : steps.size());
            if (skipped < steps.size()) {
                bool const endsThere = step == 7; // without groups nobody asks for their axes
                auto const first = steps.begin() + static_cast<std::ptrdiff_t>(skipped);
                steps.erase(first, endsThere ? steps.end() : first + 1);
            }
            Expect(steps);
            ConnectOptions options = Options();
            options.rules = isStrict ? NoRules.With(Rule::WholeStartUp).With(Rule::WholeAnswer) : NoRules;
            options.timeout = replies.empty() ? 200 : longTimeout;
            Connection const connection = Connect(options, status);
            EXPECT_EQ(status.StatusCode, code) << status.Message;
            EXPECT_EQ(connection != nullptr, code == 0);
            EXPECT_EQ(isStrict && code != 0, status.Message.ends_with("(rule WholeStartUp)")) << status.Message;
        }
    }
}

TEST_F(ConnectOptionsTest, FileThatLosesABlockBeginsAnew) {
    for (bool const isStrict : {true, false}) {
        auto steps = Steps(Access::Observe);
        Bytes const text = Text("//SERVO POWER\r\nR1 : a\r\n");
        Step const opening{steps[6].request, {{.payload = text, .block = 1}}};
        Step const lost{FileRequest(22, {}, 1, 1), {}};
        std::size_t const lossy = isStrict ? 3 : 1; // as designed, the connection opens without groups
        steps.resize(isStrict ? steps.size() : 6);
        for (std::size_t i = 0; i < lossy; ++i) {
            steps.insert(steps.begin() + 6, {opening, lost});
        }
        Expect(steps);
        ConnectOptions options = Options(Access::Observe);
        options.rules = isStrict ? NoRules.With(Rule::WholeStartUp) : NoRules;
        options.timeout = 200;
        Connection const connection = Connect(options, status);
        ASSERT_TRUE(connection) << status.Message;
        EXPECT_EQ(connection->GetConnectionStatistics().startUpRetries, isStrict ? lossy : 0U);
    }
}

TEST_F(ConnectOptionsTest, AuditOpensAsDesignedAndCounts) {
    auto steps = Steps(Access::Full);
    steps[7].replies = {Refusal(2010)};
    steps.resize(8);
    Expect(steps);
    ConnectOptions options = Options();
    options.audit = true;
    Connection const connection = Connect(options, status);
    ASSERT_TRUE(connection) << status.Message;
    ConnectionStatistics const statistics = connection->GetConnectionStatistics();
    EXPECT_EQ(statistics.ruleCounts[8], 1U);
    EXPECT_GE(statistics.exchanges, 6U);
    EXPECT_EQ(statistics.blocksReceived, 1U);
    EXPECT_EQ(statistics.roundTrip.count, statistics.exchanges);
    struct OfAnotherLibrary final : QuorvanController {};
    EXPECT_EQ(OfAnotherLibrary().GetConnectionStatistics().exchanges, 0U);
}

} // namespace
} // namespace harvlink::test
