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

/// What can go wrong between a request and its answer. The first eleven concern the reply of a request that was carried
/// out; the others keep it from being carried out.
enum class Fault : std::uint8_t {
    Drop,
    Delay,
    Duplicate,
    Reorder, ///< goes out after the next reply to the same client, at the latest after ReorderLimit
    Truncate, ///< to a random length, which may be shorter than a header
    Extend, ///< by 1 to 64 random bytes
    FlipBits, ///< 1 to 8 of them, anywhere
    WrongId,
    StaleId, ///< the id of the request before
    OtherPort, ///< from the controller's other port, to the socket that the client uses with that if there is only one
    OtherSource, ///< from a port of the controller that is none of its two
    Silence, ///< nothing is answered from here on, for FaultPlan::silence
    Refuse, ///< this and the following requests, FaultPlan::refuseCount in all
    BufferFull, ///< targets are refused with the code of a full buffer, for FaultPlan::bufferFull
    Restart, ///< servo power is lost and open file transfers are forgotten; the request is not answered
};

inline constexpr std::size_t FaultKinds = 15;

/// As FaultPlan::Set takes it.
std::string_view NameOf(Fault fault);

/// How often and how much. Without a rate above 0 nothing goes wrong by itself.
struct FaultPlan {
    static constexpr Clock::Duration ReorderLimit = std::chrono::milliseconds(100);

    std::uint64_t seed = 1; ///< the same seed and the same requests give the same faults
    std::array<double, FaultKinds> rates{}; ///< by Fault: the share of requests that it hits, 0 to 1
    std::array<std::optional<double>, FaultKinds> fileRates{}; ///< those on the file port, where they differ
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

    /// Sets one value by its name: a fault in lower case with hyphens ("flip-bits") and its rate, with "file-" before it
    /// the rate on the file port alone, or "seed", "delay-ms", "silence-ms", "buffer-full-ms", "refuse-code",
    /// "refuse-count". Returns what is wrong, empty if nothing is.
    std::string Set(std::string_view name, double value);

    /// Reads "seed=7, drop=2%, delay=0.1, delay-ms=30". Returns what is wrong, empty if nothing is.
    std::string Parse(std::string_view text);
};

/// A name that FaultPlan::Set takes, and what it means in a few words.
struct FaultName {
    std::string_view name;
    std::string_view meaning;
};

/// The faults, and the settings of faults.
std::vector<FaultName> FaultNames();
std::vector<FaultName> FaultSettingNames();

} // namespace harvlink::simulator
