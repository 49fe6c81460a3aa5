#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace harvlink::gateway {

/// Tells systemd how the program is, by the datagrams of its notification protocol. Says nothing where nobody listens.
class SystemNotice {
public:
    SystemNotice();
    SystemNotice(SystemNotice const&) = delete;
    SystemNotice& operator=(SystemNotice const&) = delete;
    ~SystemNotice();

    void Ready(std::string const& status) const;
    void Reloading() const; ///< Ready follows
    void Stopping() const;
    void Alive() const;

    /// How often Alive must be called; none if nobody asks for it.
    std::optional<std::chrono::microseconds> WatchdogPeriod() const { return watchdog_; }

private:
    void Send(std::string const& text) const;

    int socket_ = -1;
    std::string address_;
    std::optional<std::chrono::microseconds> watchdog_;
};

} // namespace harvlink::gateway
