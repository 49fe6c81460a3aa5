#include <cmath>

#include "FuzzedConnection.h"

// Requests to the virtual controller: datagrams at both of its ports, with and without faults in the replies.
// Input: generation and whether there are faults, then datagrams, each with a control byte and its length.

namespace harvlink::fuzz {

using simulator::ControllerModel;
using simulator::ControllerOptions;
using simulator::Port;
using simulator::Request;
using simulator::VirtualController;

namespace {

constexpr std::uint8_t withFaults = 0x80;
constexpr std::uint8_t toFilePort = 0x01;
constexpr std::uint8_t asItIs = 0x80; ///< without this bit, the fixed fields of the header get their right values

ControllerOptions OptionsOf(std::uint8_t first) {
    ControllerOptions options{.generation = static_cast<ControllerVersion>(first % 6)};
    options.groups = {{ControlGroupId::R1, 6}, {ControlGroupId::B1, 1}, {ControlGroupId::S1, 2}};
    options.timeScale = 0.0;
    if ((first & withFaults) != 0) {
        options.faults.rates.fill(0.1);
    }
    return options;
}

Bytes TakeDatagram(Input& input, std::uint8_t control) {
    auto const taken = input.TakeBytes(input.Take<std::uint16_t>());
    Bytes datagram(taken.begin(), taken.end());
    if ((control & asItIs) == 0 && datagram.size() >= HeaderSize) {
        CommonHeader header;
        std::memcpy(&header, datagram.data(), sizeof(header));
        header.magic = CommonHeader{}.magic;
        header.headerSize = CommonHeader{}.headerSize;
        header.payloadSize = static_cast<std::uint16_t>(datagram.size() - HeaderSize);
        header.division = (control & toFilePort) != 0 ? Division::FileControl : Division::RobotControl;
        std::memcpy(datagram.data(), &header, sizeof(header));
    }
    return datagram;
}

void CheckReply(Request const& request, simulator::Reply const& reply) {
    auto const bytes = reply.Bytes();
    Require(bytes.size() >= HeaderSize && bytes.size() <= HeaderSize + FileBlockSize, "a reply fits into a datagram");
    IncomingPacket<NoPayload> packet;
    std::memcpy(static_cast<void*>(&packet), bytes.data(), HeaderSize);
    Require(packet.header.payloadSize + HeaderSize == bytes.size(), "a reply has the length in its header");
    Require(packet.header.requestId == request.header.requestId, "a reply has the id of its request");
    Require((packet.subHeader.status == 0) == !reply.IsRefused(), "a refusal is marked as one");
    Require((packet.subHeader.addedStatus == 0) == !reply.IsRefused(), "a refusal has a code");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    VirtualController controller("127.0.0.1", OptionsOf(input.Take<std::uint8_t>()));
    controller.With([](ControllerModel& model) {
        model.SetServo(true);
        model.frames.tools[1].pose = {std::nan(""), HUGE_VAL, -1e308, 1e308, 0, 0};
        model.frames.users[1] = {{1e300, std::nan(""), 0, HUGE_VAL, 0, 0}, "", true};
    });
    simulator::Reply reply;
    while (!input.IsEmpty()) {
        auto const control = input.Take<std::uint8_t>();
        auto const port = (control & toFilePort) != 0 ? Port::File : Port::Robot;
        auto const datagram = TakeDatagram(input, control);
        if (auto const* const request = controller.Handle(port, control >> 4U & 7U, datagram, reply)) {
            if (!reply.IsSuppressed()) {
                CheckReply(*request, reply);
            }
        }
        controller.Advance(std::chrono::milliseconds((1U << (control >> 1U & 7U)) - 1U));
        static_cast<void>(controller.TakeDeliveries());
    }
    controller.WithParts([](simulator::ControllerParts& parts) {
        for (auto const& group : parts.model.groups.All()) {
            Require(parts.motion.Cell().Axes(group).IsWithinLimits(parts.motion.PositionOf(group)),
                    "the arm stays within its limits");
        }
    });
    return 0;
}

} // namespace harvlink::fuzz
