#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "simulator/controller/VirtualController.h"
#include "support/WireBytes.h"

namespace harvlink::test {

struct Answer {
    int code = 0;
    Bytes payload;

    bool operator==(Answer const&) const = default;
};

inline void PrintTo(Answer const& answer, std::ostream* stream) {
    *stream << "code " << answer.code << ", payload " << testing::PrintToString(answer.payload);
}

inline Answer Refused(int code) {
    return {code, {}};
}

/// Sends datagrams to a controller without a network, and checks everything that all answers have in common.
class VirtualClient {
public:
    explicit VirtualClient(simulator::ControllerOptions options = {}) : controller("127.0.0.1", Still(options)) {}

    /// Returns nothing if the controller ignored the datagram.
    std::optional<Bytes> Send(Bytes const& datagram, simulator::Port port = simulator::Port::Robot) {
        auto const bytes = std::as_bytes(std::span(datagram));
        if (controller.Handle(port, 1, bytes, reply_) == nullptr || reply_.IsSuppressed()) {
            return std::nullopt;
        }
        Bytes answer(reply_.Bytes().size());
        std::transform(reply_.Bytes().begin(), reply_.Bytes().end(), answer.begin(),
                       [](std::byte value) { return std::to_integer<std::uint8_t>(value); });
        return answer;
    }

    Answer Ask(unsigned command, unsigned instance, unsigned attribute, unsigned service, Bytes const& payload = {}) {
        auto request = RobotRequest(command, instance, attribute, service, payload);
        request[idOffset] = ++id_ & 0x7F;
        auto const answer = Send(request).value_or(Bytes(32));
        EXPECT_EQ(answer[idOffset], request[idOffset]);
        EXPECT_EQ(answer[6] + 256 * answer[7], static_cast<int>(answer.size()) - 32);
        EXPECT_EQ(answer[25] == 0, answer[26] == 0);
        return {answer[28] + 256 * answer[29], Bytes(answer.begin() + 32, answer.end())};
    }

    simulator::VirtualController controller;

private:
    static simulator::ControllerOptions Still(simulator::ControllerOptions options) {
        options.timeScale = 0.0;
        return options;
    }

    simulator::Reply reply_;
    std::uint8_t id_ = 0;
};

} // namespace harvlink::test
