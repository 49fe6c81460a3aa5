#include "gateway/sparkplug/Session.h"

#include <algorithm>

namespace harvlink::gateway::sparkplug {

namespace {

using std::chrono::minutes;
using std::chrono::seconds;

constexpr Milliseconds LookUpLimit = seconds(30); ///< of the name of a broker: the system asks several servers in turn
constexpr Milliseconds ReachLimit = seconds(4); ///< of TCP and TLS
constexpr Milliseconds AcceptLimit = seconds(10); ///< of a broker that is loaded
constexpr Milliseconds SubscribeLimit = seconds(10);
constexpr Milliseconds LeaveLimit{500};
constexpr Milliseconds HostLimit = seconds(10); ///< for the retained state of a host, if there are other brokers to ask
constexpr Milliseconds ThrownOutWithin = seconds(5);
constexpr Milliseconds HeldFor = minutes(1);
constexpr Moment Never = Moment::max();

} // namespace

Session::Session(SessionOptions const& options, Moment now) : options_(options) {
    for (std::size_t i = 0; i < std::max<std::size_t>(1, options.servers); ++i) {
        servers_.push_back(
            {.backoff = Backoff(options.seed + static_cast<std::uint32_t>(i)), .host = {}, .notBefore = now});
    }
    Enter(SessionState::Waiting, now);
}

void Session::Enter(SessionState state, Moment deadline) {
    state_ = state;
    deadline_ = deadline;
}

SessionActions Session::Tick(Moment now) {
    if (now < deadline_) {
        return {};
    }
    switch (state_) {
    case SessionState::Waiting:
        return BeginAttempt(now);
    case SessionState::Connecting:
    case SessionState::Greeting:
    case SessionState::Subscribing:
        return GiveUp(Failure::Unreachable, now);
    case SessionState::AwaitingHost: // at another broker it may be online
        return LeaveFor(now);
    case SessionState::Born:
        servers_[server_].backoff.Reset();
        deadline_ = Never;
        return {};
    case SessionState::Leaving:
        return Left(now);
    case SessionState::Stopped:
        break;
    }
    return {};
}

SessionActions Session::BeginAttempt(Moment now) {
    Enter(SessionState::Connecting, now + ReachLimit);
    return {SessionAction::Connect};
}

void Session::LookingUp(Moment now) {
    if (state_ == SessionState::Connecting) {
        deadline_ = now + LookUpLimit;
    }
}

void Session::LookedUp(Moment now) {
    if (state_ == SessionState::Connecting) {
        deadline_ = now + ReachLimit;
    }
}

SessionActions Session::Reached(Moment now) {
    if (state_ == SessionState::Connecting) {
        Enter(SessionState::Greeting, now + AcceptLimit);
    }
    return {};
}

SessionActions Session::Accepted(Moment now) {
    if (state_ != SessionState::Connecting && state_ != SessionState::Greeting) {
        return {};
    }
    acceptedAt_ = now;
    Enter(SessionState::Subscribing, now + SubscribeLimit);
    return {SessionAction::Subscribe};
}

SessionActions Session::Subscribed(Moment now) {
    if (state_ != SessionState::Subscribing) {
        return {};
    }
    if (!options_.hasPrimaryHost) {
        return BeBorn(now);
    }
    Enter(SessionState::AwaitingHost, servers_.size() > 1 ? now + HostLimit : Never);
    return {};
}

SessionActions Session::BeBorn(Moment now) {
    lastRebirth_.reset(); // the first births open no window
    Enter(SessionState::Born, std::max(now, acceptedAt_ + HeldFor));
    return {SessionAction::Birth};
}

SessionActions Session::HostChanged(HostState const& state, Moment now) {
    bool const isSubscribed =
        state_ == SessionState::Subscribing || state_ == SessionState::AwaitingHost || state_ == SessionState::Born;
    if (!options_.hasPrimaryHost || !isSubscribed || !servers_[server_].host.Accept(state)) {
        return {};
    }
    if (state.isOnline) {
        return state_ == SessionState::Born ? SessionActions{} : BeBorn(now);
    }
    // With one broker there is nowhere else to look, so an unborn node stays and waits.
    bool const mustLeave = state_ == SessionState::Born || servers_.size() > 1;
    return mustLeave ? LeaveFor(now) : SessionActions{};
}

/// Leaves this broker for the next one, or for a new session with the same.
SessionActions Session::LeaveFor(Moment now) {
    if (state_ == SessionState::Born) {
        Enter(SessionState::Leaving, now + LeaveLimit);
        return {SessionAction::Death};
    }
    return Left(now);
}

SessionActions Session::DeathAcknowledged(Moment now) {
    return state_ == SessionState::Leaving ? Left(now) : SessionActions{};
}

SessionActions Session::Left(Moment now) {
    if (isStopping_) {
        Enter(SessionState::Stopped, Never);
    } else {
        // Other nodes leave at the same moment, so not all at once, and an unborn one does not circle without a pause.
        servers_[server_].notBefore = now + servers_[server_].backoff.Next(Failure::Unreachable);
        WaitFor(server_ + 1, now);
    }
    return {SessionAction::Disconnect};
}

SessionActions Session::RebirthRequested(Moment now) {
    if (state_ != SessionState::Born) {
        return {};
    }
    if (lastRebirth_ && now < *lastRebirth_ + options_.rebirthInterval) {
        ++statistics_.ignoredRebirths;
        return {};
    }
    lastRebirth_ = now;
    ++statistics_.rebirths;
    return {SessionAction::Rebirth};
}

SessionActions Session::Failed(Failure failure, Moment now) {
    if (state_ == SessionState::Waiting || state_ == SessionState::Stopped) {
        return {};
    }
    bool const wasAccepted = state_ != SessionState::Connecting && state_ != SessionState::Greeting;
    statistics_.losses += wasAccepted ? 1 : 0;
    if (wasAccepted && failure == Failure::Unreachable && now < acceptedAt_ + ThrownOutWithin) {
        failure = Failure::ThrownOut;
    }
    return GiveUp(failure, now);
}

SessionActions Session::GiveUp(Failure failure, Moment now) {
    if (isStopping_) {
        Enter(SessionState::Stopped, Never);
        return {SessionAction::Close};
    }
    servers_[server_].notBefore = now + servers_[server_].backoff.Next(failure);
    WaitFor(server_ + 1, now);
    return {SessionAction::Close};
}

/// For the broker that may be tried first; of several, for the next one in the list from `first`.
void Session::WaitFor(std::size_t first, Moment now) {
    std::size_t best = first % servers_.size();
    for (std::size_t i = 0; i < servers_.size(); ++i) {
        std::size_t const candidate = (first + i) % servers_.size();
        if (std::max(now, servers_[candidate].notBefore) < std::max(now, servers_[best].notBefore)) {
            best = candidate;
        }
    }
    server_ = best;
    Enter(SessionState::Waiting, std::max(now, servers_[best].notBefore));
}

SessionActions Session::Stop(Moment now) {
    isStopping_ = true;
    if (state_ == SessionState::Born) {
        return LeaveFor(now);
    }
    bool const isConnected = state_ == SessionState::Subscribing || state_ == SessionState::AwaitingHost;
    bool const isTrying = state_ == SessionState::Connecting || state_ == SessionState::Greeting;
    if (state_ == SessionState::Leaving) {
        return {};
    }
    Enter(SessionState::Stopped, Never);
    if (isConnected) {
        return {SessionAction::Disconnect};
    }
    return isTrying ? SessionActions{SessionAction::Close} : SessionActions{};
}

} // namespace harvlink::gateway::sparkplug
