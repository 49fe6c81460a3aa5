#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/epoll.h>

namespace harvlink::bench {

/// The floor of a fleet: one connected socket for each controller, all of them in flight, one epoll, and nothing else.
class BareFleet {
public:
    explicit BareFleet(std::vector<std::string> const& addresses);
    BareFleet(BareFleet const&) = delete;
    BareFleet& operator=(BareFleet const&) = delete;
    ~BareFleet();

    /// Reads byte variables for so long. @return how many were answered
    double Run(double seconds);

    /// Reads so many byte variables of each peer in turn, in rounds that begin a period apart.
    /// @return the seconds from the begin of each round to that of the next
    std::vector<double> RunRounds(std::chrono::nanoseconds period, int items, double seconds);

private:
    struct Peer {
        int socket = -1;
        unsigned char id = 0;
        int left = 0; ///< variables of the round
        std::int64_t begunAt = 0;
    };

    static void Ask(Peer& peer);
    double ReadAnswers(std::int64_t wait);

    int epoll;
    std::array<epoll_event, 256> events{};
    std::vector<Peer> peers;
};

} // namespace harvlink::bench
