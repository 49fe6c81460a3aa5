#pragma once

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

/// Options of a controller whose clock does not run.
inline simulator::ControllerOptions StillOptions(simulator::ControllerOptions options = {}) {
    options.timeScale = 0.0;
    return options;
}

/// Hands a datagram to a controller without a network, and returns the one that it answers, if any.
inline std::optional<Bytes> HandOver(simulator::VirtualController& controller, simulator::Port port, std::uint64_t peer,
                                     Bytes const& datagram) {
    simulator::Reply reply;
    auto const bytes = std::as_bytes(std::span(datagram));
    if (controller.Handle(port, peer, bytes, reply) == nullptr || reply.IsSuppressed()) {
        return std::nullopt;
    }
    auto const* const first = reinterpret_cast<std::uint8_t const*>(reply.Bytes().data());
    return Bytes(first, first + reply.Bytes().size());
}

inline int CodeOf(Bytes const& answer) {
    return answer.at(28) + 256 * answer.at(29);
}

/// Sends datagrams to a controller without a network, and checks everything that all answers have in common.
class VirtualClient {
public:
    explicit VirtualClient(simulator::ControllerOptions options = {})
        : controller("127.0.0.1", StillOptions(std::move(options))) {}

    /// Returns nothing if the controller ignored the datagram.
    std::optional<Bytes> Send(Bytes const& datagram, simulator::Port port = simulator::Port::Robot) {
        return HandOver(controller, port, 1, datagram);
    }

    Answer Ask(unsigned command, unsigned instance, unsigned attribute, unsigned service, Bytes const& payload = {}) {
        auto request = RobotRequest(command, instance, attribute, service, payload);
        request[idOffset] = ++id_ & 0x7F;
        auto const answer = Send(request).value_or(Bytes(32));
        EXPECT_EQ(answer[idOffset], request[idOffset]);
        EXPECT_EQ(answer[6] + 256 * answer[7], static_cast<int>(answer.size()) - 32);
        EXPECT_EQ(answer[25] == 0, answer[26] == 0);
        return {CodeOf(answer), Bytes(answer.begin() + 32, answer.end())};
    }

    simulator::VirtualController controller;

private:
    std::uint8_t id_ = 0;
};

} // namespace harvlink::test
