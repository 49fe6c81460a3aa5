#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/base/Clock.h"
#include "simulator/protocol/Refusal.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// The kinds of fault. The first twelve change the reply of a request that was carried out; with the others the request
/// is not carried out.
enum class Fault : std::uint8_t {
    Drop,
    Delay,
    Duplicate,
    Reorder, ///< sent after the next reply to the same client, at the latest after ReorderLimit
    Truncate, ///< to a random length, which may be shorter than a header
    Extend, ///< by 1 to 64 random bytes
    FlipBits, ///< 1 to 8 of them, anywhere
    WrongId,
    StaleId, ///< the id of the request before
    OtherPort, ///< from the controller's other port; with a single client, to the socket that it uses there
    OtherSource, ///< from a third port of the controller
    Misnumber, ///< the block of a file has a number that is one to three higher or lower; other replies stay
    Silence, ///< no request is answered for FaultPlan::silence
    Refuse, ///< this and the following requests, FaultPlan::refuseCount in all
    BufferFull, ///< targets are refused with the code of a full buffer, for FaultPlan::bufferFull
    Restart, ///< servo power is lost and open file transfers are forgotten; the request is not answered
};

inline constexpr std::size_t FaultKinds = 16;

/// The name that FaultPlan::Set takes.
std::string_view NameOf(Fault fault);

/// The rates of faults and their settings. Without a rate above 0 no fault happens at random.
struct FaultPlan {
    static constexpr Clock::Duration ReorderLimit = std::chrono::milliseconds(100);

    std::uint64_t seed = 1; ///< the same seed and the same requests give the same faults
    std::array<double, FaultKinds> rates{}; ///< by Fault: the share of requests that are hit, 0 to 1
    std::array<std::optional<double>, FaultKinds> fileRates{}; ///< rates on the file port, where they differ
    Clock::Duration delay = std::chrono::milliseconds(20);
    Clock::Duration silence = std::chrono::milliseconds(500);
    Clock::Duration bufferFull = std::chrono::milliseconds(50);
    Refusal refuseCode = Refusal::AlarmOrErrorIsActive;
    std::uint32_t refuseCount = 1;

    double& Rate(Fault fault) { return rates.at(static_cast<std::size_t>(fault)); }

    double RateOn(Port port, Fault fault) const {
        auto const index = static_cast<std::size_t>(fault);
        return port == Port::File ? fileRates.at(index).value_or(rates.at(index)) : rates.at(index);
    }

    /// Sets one value by its name: a fault in lower case with hyphens ("flip-bits") and its rate, with "file-" before
    /// it the rate on the file port alone, or "seed", "delay-ms", "silence-ms", "buffer-full-ms", "refuse-code",
    /// "refuse-count". Returns an error message, empty on success.
    std::string Set(std::string_view name, double value);

    /// Reads "seed=7, drop=2%, delay=0.1, delay-ms=30". Returns an error message, empty on success.
    std::string Parse(std::string_view text);
};

/// A name that FaultPlan::Set takes, and its meaning in a few words.
struct FaultName {
    std::string_view name;
    std::string_view meaning;
};

/// The faults, and the settings of faults.
std::vector<FaultName> FaultNames();
std::vector<FaultName> FaultSettingNames();

} // namespace harvlink::simulator
