#pragma once

#include <cstring>
#include <map>
#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

#include "behaviour/Image.h"
#include "behaviour/MemoryController.h"

/// @file
/// The operations of all interfaces, each by both doors: the classes and the plain functions.

namespace harvlink::test {

struct Outcome {
    StatusInfo status;
    std::string image; ///< of the outputs
    std::string cutImage; ///< the same as the plain interface shows it
    bool threw = false;
    std::size_t asked = 0; ///< exchanges begun

    bool operator==(Outcome const& other) const {
        return status.StatusCode == other.status.StatusCode && status.Message == other.status.Message &&
               image == other.image && threw == other.threw && asked == other.asked;
    }
};

/// What sets an operation apart from one that clears its outputs, ends at the first failure and hands its status on.
struct Traits {
    std::map<int, int> codes{}; ///< what the controller's numbers become
    int statusOnOlder = 0; ///< on generations before the extended road; 0: works there too
    bool isUntouchedOnOlder = false;
    std::set<std::size_t> ignored{}; ///< exchanges whose failure changes neither status nor course
    Script afterFailure{}; ///< what is asked after one that counts
    bool handsOutRefusals = false; ///< what a refusal carries is treated like a success
    bool mayThrow = false; ///< on a reply that can't be read
    std::string successMessage = "OK";
    std::string failureMessage{}; ///< of any refusal; the table's if empty
};

struct Operation {
    std::string name; ///< of the plain function, by either door
    bool isPlain;
    Script script;
    Traits traits;
    std::function<Outcome(Robot&)> call;
    std::function<std::string(std::size_t)> imageAfterFailure; ///< of that exchange
    std::string imageOnOlder; ///< where the generation does not have it
    bool hasOutput;
};

using Table = std::vector<Operation>;

inline constexpr int UnsupportedThere = 0x30005;

/// The value with a moat to see a write that misses it.
template <typename Value>
struct Guarded {
    static constexpr std::uint8_t mark = 0xc3;

    Guarded() {
        before.fill(mark);
        after.fill(mark);
    }
    void Check() const {
        for (auto const& moat : {before, after}) {
            EXPECT_TRUE(std::ranges::all_of(moat, [](std::uint8_t byte) { return byte == mark; })) << "wrote beside";
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

/// Runs a call on a poisoned output and looks at all that it left.
template <typename Value>
Outcome Look(Robot& robot, auto const& call, auto const& poison, auto const& image) {
    Guarded<Value> output;
    poison(output.value);
    Outcome outcome;
    try {
        outcome.status = Take(call(output.value));
    } catch (std::logic_error const&) {
        outcome.threw = true;
    }
    std::tie(outcome.image, outcome.cutImage) = image(output.value);
    outcome.asked = robot.machine.Asked();
    output.Check();
    return outcome;
}

/// A plain record and how its class twin reads it. Texts in it are taken over, unless it is still poisoned.
template <typename Record, typename Plain>
struct PlainOutput {
    static constexpr bool isSame = std::is_same_v<Record, Plain> || std::is_arithmetic_v<Plain>;
    static constexpr bool isTwin = !isSame && std::is_trivially_copyable_v<Record>;
    static constexpr bool isPassedOn = isSame || isTwin; ///< to the class

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

/// Adds an operation with the output `Record` on the class side and `Plain` on the other. `afterFailure` tells what the
/// output holds when that exchange failed; a cleared record if it is not given.
template <typename Record, typename Plain>
void Add(
    Table& table, std::string const& name, Script const& script, auto onClass, auto onPlain, Traits const& traits = {},
    std::function<Record(std::size_t)> afterFailure = [](std::size_t) { return Record{}; }) {
    constexpr bool hasOutput = !std::is_same_v<Record, NoOutput>;
    Record const onOlder = traits.isUntouchedOnOlder ? Poisoned<Record>() : Record{};
    // Records with texts are filled in any case: there is something to free then.
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

/// Makes the two calls of a row: on the controller `c` with output `out`, and on the handle `h`.
#define ON_CLASS(...) [](QuorvanController& c, [[maybe_unused]] auto& out) -> StatusInfo { return __VA_ARGS__; }
#define ON_PLAIN(...) [](ControllerHandle h, [[maybe_unused]] auto* out) -> IStatusInfo { return __VA_ARGS__; }

/// Bytes that differ from each other and from zero.
Bytes Pattern(std::size_t size);

void AddStateOperations(Table& table); ///< state, groups, alarms, jobs, commands
void AddVariableOperations(Table& table);
void AddSignalOperations(Table& table); ///< and registers
void AddSequenceOperations(Table& table); ///< files, motion, position conversion

Table AllOperations();

} // namespace harvlink::test
