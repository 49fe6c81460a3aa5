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

/// The answer to one request: bytes of the input, or the correct answer changed by them.
struct Answer {
    enum class Kind : std::uint8_t {
        Bent, ///< the correct answer, from `offset` on combined with `bytes` by exclusive or
        Cut, ///< the correct answer up to `offset`
        Raw, ///< `bytes` with the id of the request, because the client ignores most answers with another id
        Foreign, ///< `bytes` unchanged
    };
    Kind kind = Kind::Bent;
    std::uint16_t offset = 0;
    Bytes bytes{};
};
using Answers = std::deque<Answer>;

/// Takes the rest of the input as answers: kind, offset, length, bytes.
Answers TakeAnswers(Input& input);

/// A block of a file that the controller sends.
Answer Block(std::uint32_t number, SubHeaderForReceiving subHeader, std::span<std::byte const> text);

/// The blocks of a whole file, as a correct controller sends them.
Answers BlocksOf(std::string_view text);

/// Replaces the sockets by a virtual controller of one of the six generations, with servo power. Its clock does not run,
/// and nothing waits.
class Transport final : public DatagramTransport {
public:
    explicit Transport(std::uint8_t controllerGeneration) : generation(controllerGeneration) {}

    /// Checks that every request is a valid datagram.
    void Send(Division division, std::span<std::byte const> datagram) override;
    Arrival Receive(Division division, std::span<std::byte> buffer, std::chrono::microseconds period) override;

    bool isHonest = true; ///< the virtual controller answers; otherwise only `answers`, and then silence
    Answers answers;
    std::uint32_t losses = 0; ///< bit n: the n-th answer of the virtual controller from now on is lost
    std::vector<Bytes> sent; ///< requests since the answers were last set
    Answers given; ///< by the virtual controller

private:
    void Ask(Division division, std::span<std::byte const> datagram);
    Bytes Next();

    std::uint8_t generation;
    std::unique_ptr<simulator::VirtualController> controller; ///< made at its first request
    simulator::Reply reply;
    Bytes honestAnswer; ///< the correct answer to the last request; empty if there is none
    std::byte lastId{};
};

/// A connection over a Transport.
class FuzzedConnection {
public:
    /// Opens the connection with correct answers, unless others are given.
    explicit FuzzedConnection(std::uint8_t generation, std::optional<Answers> const& answers = std::nullopt);

    /// From now on only these answers come.
    void SetAnswers(Answers answers);

    /// Checks that the next operation works.
    void RequireUsable();

    Transport* transport;
    StatusInfo status;
    QuorvanControllerImplementation robot;
};

} // namespace harvlink::fuzz
