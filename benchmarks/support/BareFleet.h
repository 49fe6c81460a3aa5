#pragma once

#include <string>
#include <vector>

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

private:
    struct Peer {
        int socket;
        unsigned char id;
    };

    static void Ask(Peer& peer);

    int epoll;
    std::vector<Peer> peers;
};

} // namespace harvlink::bench
