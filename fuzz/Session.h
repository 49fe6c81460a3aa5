#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "Input.h"
#include "connection/QuorvanControllerImplementation.h"
#include "simulator/controller/VirtualController.h"
#include "wire/DatagramTransport.h"

namespace harvlink::fuzz {

using Bytes = std::vector<std::byte>;

/// What comes back for one request: bytes of the input, or what an honest controller says, bent by them.
struct Answer {
    enum class Kind : std::uint8_t {
        Bent, ///< the honest answer; `bytes` are combined with those from `offset` on by exclusive or
        Cut, ///< the honest answer up to `offset`
        Raw, ///< `bytes` with the id of the request, as most answers must have to be looked at
        Foreign, ///< `bytes` as they are
    };
    Kind kind = Kind::Bent;
    std::uint16_t offset = 0;
    Bytes bytes{};
};
using Answers = std::deque<Answer>;

/// All that is left of the input as answers: kind, offset, length, bytes.
Answers TakeAnswers(Input& input);

/// A block of a file on its way to the client.
Answer Block(std::uint32_t number, SubHeaderForReceiving subHeader, std::span<std::byte const> text);

/// A whole file, as an honest controller sends it.
Answers BlocksOf(std::string_view text);

/// Stands in for the sockets, in front of a virtual controller of one of the six generations, with servo power, whose time
/// stands still. Nothing ever waits.
class Transport final : public DatagramTransport {
public:
    explicit Transport(std::uint8_t controllerGeneration) : generation(controllerGeneration) {}

    /// Every request must be a datagram that a controller can take apart.
    void Send(Division division, std::span<std::byte const> datagram) override;
    std::size_t Receive(std::span<std::byte> buffer, timeval period) override;

    bool isHonest = true; ///< otherwise there are only `answers`, and then silence
    Answers answers;
    std::uint32_t losses = 0; ///< bit n: the honest controller's n-th answer from now on is lost
    std::vector<Bytes> sent; ///< since answers were last given
    Answers given; ///< honest ones

private:
    void Ask(Division division, std::span<std::byte const> datagram);
    Bytes Next();

    std::uint8_t generation;
    std::unique_ptr<simulator::VirtualController> controller; ///< made when it is asked
    simulator::Reply reply;
    Bytes honestAnswer; ///< to the last request; empty if there is none
    std::byte lastId{};
};

/// A connection over a Transport.
class Session {
public:
    /// Opens the connection over honest answers, unless others are given.
    explicit Session(std::uint8_t generation, std::optional<Answers> answers = std::nullopt);

    /// From here on only these answers come.
    void Face(Answers answers);

    /// Whatever came before, the next operation works.
    void RequireUsable();

    Transport* transport;
    StatusInfo status;
    QuorvanControllerImplementation robot;
};

} // namespace harvlink::fuzz
