#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace harvlink::soak {

/// For each generation one controller for the long connections and one for the short ones. The motion targets of a
/// controller belong to the client that connected last, and only with one client does a controller know which sockets
/// belong together.
struct Addresses {
    std::string older;
    std::string olderVisited;
    std::string newer;
    std::string newerVisited;
};

struct Options {
    double minutes = 1.0;
    std::uint64_t seed = 1;
    double rate = 0.0; ///< limit of operations per second of all workers together; 0: none
    Addresses addresses;
    std::string simulator; ///< the program
    std::vector<std::string> simulatorPrefix; ///< command that starts it, such as: ip netns exec NAME
    std::string faults; ///< for the simulator; empty: none
    bool badNetwork = false; ///< the network also loses, delays and doubles requests
    std::string report;

    /// The time after which late datagrams of an operation can no longer be taken for those of the next one.
    std::chrono::milliseconds SettleTime() const { return std::chrono::milliseconds(badNetwork ? 60 : 0); }

    /// Every block of a transfer needs an answer. Where most transfers fail, only short ones can succeed.
    int HighestTool() const { return badNetwork ? 1 : 63; }
    std::size_t LargestFile() const { return badNetwork ? 1000 : 100'000; }
    unsigned LongestTrajectory() const { return badNetwork ? 6 : 40; }

    /// Long enough for a loaded machine.
    static constexpr unsigned TimeoutMilliseconds = 200;
    static constexpr unsigned Retries = 3;
};

/// These hit about two of a hundred replies. The times run ten times as fast in the controllers.
inline constexpr char const* DefaultFaults =
    "drop=0.4%,delay=0.3%,duplicate=0.3%,reorder=0.1%,truncate=0.2%,extend=0.2%,flip-bits=0.1%,wrong-id=0.15%,"
    "stale-id=0.15%,other-port=0.1%,other-source=0.1%,silence=0.01%,refuse=0.05%,restart=0.01%,buffer-full=2%,"
    "file-drop=0.1%,file-delay=1%,file-duplicate=1%,file-reorder=0.2%,file-truncate=0.05%,file-extend=0.05%,"
    "file-misnumber=0.1%,file-flip-bits=0.05%,file-wrong-id=0.1%,file-stale-id=0.1%,file-other-port=0.2%,"
    "file-other-source=0.3%,delay-ms=300,silence-ms=5000";

} // namespace harvlink::soak
