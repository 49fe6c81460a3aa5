#include <cstdint>
#include <cstdlib>

#include <gtest/gtest.h>

#include "harvlink/harvlink_c.h"

namespace harvlink::test {
namespace {

int Code(IStatusInfo const& status) {
    std::free(status.Message);
    return status.StatusCode;
}

HarvlinkFleetOptions Options() {
    return {.size = sizeof(HarvlinkFleetOptions),
            .timeout = 100,
            .address = "127.0.0.1",
            .retries = 1,
            .lanes = 1,
            .gap = 0,
            .generation = -1,
            .mostRequestsPerSecond = 0};
}

HarvlinkFleetItem State() {
    HarvlinkFleetItem item{};
    item.kind = HARVLINK_FLEET_STATE;
    item.count = 1;
    item.group = 1;
    item.axis = -1;
    return item;
}

/// Whatever is null in a call: with a fleet and without one.
TEST(FleetBinding, TakesNulls) {
    HarvlinkFleetOptions const options = Options();
    HarvlinkFleetItem const item = State();
    HarvlinkFleetGroup const group{
        .period = 1'000'000'000, .items = &item, .itemCount = 1, .onChange = 0, .longestSilence = 0};
    HarvlinkFleetGroup const empty{
        .period = 1'000'000'000, .items = nullptr, .itemCount = 1, .onChange = 0, .longestSilence = 0};
    HarvlinkFleet const fleet = harvlink_fleet_create(4, nullptr);
    ASSERT_NE(fleet, nullptr);
    ASSERT_EQ(Code(harvlink_fleet_add(fleet, "a", &options, &group, 1)), 0);
    struct Call {
        HarvlinkFleet fleet;
        char const* name;
        HarvlinkFleetOptions const* options;
        HarvlinkFleetGroup const* groups;
    };
    for (Call const& call :
         {Call{nullptr, "a", &options, &group}, Call{fleet, nullptr, &options, &group},
          Call{fleet, "a", nullptr, &group}, Call{fleet, "a", &options, nullptr}, Call{fleet, "a", &options, &empty}}) {
        EXPECT_EQ(Code(harvlink_fleet_add(call.fleet, call.name, call.options, call.groups, 1)), 0x50013);
        EXPECT_EQ(Code(harvlink_fleet_change(call.fleet, call.name, call.options, call.groups, 1)), 0x50013);
    }
    EXPECT_EQ(Code(harvlink_fleet_remove(nullptr, "a")), 0x50013);
    EXPECT_EQ(Code(harvlink_fleet_remove(fleet, nullptr)), 0x50014);
    EXPECT_EQ(Code(harvlink_fleet_start(nullptr)), 0x50013);
    for (HarvlinkFleet const any : {HarvlinkFleet{nullptr}, fleet}) {
        std::uint32_t const controllers = any != nullptr ? 1 : 0;
        EXPECT_EQ(harvlink_fleet_plan(any, nullptr, 8), controllers);
        EXPECT_EQ(harvlink_fleet_latest(any, nullptr, nullptr, 8), controllers);
        EXPECT_EQ(harvlink_fleet_statistics(any, nullptr, 8, nullptr), controllers);
        EXPECT_EQ(harvlink_fleet_take(any, nullptr, 8, 1), 0U);
        EXPECT_EQ(harvlink_fleet_take_events(any, nullptr, 8, 1), 0U);
        harvlink_fleet_stop(any);
        harvlink_fleet_destroy(any);
    }
}

TEST(FleetBinding, FillsNoMoreThanThereIsRoomFor) {
    IStatusInfo status{};
    HarvlinkFleet const fleet = harvlink_fleet_create(4, &status);
    ASSERT_EQ(Code(status), 0);
    HarvlinkFleetItem const item = State();
    HarvlinkFleetGroup const group{
        .period = 1'000'000'000, .items = &item, .itemCount = 1, .onChange = 0, .longestSilence = 0};
    HarvlinkFleetOptions options = Options();
    for (std::uint32_t const size : {0U, options.size - 1, options.size + 8}) {
        options.size = size;
        EXPECT_EQ(Code(harvlink_fleet_add(fleet, "a", &options, &group, 1)), 0x50013) << size;
        EXPECT_EQ(Code(harvlink_fleet_change(fleet, "a", &options, &group, 1)), 0x50013) << size;
    }
    options = Options();
    options.address = nullptr;
    EXPECT_EQ(Code(harvlink_fleet_add(fleet, "a", &options, &group, 1)), 0x50013);
    options = Options();
    EXPECT_EQ(Code(harvlink_fleet_change(fleet, "a", &options, &group, 1)), 0x50014);
    EXPECT_EQ(Code(harvlink_fleet_add(fleet, "a", &options, &group, 1)), 0);
    EXPECT_EQ(Code(harvlink_fleet_change(fleet, "a", &options, &group, 1)), 0);
    EXPECT_EQ(harvlink_fleet_plan(fleet, nullptr, 0), 1U);
    EXPECT_EQ(harvlink_fleet_statistics(fleet, nullptr, 0, nullptr), 1U);
    HarvlinkFleetStatistics seen{};
    std::uint64_t dropped = 1;
    EXPECT_EQ(harvlink_fleet_statistics(fleet, &seen, 1, &dropped), 1U);
    EXPECT_STREQ(seen.controller, "a");
    EXPECT_EQ(dropped, 0U);
    EXPECT_EQ(harvlink_fleet_latest(fleet, "a", nullptr, 0), harvlink_fleet_latest(fleet, nullptr, nullptr, 0));
    HarvlinkFleetSample sample{};
    EXPECT_EQ(harvlink_fleet_take(fleet, &sample, 1, 0), 0U);
    EXPECT_EQ(Code(harvlink_fleet_remove(fleet, "b")), 0x50014);
    EXPECT_EQ(Code(harvlink_fleet_remove(fleet, "a")), 0);
    harvlink_fleet_destroy(fleet);
}

} // namespace
} // namespace harvlink::test
