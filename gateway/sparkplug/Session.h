#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "gateway/sparkplug/Backoff.h"
#include "gateway/sparkplug/HostState.h"

namespace harvlink::gateway::sparkplug {

enum class SessionState {
    Waiting, ///< for the next attempt
    Connecting, ///< until the broker is reached
    Greeting, ///< until it accepts the CONNECT
    Subscribing, ///< until it accepts the subscriptions
    AwaitingHost, ///< for the primary host to be online
    Born, ///< births are out, data flows
    Leaving, ///< until the own death is acknowledged
    Stopped,
};

/// What the node has to do, in this order.
enum class SessionAction {
    Connect, ///< to the broker Server(), with the next number of a session
    Subscribe,
    Birth, ///< the births of all, and then data
    Rebirth, ///< the same in the same session
    Death, ///< publish the own death, with an acknowledgement
    Disconnect, ///< in an orderly way: the broker forgets the will
    Close, ///< at once: the broker publishes the will
};

using SessionActions = std::vector<SessionAction>;

struct SessionOptions {
    std::size_t servers = 1;
    bool hasPrimaryHost = false;
    Milliseconds rebirthInterval{5000};
    std::uint32_t seed = 1; ///< of what is random in the delays
};

struct SessionStatistics {
    std::uint64_t rebirths = 0;
    std::uint64_t ignoredRebirths = 0; ///< too soon after the last
    std::uint64_t losses = 0; ///< of connections that had been accepted
};

/// The life of an edge node between its births and deaths. It knows no socket and no clock: events go in with the time, actions
/// come out.
class Session {
public:
    Session(SessionOptions const& options, Moment now);

    SessionState State() const { return state_; }
    std::size_t Server() const { return server_; }
    /// When Tick has to be called at the latest.
    Moment Deadline() const { return deadline_; }
    SessionStatistics const& Statistics() const { return statistics_; }

    SessionActions Tick(Moment now);
    void LookingUp(Moment now);
    void LookedUp(Moment now);
    SessionActions Reached(Moment now);
    SessionActions Accepted(Moment now);
    SessionActions Subscribed(Moment now);
    SessionActions HostChanged(HostState const& state, Moment now);
    SessionActions RebirthRequested(Moment now);
    SessionActions DeathAcknowledged(Moment now);
    /// The connection is gone, or has to go: the actions close it in any case.
    SessionActions Failed(Failure failure, Moment now);
    /// For good. It takes at most half a second.
    SessionActions Stop(Moment now);

private:
    struct ServerState {
        Backoff backoff;
        HostGate host;
        Moment notBefore{};
    };

    SessionActions BeginAttempt(Moment now);
    SessionActions GiveUp(Failure failure, Moment now);
    SessionActions Left(Moment now);
    SessionActions BeBorn(Moment now);
    SessionActions LeaveFor(Moment now);
    void WaitFor(std::size_t first, Moment now);
    void Enter(SessionState state, Moment deadline);

    SessionOptions options_;
    std::vector<ServerState> servers_;
    std::size_t server_ = 0;
    SessionState state_ = SessionState::Waiting;
    Moment deadline_{};
    Moment acceptedAt_{};
    std::optional<Moment> lastRebirth_;
    bool isStopping_ = false;
    SessionStatistics statistics_;
};

} // namespace harvlink::gateway::sparkplug
