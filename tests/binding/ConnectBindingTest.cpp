#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "harvlink/harvlink_c.h"
#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

/// Answers the start-up of any connection: no tools, no motion slots, one robot.
Replies AnswerStartUp(Datagram const& request) {
    constexpr std::uint32_t lastBlock = 0x80000001;
    if (request.port == 10041) {
        bool const isAcknowledgement = request.bytes[10] == 1;
        bool const isSystemFile = request.bytes.size() > 32 && request.bytes[32] == 'S';
        Reply const systemFile{.payload = Text("//SERVO POWER\r\nR1\r\n"), .block = lastBlock};
        return isAcknowledgement ? Replies{} : Replies{isSystemFile ? systemFile : Refusal(58035)};
    }
    return {request.bytes[24] == 137 ? Payload(Text("YA1.00", 48)) : Payload(Bytes(32))};
}

class ConnectBinding : public testing::Test {
protected:
    ConnectBinding() {
        controller.AnswerRest(AnswerStartUp);
        harvlink_connect_options_init(&options);
        options.address = controller.Address().c_str();
        options.timeout = 8000;
    }
    ControllerHandle Open(HarvlinkConnectOptions const* given) {
        IStatusInfo status{};
        ControllerHandle const handle = harvlink_connect(given, &status);
        EXPECT_NE(handle, nullptr);
        EXPECT_NE(status.Message, nullptr);
        std::free(status.Message);
        code = status.StatusCode;
        return handle;
    }
    int Connect(HarvlinkConnectOptions const* given) {
        close_connection(Open(given));
        return code;
    }
    int ReadStatistics(ControllerHandle handle, HarvlinkConnectionStatistics& statistics) {
        IStatusInfo const status = harvlink_get_connection_statistics(handle, &statistics);
        std::free(status.Message);
        return status.StatusCode;
    }

    ScriptedController controller;
    HarvlinkConnectOptions options{};
    int code = -1;
};

TEST_F(ConnectBinding, RecordsOfOtherVersionsAreHonoured) {
    EXPECT_EQ(options.size, sizeof(options));
    EXPECT_EQ(options.access, HARVLINK_OBSERVE);
    EXPECT_EQ(options.rules, HARVLINK_STRICT_RULES);
    struct {
        HarvlinkConnectOptions options;
        std::byte newer[8]{};
    } larger{options};
    constexpr unsigned oldest = offsetof(HarvlinkConnectOptions, retries); // it ends behind a pointer
    for (auto const& [size, byteBehind, expected] : {std::tuple{0U, 0, 0x50000},
                                                     {oldest - 1, 0, 0x50000},
                                                     {oldest, 0, 0},
                                                     {56U, 1, 0},
                                                     {64U, 0, 0},
                                                     {64U, 1, 0x50000}}) {
        larger.options = options;
        larger.options.size = size;
        if (size == oldest) { // all behind the address is unknown to the older program
            std::memset(reinterpret_cast<char*>(&larger) + size, 0xff, sizeof(options) - size);
        }
        larger.newer[7] = std::byte(byteBehind);
        EXPECT_EQ(Connect(&larger.options), expected) << size;
    }
    options.address = nullptr;
    EXPECT_EQ(Connect(&options), 0x50000);
    HarvlinkConnectOptions changed = options;
    changed.address = controller.Address().c_str();
    changed.access = 7;
    EXPECT_EQ(Connect(&changed), 0x50000);
}

TEST_F(ConnectBinding, StatisticsFillWhatTheRecordHolds) {
    ControllerHandle const handle = Open(&options);
    ASSERT_EQ(code, 0);
    HarvlinkConnectionStatistics statistics{};
    statistics.size = sizeof(statistics);
    EXPECT_EQ(ReadStatistics(handle, statistics), 0);
    EXPECT_EQ(statistics.linkState, HARVLINK_ONLINE);
    EXPECT_EQ(statistics.exchanges, 6U);
    EXPECT_EQ(statistics.blocksReceived, 1U);
    EXPECT_EQ(statistics.roundTripCount, 6U);
    EXPECT_GT(statistics.linkStateSince, 1'700'000'000'000'000);

    HarvlinkConnectionStatistics older{};
    older.size = 24;
    older.timeouts = 77;
    EXPECT_EQ(ReadStatistics(handle, older), 0);
    EXPECT_EQ(older.size, 24U);
    EXPECT_EQ(older.exchanges, 6U);
    EXPECT_EQ(older.timeouts, 77U);
    older.size = 7;
    EXPECT_EQ(ReadStatistics(handle, older), 0x50000);
    EXPECT_EQ(older.exchanges, 6U);
    close_connection(handle);

    options.rules = 1U << 20U;
    ControllerHandle const failed = Open(&options);
    EXPECT_EQ(code, 0x50000);
    EXPECT_EQ(ReadStatistics(failed, statistics), 0);
    EXPECT_EQ(statistics.exchanges, 0U);
    close_connection(failed);
}

} // namespace
} // namespace harvlink::test
