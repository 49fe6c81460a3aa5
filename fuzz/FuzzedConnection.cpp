#include "FuzzedConnection.h"

#include <ctime>

#include "controller/StatusMessages.h"

// Waiting makes no sense without a real controller, so the few pauses of the library end at once.
extern "C" int __wrap_nanosleep(timespec const* /*period*/, timespec* /*rest*/);
extern "C" int __wrap_nanosleep(timespec const* /*period*/, timespec* /*rest*/) {
    return 0;
}

namespace harvlink::fuzz {
namespace {

constexpr std::size_t requestIdOffset = offsetof(CommonHeader, requestId);

constexpr std::size_t generations = 6;

std::unique_ptr<simulator::VirtualController> MakeController(std::uint8_t generation) {
    simulator::ControllerOptions options{.generation = static_cast<ControllerVersion>(generation % generations)};
    options.groups = {{ControlGroupId::R1, 6}, {ControlGroupId::B1, 1}, {ControlGroupId::S1, 2}};
    options.toolCount = 2;
    options.timeScale = 0.0;
    auto controller = std::make_unique<simulator::VirtualController>("127.0.0.1", options);
    controller->With([](simulator::ControllerModel& model) { model.SetServo(true); });
    return controller;
}

/// The answers of a controller of this generation while a connection opens. They are always the same.
Answers& StartUpOf(std::uint8_t generation) {
    static std::array<Answers, generations> startUps;
    return startUps.at(generation % generations);
}

Transport* MakeTransport(std::uint8_t generation, std::optional<Answers> const& answers) {
    auto* const transport = new Transport(generation);
    transport->answers = answers.value_or(StartUpOf(generation));
    transport->isHonest = !answers && transport->answers.empty();
    return transport;
}

} // namespace

Answers TakeAnswers(Input& input) {
    Answers answers;
    while (!input.IsEmpty()) {
        auto const kind = static_cast<Answer::Kind>(input.Take<std::uint8_t>() % 4);
        auto const offset = input.Take<std::uint16_t>();
        auto const bytes = input.TakeBytes(input.Take<std::uint16_t>());
        answers.push_back({kind, offset, {bytes.begin(), bytes.end()}});
    }
    return answers;
}

Answer Block(std::uint32_t number, SubHeaderForReceiving subHeader, std::span<std::byte const> text) {
    IncomingPacket<std::array<std::byte, FileBlockSize>> packet{.subHeader = subHeader};
    packet.header.blockNumber = number;
    auto const length = std::min(text.size(), FileBlockSize);
    std::copy_n(text.begin(), length, packet.payload.begin());
    auto const bytes = packet.Bytes().first(HeaderSize + length);
    return {Answer::Kind::Raw, 0, {bytes.begin(), bytes.end()}};
}

Answers BlocksOf(std::string_view text) {
    Answers blocks;
    do {
        auto const piece = text.substr(0, FileBlockSize);
        text.remove_prefix(piece.size());
        auto const number = static_cast<std::uint32_t>(blocks.size() + 1) | (text.empty() ? LastBlockFlag : 0);
        blocks.push_back(Block(number, {}, std::as_bytes(std::span(piece))));
    } while (!text.empty());
    return blocks;
}

void Transport::Send(Division division, std::span<std::byte const> datagram) {
    Require(datagram.size() >= HeaderSize, "a request has a header");
    CommonHeader header;
    std::memcpy(&header, datagram.data(), sizeof(header));
    Require(header.magic == CommonHeader{}.magic && header.headerSize == HeaderSize,
            "a request has the header of the protocol");
    Require(header.division == division, "a request goes to the right port");
    Require(header.payloadSize + HeaderSize == datagram.size(), "a request has the length in its header");
    lastId = datagram[requestIdOffset];
    sent.emplace_back(datagram.begin(), datagram.end());
    honestAnswer.clear();
    if (isHonest || (!answers.empty() && answers.front().kind <= Answer::Kind::Cut)) {
        Ask(division, datagram);
    }
}

void Transport::Ask(Division division, std::span<std::byte const> datagram) {
    if (controller == nullptr) {
        controller = MakeController(generation);
    }
    auto const port = division == Division::FileControl ? simulator::Port::File : simulator::Port::Robot;
    if (controller->Handle(port, 1, datagram, reply) == nullptr || reply.IsSuppressed()) {
        return;
    }
    if (losses % 2 == 0) {
        honestAnswer.assign(reply.Bytes().begin(), reply.Bytes().end());
    }
    losses >>= 1U;
}

Arrival Transport::Receive(Division /*division*/, std::span<std::byte> buffer, std::chrono::microseconds /*period*/) {
    auto const answer = Next();
    auto const length = std::min(answer.size(), buffer.size());
    std::copy_n(answer.begin(), length, buffer.begin());
    return answer.size();
}

Bytes Transport::Next() {
    if (isHonest) {
        given.push_back({Answer::Kind::Raw, 0, honestAnswer});
        return std::exchange(honestAnswer, {});
    }
    if (answers.empty()) {
        return {};
    }
    auto [kind, offset, bytes] = std::move(answers.front());
    answers.pop_front();
    if (kind == Answer::Kind::Raw && bytes.size() > requestIdOffset) {
        bytes[requestIdOffset] = lastId;
    }
    if (kind == Answer::Kind::Cut) {
        honestAnswer.resize(std::min<std::size_t>(offset, honestAnswer.size()));
    }
    for (std::size_t i = 0; kind == Answer::Kind::Bent && i < bytes.size() && offset + i < honestAnswer.size(); ++i) {
        honestAnswer[offset + i] ^= bytes[i];
    }
    return kind <= Answer::Kind::Cut ? std::exchange(honestAnswer, {}) : bytes;
}

FuzzedConnection::FuzzedConnection(std::uint8_t generation, std::optional<Answers> const& answers)
    : transport(MakeTransport(generation, answers)),
      robot(std::unique_ptr<DatagramTransport>(transport), 0, 0, false, status) {
    if (transport->isHonest) {
        StartUpOf(generation) = std::move(transport->given);
    }
    transport->isHonest = !answers;
}

void FuzzedConnection::SetAnswers(Answers answers) {
    transport->sent.clear();
    transport->isHonest = false;
    transport->answers = std::move(answers);
}

void FuzzedConnection::RequireUsable() {
    IncomingPacket<StatusInformationReturnData> packet{.payload = {.first = 0x80, .second = 0x40}};
    auto const bytes = packet.Bytes();
    SetAnswers({{Answer::Kind::Raw, 0, {bytes.begin(), bytes.end()}}});
    ControllerStateData state;
    Require(robot.Status->ReadState(state).StatusCode == 0, "the next operation works");
    Require(state.controlMode == ControllerStateData::ControlMode::Remote && state.isServoOn && !state.isAlarming,
            "the next operation reads its answer");
}

} // namespace harvlink::fuzz
