#include "wire/HostName.h"

#include <atomic>
#include <thread>

#include "connection/StartUp.h"
#include "support/UnknownName.h"

namespace harvlink::test {
namespace {

using namespace std::chrono_literals;

TEST(HostName, HasTheFormOfOne) {
    for (std::string const name :
         {"localhost", "press1", "press-1.plant_2.example", "a.b.", "3com", "1.2.3.x4", "0xyz"}) {
        EXPECT_TRUE(IsHostName(name)) << name;
    }
    for (std::string const& other :
         {std::string(), std::string("."), std::string("a..b"), std::string("a b"), std::string("::1"),
          std::string("127.1"), std::string("0x7f000001"), std::string("1.2.3.256"), std::string("a\0b", 3),
          std::string("b\xC3\xBC"), std::string(64, 'a')}) {
        EXPECT_FALSE(IsHostName(other)) << other;
    }
}

TEST(HostName, ALookupThatFailsOrTakesTooLongIsNamed) {
    static std::atomic<bool> isOver;
    isOver = false;
    struct {
        HostAddress (*lookUp)(std::string const&);
        char const* reason;
    } const cases[] = {
        {[](std::string const&) {
             return HostAddress{"", "no luck"};
         },
         "name press1 could not be resolved: no luck."},
        {[](std::string const&) {
             isOver.wait(false);
             return HostAddress{"127.0.0.1", ""};
         },
         "name press1 could not be resolved: no answer within 20 ms."},
    };
    for (auto const& [lookUp, reason] : cases) {
        std::string host = "press1";
        StatusInfo const status = ResolveHost(host, 20ms, lookUp);
        EXPECT_EQ(status.StatusCode, 0x50012);
        EXPECT_NE(status.Message.find(reason), std::string::npos) << status.Message;
        EXPECT_EQ(host, "press1");
    }
    isOver = true;
    isOver.notify_all();
    std::string host = "press1";
    EXPECT_EQ(ResolveHost(host, 10s, [](std::string const&) { return HostAddress{"127.0.0.9", ""}; }).StatusCode, 0);
    EXPECT_EQ(host, "127.0.0.9");
}

TEST(HostName, ConnectResolvesIt) {
    StatusInfo status;
    EXPECT_FALSE(Connect(ConnectOptions{.address = UnknownName()}, status));
    EXPECT_EQ(status.StatusCode, 0x50012) << status.Message;
    // Whoever may listen at that address: it was found.
    (void)Connect(ConnectOptions{.address = "localhost", .timeout = 1000, .retries = 0}, status);
    EXPECT_NE(status.StatusCode, 0x50012) << status.Message;
    // The designed call takes addresses alone.
    EXPECT_FALSE(Connect("localhost", status, 1, 0, false));
    EXPECT_EQ(status.StatusCode, static_cast<int>(ErrorStatusCodes::ResponseTimeout)) << status.Message;
}

} // namespace
} // namespace harvlink::test
