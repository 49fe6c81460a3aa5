#pragma once

#include <cstring>
#include <exception>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "behaviour/Image.h"
#include "behaviour/MemoryController.h"

/// @file
/// The operations of all interfaces, each as a method and as a plain function.

namespace harvlink::test {

struct Outcome {
    StatusInfo status;
    std::string image; ///< of the outputs
    std::string cutImage; ///< the same, as the plain interface returns it
    bool threw = false;
    std::size_t exchanges = 0;
    std::size_t repeats = 0; ///< not compared: of two that end alike, one may have asked more often

    bool operator==(Outcome const& other) const {
        return status.StatusCode == other.status.StatusCode && status.Message == other.status.Message &&
               image == other.image && threw == other.threw && exchanges == other.exchanges;
    }
};

/// How an operation differs from the usual one, which clears its outputs, ends at the first failure and returns its status.
struct Traits {
    std::map<int, int> codes{}; ///< from the controller's number to the code of the status
    int statusOnOlder = 0; ///< on generations without the extended commands; 0: works there too
    bool isUntouchedOnOlder = false;
    std::set<std::size_t> ignored{}; ///< exchanges whose failure has no effect
    Script afterFailure{}; ///< exchanges that follow a failure
    bool decodesRefusals = false; ///< decodes the payload of a refusal like that of a success
    bool mayBeShort = false; ///< a whole answer may have less than the longest
    bool mayThrow = false; ///< on a reply that cannot be parsed
    std::string successMessage = "OK";
    std::string failureMessage{}; ///< of every refusal; if empty, the text of the table
};

struct Operation {
    std::string name; ///< of the plain function, for the method too
    bool isPlain;
    Script script;
    Traits traits;
    std::function<Outcome(Robot&)> call;
    std::function<std::string(std::size_t)> imageAfterFailure; ///< by the exchange that failed
    std::string imageOnOlder; ///< on a generation without the operation
    bool hasOutput;
};

using Operations = std::vector<Operation>;

inline constexpr int UnsupportedThere = 0x30005;

/// The value between two guard areas, which detect a write outside of it.
template <typename Value>
struct Guarded {
    static constexpr std::uint8_t mark = 0xc3;

    Guarded() {
        before.fill(mark);
        after.fill(mark);
    }
    void Check() const {
        for (auto const& area : {before, after}) {
            EXPECT_TRUE(std::ranges::all_of(area, [](std::uint8_t byte) { return byte == mark; }))
                << "wrote outside of the output";
        }
    }

    std::array<std::uint8_t, 64> before{};
    Value value{};
    std::array<std::uint8_t, 64> after{};
};

inline StatusInfo Take(StatusInfo status) {
    return status;
}
inline StatusInfo Take(IStatusInfo const& plain) {
    return {plain.StatusCode, Take(plain.Message)};
}

/// Runs a call on a poisoned output and returns its outcome.
template <typename Value>
Outcome Look(Robot& robot, auto const& call, auto const& poison, auto const& image) {
    Guarded<Value> output;
    poison(output.value);
    Outcome outcome;
    try {
        auto const result = [&] {
            Failure::Scope const scope(robot.failure);
            return call(output.value);
        }();
        outcome.status = Take(result);
    } catch (std::exception const&) {
        outcome.threw = true;
    }
    std::tie(outcome.image, outcome.cutImage) = image(output.value);
    outcome.exchanges = robot.machine.Exchanges();
    outcome.repeats = robot.machine.Repeats();
    output.Check();
    return outcome;
}

/// A plain record and its conversion to the record of the class. Frees the texts in it, unless it is still poisoned.
template <typename Record, typename Plain>
struct PlainOutput {
    static constexpr bool isSame = std::is_same_v<Record, Plain> || std::is_arithmetic_v<Plain>;
    static constexpr bool isTwin = !isSame && std::is_trivially_copyable_v<Record>;
    static constexpr bool isPassedOn = isSame || isTwin; ///< the plain function passes it to the method

    static void Fill(Plain& plain) {
        if constexpr (isSame) {
            Poison(plain);
        } else if constexpr (isTwin) {
            plain = std::bit_cast<Plain>(Poisoned<Record>());
        } else {
            std::ranges::fill(std::as_writable_bytes(std::span(&plain, 1)), std::byte{0x5a});
        }
    }
    static std::string ImageOf(Plain const& plain) {
        if constexpr (isSame) {
            return Image(plain, true);
        } else if constexpr (isTwin) {
            return Image(std::bit_cast<Record>(plain), true);
        } else {
            Plain untouched;
            Fill(untouched);
            bool const isUntouched = std::memcmp(&plain, &untouched, sizeof(plain)) == 0;
            return isUntouched ? "untouched" : Image(Take(plain), true);
        }
    }
};

/// Adds an operation whose output is a `Record` for the method and a `Plain` for the plain function. `afterFailure` returns
/// the content of the output after a failure of that exchange; the default is a cleared record.
template <typename Record = NoOutput, typename Plain = NoOutput>
void Add(
    Operations& table, Script const& script, std::string const& name, auto onClass, auto onPlain,
    Traits const& traits = {}, std::function<Record(std::size_t)> afterFailure = [](std::size_t) { return Record{}; }) {
    constexpr bool hasOutput = !std::is_same_v<Record, NoOutput>;
    Record const onOlder = traits.isUntouchedOnOlder ? Poisoned<Record>() : Record{};
    // Records with texts are always filled, because the caller frees the texts.
    Record const onOlderPlain = PlainOutput<Record, Plain>::isPassedOn ? onOlder : Record{};
    table.push_back({name, false, script, traits,
                     [onClass](Robot& robot) {
                         return Look<Record>(
                             robot, [&](Record& output) { return onClass(*robot.controller, output); },
                             [](Record& output) { Poison(output); },
                             [](Record const& output) { return std::pair(Image(output, false), Image(output, true)); });
                     },
                     [afterFailure](std::size_t step) { return Image(afterFailure(step), false); },
                     Image(onOlder, false), hasOutput});
    table.push_back({name, true, script, traits,
                     [onPlain](Robot& robot) {
                         return Look<Plain>(
                             robot, [&](Plain& output) { return onPlain(&robot.cell, &output); },
                             PlainOutput<Record, Plain>::Fill,
                             [](Plain const& output) {
                                 return std::pair(PlainOutput<Record, Plain>::ImageOf(output), std::string());
                             });
                     },
                     [afterFailure](std::size_t step) { return Image(afterFailure(step), true); },
                     Image(onOlderPlain, true), hasOutput});
}

/// The two calls of a row: the method of controller `c` with output `out`, and the plain function with handle `h`.
#define ON_CLASS(...) [](QuorvanController& c, [[maybe_unused]] auto& out) -> StatusInfo { return __VA_ARGS__; }
#define ON_PLAIN(...) [](ControllerHandle h, [[maybe_unused]] auto* out) -> IStatusInfo { return __VA_ARGS__; }
/// The name of the row, and both calls: `onClass`, and the plain function with its arguments behind the handle.
#define BOTH(onClass, plain, ...) #plain, ON_CLASS(onClass), ON_PLAIN(plain(h __VA_OPT__(, ) __VA_ARGS__))

/// Bytes that differ from each other and from zero.
Bytes Pattern(std::size_t size);

void AddStateOperations(Operations& table); ///< state, groups, alarms, jobs, commands
void AddVariableOperations(Operations& table);
void AddSignalOperations(Operations& table); ///< and registers
void AddSequenceOperations(Operations& table); ///< files, motion, position conversion

Operations AllOperations();

} // namespace harvlink::test
