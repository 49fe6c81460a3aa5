#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "gateway/config/Config.h"
#include "gateway/model/Log.h"
#include "gateway/watch/Dispatcher.h"
#include "harvlink/Fleet.h"

namespace harvlink::gateway {

/// The fleet with its dispatcher, kept as a configuration says. Apply, Start and Stop are for one thread.
class Watch {
public:
    explicit Watch(Log& log);
    Watch(Watch const&) = delete;
    Watch& operator=(Watch const&) = delete;
    /// Stops.
    ~Watch();

    struct Applied {
        std::size_t added = 0;
        std::size_t removed = 0;
        std::size_t changed = 0;
        std::size_t kept = 0;
    };

    /// Adds, removes and reconnects what differs from what is watched; all others go on undisturbed. `areVirtual`: they are
    /// those of --simulate.
    Applied Apply(Config const& config, bool areVirtual = false);

    StatusInfo Start() { return fleet_.Start(); }

    /// Ends within a second.
    void Stop();

    gateway::Dispatcher& Dispatch() { return dispatcher_; }
    Fleet const& Engine() const { return fleet_; }

private:
    struct Watched {
        ControllerPtr controller;
        std::string fingerprint; ///< of all that the configuration says of it
    };
    struct Waiting {
        FleetControllerOptions options;
        std::vector<FleetGroup> groups;
        bool isTold = false;
    };

    void Add(ControllerConfig const& config, std::vector<FleetGroup> const& groups, std::string fingerprint,
             bool isVirtual);
    void Remove(std::string const& name);
    void Resolve();
    void ResolveOne(std::string const& name, Waiting& waiting);

    Log& log_;
    Fleet fleet_;
    Dispatcher dispatcher_;
    std::map<std::string, Watched> watched_;
    std::uint32_t lastId_ = 0;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::map<std::string, Waiting> waiting_; ///< controllers whose host is named, until the name is resolved
    bool isStopping_ = false;
    std::thread resolver_;
};

} // namespace harvlink::gateway
