#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "gateway/config/Config.h"
#include "gateway/http/Request.h"
#include "simulator/control/Tour.h"
#include "simulator/network/Server.h"

namespace harvlink::gateway {

/// The virtual controllers of --simulate, on loopback addresses of their own. They work: two of three move their
/// arms, the others run a job. Only they can be changed through the gateway, and only within this process.
class VirtualPlant {
public:
    /// Throws ConfigError if there are not so many free addresses.
    explicit VirtualPlant(unsigned count);
    VirtualPlant(VirtualPlant const&) = delete;
    VirtualPlant& operator=(VirtualPlant const&) = delete;
    ~VirtualPlant();

    /// Fills in controllers, polls and the geometry of the arms.
    void AddTo(Config& config) const;
    /// The same for virtual controllers at these addresses: robot1, robot2 ...
    static void Watch(Config& config, std::vector<std::string> const& addresses);

    /// {"alarm":4107}, {"reset":true}, {"hold":true}, {"signal":[20010,true]}, {"fault":"silence=100%"}, {"fault":""}
    Response Change(std::string const& controller, words::Json const& body);

private:
    bool Start(unsigned block, unsigned count);
    void KeepMoving();

    std::unique_ptr<simulator::Server> server_;
    simulator::ControllerOptions options_;
    std::map<std::string, simulator::VirtualController*> controllers_; ///< by name
    std::vector<std::pair<simulator::VirtualController*, simulator::Tour>> tours_; ///< of those whose arms move
    std::mutex mutex_;
    std::condition_variable ends_;
    bool isEnding_ = false;
    std::thread mover_;
};

} // namespace harvlink::gateway
