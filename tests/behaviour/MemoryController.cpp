#include "behaviour/MemoryController.h"

#include <utility>

#include <gtest/gtest.h>

namespace harvlink::test {
namespace {

constexpr std::uint32_t lastBlock = 0x80000001;
constexpr std::size_t ackOffset = 10;

Bytes ReplyOf(Step const& step, bool isFile, std::uint8_t id, std::uint8_t service) {
    return Text("TROZ") + U16(32) + U16(static_cast<std::int64_t>(step.payload.size())) + U8(3) + U8(isFile ? 2 : 1) +
           U8(1) + U8(id) + U32(step.block) + Text("99999999") + U8(service | 0x80) + Bytes(7) + step.payload;
}

void AppendFile(Script& script, std::string_view content) {
    script.push_back({0x16, Text(content), lastBlock});
    script.push_back({.command = 0x16, .isAnswered = false});
}

} // namespace

void SetStatus(Bytes& reply, std::uint8_t status, std::uint8_t size, std::uint16_t added) {
    std::ranges::copy(U8(status) + U8(size) + U8(0) + U16(added), reply.begin() + 25);
}

class MemoryController::Transport final : public DatagramTransport {
public:
    explicit Transport(MemoryController& peer) : controller(peer) {}

    void Send(Division division, std::span<std::byte const> datagram) override {
        NotCounted const ofTest;
        controller.Serve(division, datagram);
    }

    Arrival Receive(Division, std::span<std::byte> buffer, std::chrono::microseconds waits) override {
        NotCounted const ofTest;
        controller.period = waits.count();
        if (controller.pending.empty()) {
            return 0;
        }
        Bytes const datagram = std::move(controller.pending.front());
        controller.pending.pop_front();
        auto const read = std::as_bytes(std::span(datagram)).first(std::min(buffer.size(), datagram.size()));
        std::ranges::copy(read, buffer.begin());
        return datagram.size();
    }

private:
    MemoryController& controller;
};

std::unique_ptr<DatagramTransport> MemoryController::MakeTransport() {
    return std::make_unique<Transport>(*this);
}

void MemoryController::Play(Script steps, std::size_t step, ReplyFault replyFault, bool affectsAllFollowing) {
    script = std::move(steps);
    exchanges = 0;
    repeats = 0;
    sent.clear();
    faultyStep = step;
    fault = std::move(replyFault);
    affectsAll = affectsAllFollowing;
}

void MemoryController::Serve(Division division, std::span<std::byte const> request) {
    auto const byte = [&](std::size_t i) { return std::to_integer<std::uint8_t>(request[i]); };
    bool const isFile = division == Division::FileControl;
    std::uint8_t const service = byte(29);
    unsigned const command = isFile ? service : byte(24) + 256U * byte(25);
    std::uint8_t const id = byte(idOffset);
    auto const* const bytes = reinterpret_cast<std::uint8_t const*>(request.data());
    Bytes const datagram(bytes, bytes + request.size());
    // Of two equal acknowledgements each is an exchange of its own.
    bool const isRepeat = datagram == std::exchange(lastRequest, datagram) && byte(ackOffset) == 0;
    ++(isRepeat ? repeats : served);
    if (!rest) {
        sent.insert(sent.end(), lastRequest.begin(), lastRequest.end());
        exchanges += isRepeat ? 0 : 1;
        PlayStep(exchanges - 1, command, [&](Step const& step) { return ReplyOf(step, isFile, id, service); });
    } else if (auto const code = rest(command)) {
        Bytes reply = ReplyOf({command}, isFile, id, service);
        SetStatus(reply, *code == 0 ? 0 : 0x1f, 2, *code);
        pending.push_back(std::move(reply));
    }
}

void MemoryController::PlayStep(std::size_t step, unsigned command, std::function<Bytes(Step const&)> const& replyOf) {
    if (step >= script.size()) {
        EXPECT_TRUE(fault) << "unexpected command " << command;
        return;
    }
    // After a faulty exchange the operation may continue with another command.
    EXPECT_TRUE(command == script[step].command || (fault && step > faultyStep))
        << "command " << command << " in exchange " << step;
    if (!script[step].isAnswered) {
        return;
    }
    Bytes const good = replyOf(script[step]);
    bool const isFaulty = fault && (step == faultyStep || (affectsAll && step > faultyStep));
    for (Bytes const& datagram : isFaulty ? fault(good) : Datagrams{good}) {
        pending.push_back(datagram);
    }
}

Script StartUp(bool isOlder) {
    Script script{{137, Text(isOlder ? "FS1.00" : "YA1.00", 48)}};
    if (isOlder) {
        AppendFile(script, "//RS 1\r\n///SHARE 2\r\n0,5,1,0\r\n");
    } else {
        script.push_back({924, U32(1)});
    }
    AppendFile(script, "//TOOL 0\r\n//TOOL 1\r\n");
    script.push_back({924, U32(1)});
    script.push_back({924, U32(0)});
    if (!isOlder) {
        script.push_back({841});
    }
    AppendFile(script, "//SERVO POWER\r\nR1 : a\r\n");
    script.push_back({116, Words({'S', 'L', 'U', 'R', 'B', 'T', 'E', '8'})});
    return script;
}

Robot::Robot(bool isOlder, ConnectionPolicy const& policy) {
    machine.Play(StartUp(isOlder));
    controller = std::make_unique<QuorvanControllerImplementation>(machine.MakeTransport(), timeout, retries, false,
                                                                   status, policy);
    cell = {controller.get(), policy.Enforces(Rule::NoExceptions)};
    EXPECT_EQ(status.StatusCode, 0) << status.Message;
    EXPECT_EQ(machine.Exchanges(), StartUp(isOlder).size());
}

} // namespace harvlink::test
