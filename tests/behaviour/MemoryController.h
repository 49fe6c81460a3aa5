#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>

#include "behaviour/Failure.h"
#include "binding/Binding.h"
#include "connection/QuorvanControllerImplementation.h"
#include "support/WireBytes.h"

namespace harvlink::test {

/// One exchange of an operation: the command, and the reply of a controller without faults.
struct Step {
    unsigned command; ///< on the file port the service; no command has the number of a service
    Bytes payload{};
    std::uint32_t block = 0;
    bool isAnswered = true;
};
using Script = std::vector<Step>;

using Datagrams = std::vector<Bytes>;

/// A fault on the way of a good reply: returns the datagrams that arrive instead.
using ReplyFault = std::function<Datagrams(Bytes const& good)>;

void SetStatus(Bytes& reply, std::uint8_t status, std::uint8_t size, std::uint16_t added);

/// A controller without a network. It answers from its script in the caller's thread, so that time-outs take no time.
class MemoryController {
public:
    /// Sets the expected exchanges, and a fault in exchange `step`, or in this one and all that follow.
    void Play(Script steps, std::size_t step = 0, ReplyFault replyFault = {}, bool affectsAllFollowing = false);

    /// Answers without a script: every command gets the code that `answers` returns, 0 for success, or silence. The lock of
    /// the exchange is held during the call, so only one thread calls it at a time.
    void AnswerAll(std::function<std::optional<std::uint16_t>(unsigned command)> answers) { rest = std::move(answers); }

    std::size_t Exchanges() const { return exchanges; }

    /// Requests of the script that came again as they were. Each gets what the first got.
    std::size_t Repeats() const { return repeats; }

    /// The requests of the script, one after the other.
    Bytes const& Sent() const { return sent; }

    /// Whether a datagram is still unread.
    bool HasPending() const { return !pending.empty(); }
    long Period() const { return period; }
    /// Each exchange takes the next id, from 1 on; after 127 comes 0.
    std::size_t NextId() const { return (served + 1) % 128; }

    std::unique_ptr<DatagramTransport> MakeTransport();

private:
    class Transport;

    void Serve(Division division, std::span<std::byte const> request);
    void PlayStep(std::size_t step, unsigned command, std::function<Bytes(Step const&)> const& replyOf);

    Script script;
    std::size_t exchanges = 0;
    std::size_t repeats = 0;
    Bytes sent;
    Bytes lastRequest;
    std::size_t faultyStep = 0;
    ReplyFault fault;
    bool affectsAll = false;
    std::function<std::optional<std::uint16_t>(unsigned command)> rest;
    std::deque<Bytes> pending;
    long period = 0;
    std::size_t served = 0;
};

/// The exchanges that open a connection to a generation.
Script StartUp(bool isOlder);

/// A connection to such a controller, for methods and plain functions.
struct Robot {
    static constexpr unsigned timeout = 100;
    static constexpr unsigned retries = 2;

    explicit Robot(bool isOlder = false, ConnectionPolicy const& policy = {});

    std::uint64_t CountOf(Rule rule) const {
        auto const counts = controller->GetConnectionStatistics().ruleCounts;
        return counts.at(static_cast<std::size_t>(std::ranges::find(RuleNames, RuleName(rule)) - RuleNames.begin()));
    }

    MemoryController machine; ///< outlives the controller, whose destructor may still send
    StatusInfo status;
    std::unique_ptr<QuorvanController> controller;
    ControllerCell cell{};
    Failure* failure = nullptr; ///< of the next operation
};

} // namespace harvlink::test
