#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>

namespace harvlink::soak {

/// Faults that a strict connection can't undo: a damaged answer can look like any other, and a request that was refused or
/// ignored was not carried out.
enum class Damage : std::uint8_t { FlippedBits, Refusal, Silence, Restart };

/// How many requests each kind of damage has hit so far.
struct DamageCounts {
    static constexpr std::size_t Kinds = 4;
    std::array<std::uint64_t, Kinds> hits{};

    std::uint64_t Of(Damage kind) const { return hits.at(static_cast<std::size_t>(kind)); }
    DamageCounts& operator+=(DamageCounts const& other);
    bool operator==(DamageCounts const&) const = default;
};

/// Follows the log of faults that a virtual controller writes while it runs. What hit a request is in it before the answer
/// arrives, so a wrong value is explained, or it is a failure. Any thread may call it.
class FaultJournal {
public:
    explicit FaultJournal(std::filesystem::path const& file) : file_(file) {}

    DamageCounts Counts();

private:
    void Take(std::string const& line);

    std::mutex mutex_;
    std::ifstream file_;
    std::string rest_; ///< the beginning of a line that is not whole yet
    DamageCounts counts_;
};

} // namespace harvlink::soak
