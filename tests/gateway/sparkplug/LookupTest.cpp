#include <atomic>
#include <cstring>
#include <thread>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include "gateway/sparkplug/Plant.h"

/// A system that looks up one name as slowly as it likes. The library calls this in place of the function of the system.

namespace harvlink::test {
namespace {

constexpr char const* SlowName = "broker.slow.test";

struct SlowSystem {
    std::atomic<bool> answers{false};
    std::atomic<int> asked{0};
    std::string address;
};

SlowSystem& TheSystem() {
    static SlowSystem system;
    return system;
}

std::string AddressOf(char const* name) {
    if (name == nullptr || std::strcmp(name, SlowName) != 0) {
        return name == nullptr ? "" : name;
    }
    ++TheSystem().asked;
    while (!TheSystem().answers) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return TheSystem().address;
}

} // namespace
} // namespace harvlink::test

// The names of the system begin with underscores.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int getaddrinfo(char const* name, char const* service, addrinfo const* hints, addrinfo** result) {
    static auto const ofSystem = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    std::string const address = harvlink::test::AddressOf(name);
    return ofSystem(name == nullptr ? nullptr : address.c_str(), service, hints, result);
}

namespace harvlink::test {
namespace {

using gateway::sparkplug::SessionState;

TEST(SparkplugLookup, SlowNameHoldsUpNeitherTheEndNorLaterConnections) {
    Plant plant;
    TheSystem().address = plant.broker.Address();
    plant.config.brokers = {{SlowName, 1883}};
    {
        auto node = plant.StartNode();
        ASSERT_TRUE(Eventually([&] { return TheSystem().asked == 1; }));
        auto const start = std::chrono::steady_clock::now();
        node.reset();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4)); // a second, and a busy machine
    }
    auto const node = plant.StartNode();
    Counter counter(*node);
    ASSERT_TRUE(Eventually([&] { return TheSystem().asked == 2 && counter.Last() > 50; }));
    TheSystem().answers = true;
    EXPECT_TRUE(Eventually([&] { return plant.host->HasAll(Counter::Metric, 50); }));
    EXPECT_EQ(node->Statistics().state, SessionState::Born);
    EXPECT_EQ(plant.host->Faults(), std::vector<std::string>{});
}

} // namespace
} // namespace harvlink::test
