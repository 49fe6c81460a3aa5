#include "simulator/network/Server.h"

#include <array>
#include <cstdint>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include "support/LoopbackAddress.h"
#include "support/WireBytes.h"

namespace harvlink::test {
namespace {

using namespace simulator;

/// A client's socket. Waits for an answer for at most two seconds.
class Client {
public:
    Bytes Ask(std::string const& address, std::uint16_t port, Bytes const& request) const {
        sockaddr_in to{.sin_family = AF_INET, .sin_port = htons(port), .sin_addr = {}, .sin_zero = {}};
        inet_pton(AF_INET, address.c_str(), &to.sin_addr);
        sendto(socket_.Get(), request.data(), request.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof(to));
        pollfd waiting{socket_.Get(), POLLIN, 0};
        Bytes answer(600);
        sockaddr_in from{};
        auto const length =
            poll(&waiting, 1, 2000) == 1 ? socket_.Receive(std::as_writable_bytes(std::span(answer)), from) : 0;
        EXPECT_EQ(from.sin_addr.s_addr, to.sin_addr.s_addr);
        EXPECT_EQ(from.sin_port, to.sin_port);
        answer.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(length, 0)));
        return answer;
    }

private:
    Socket socket_ = Socket::Bind("127.0.0.1", 0);
};

TEST(Server, ServesManyControllersThatDoNotShareState) {
    Server server;
    std::vector<VirtualController*> controllers;
    for (int i = 0; i < 20; ++i) {
        controllers.push_back(&server.Add(NextLoopbackAddress()));
    }
    ASSERT_TRUE(server.Start()) << server.Error();
    Client const client;
    for (std::size_t i = 0; i < controllers.size(); ++i) {
        auto const value = static_cast<std::uint8_t>(i + 1);
        EXPECT_EQ(client.Ask(controllers[i]->Address(), 10040, RobotRequest(122, 5, 1, 16, U8(value))).size(), 33U);
        EXPECT_GE(client.Ask(controllers[i]->Address(), 10041, FileRequest(0x32, Text("*.JBI"))).size(), 32U);
    }
    for (std::size_t i = 0; i < controllers.size(); ++i) {
        controllers[i]->With([&](ControllerModel& model) { EXPECT_EQ(model.variables.bytes[5], i + 1); });
    }
}

TEST(Server, ReportsWhatItCannotBindAndCanStartAgain) {
    auto const address = NextLoopbackAddress();
    Server first;
    first.Add(address);
    ASSERT_TRUE(first.Start()) << first.Error();
    Server second;
    second.Add(NextLoopbackAddress());
    second.Add(address);
    EXPECT_FALSE(second.Start());
    EXPECT_NE(second.Error().find(address + ":10040"), std::string::npos) << second.Error();
    first.Stop();
    EXPECT_TRUE(second.Start()) << second.Error();
    EXPECT_EQ(Client().Ask(address, 10040, RobotRequest(114, 1, 0, 1)).size(), 40U);
    Server third;
    third.Add("no address");
    EXPECT_FALSE(third.Start());
}

/// Delayed replies and running jobs both live on the server's clock.
TEST(Server, SendsDelayedRepliesInTime) {
    Server server;
    auto& controller = server.Add(NextLoopbackAddress());
    ASSERT_TRUE(server.Start()) << server.Error();
    controller.WithFaults([](FaultInjector& faults) { faults.Arm(Fault::Delay); });
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(Client().Ask(controller.Address(), 10040, RobotRequest(114, 1, 0, 1)).size(), 40U);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(19));
}

} // namespace
} // namespace harvlink::test
