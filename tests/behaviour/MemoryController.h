#pragma once

#include <deque>
#include <functional>
#include <optional>

#include "binding/Binding.h"
#include "connection/QuorvanControllerImplementation.h"
#include "support/WireBytes.h"

namespace harvlink::test {

/// One exchange that an operation is made of: what is asked, and what a controller that is well answers.
struct Step {
    unsigned command; ///< on the file port the service, which no command has the number of
    Bytes payload{};
    std::uint32_t block = 0;
    bool isAnswered = true;
};
using Script = std::vector<Step>;

using Datagrams = std::vector<Bytes>;

/// What becomes of a good reply on its way: the datagrams that arrive instead.
using Mischief = std::function<Datagrams(Bytes const& good)>;

void SetStatus(Bytes& reply, std::uint8_t status, std::uint8_t size, std::uint16_t added);

/// A controller without a network: it answers in the caller's thread what its script says, so that time-outs take none.
class MemoryController {
public:
    /// What is asked from now on, and the spoiling of its exchange number `spoiled`, or of all from there on.
    void Play(Script steps, std::size_t spoiled = 0, Mischief spoiling = {}, bool spoilsAllFollowing = false);

    /// Without a script: every command gets the code that `answers` has for it, 0 being success, or silence. Called under
    /// the lock of the exchange, so by one thread at a time.
    void AnswerAll(std::function<std::optional<std::uint16_t>(unsigned command)> answers) { rest = std::move(answers); }

    std::size_t Asked() const { return asked; }

    /// Whether something lies unread.
    bool HasPending() const { return !pending.empty(); }
    long Period() const { return period; }
    /// Each exchange takes one, from 1 on, and 0 after 127.
    std::size_t NextId() const { return (served + 1) % 128; }

    std::unique_ptr<DatagramTransport> MakeTransport();

private:
    class Transport;

    void Serve(Division division, std::span<std::byte const> request);
    void PlayStep(unsigned command, bool isFile, std::uint8_t id);

    Script script;
    std::size_t asked = 0;
    std::size_t spoiledStep = 0;
    Mischief mischief;
    bool spoilsAll = false;
    std::function<std::optional<std::uint16_t>(unsigned command)> rest;
    std::deque<Bytes> pending;
    long period = 0;
    std::size_t served = 0;
};

/// The exchanges by which a connection to a generation opens.
Script StartUp(bool isOlder);

/// A connection to such a controller, by either door.
struct Robot {
    static constexpr unsigned timeout = 100;
    static constexpr unsigned retries = 2;

    explicit Robot(bool isOlder = false);

    MemoryController machine; ///< outlives the controller, which may still send as it goes
    StatusInfo status;
    std::unique_ptr<QuorvanController> controller;
    ControllerCell cell{};
};

} // namespace harvlink::test
