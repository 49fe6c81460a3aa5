#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "gateway/config/Config.h"
#include "gateway/http/Request.h"
#include "simulator/network/Server.h"

namespace harvlink::gateway {

/// The virtual controllers of --simulate, on loopback addresses of their own. They work: each runs a job, some stand still now
/// and then. Only they can be changed through the gateway, and only within this process.
class VirtualPlant {
public:
    /// Throws ConfigError if there are not so many free addresses.
    explicit VirtualPlant(unsigned count);
    VirtualPlant(VirtualPlant const&) = delete;
    VirtualPlant& operator=(VirtualPlant const&) = delete;
    ~VirtualPlant();

    /// Fills in controllers, polls and the geometry of the arms.
    void AddTo(Config& config) const;

    /// {"alarm":4107}, {"reset":true}, {"hold":true}, {"signal":[20010,true]}, {"fault":"silence=100%"}, {"fault":""}
    Response Change(std::string const& controller, words::Json const& body);

private:
    bool Start(unsigned block, unsigned count);

    std::unique_ptr<simulator::Server> server_;
    simulator::ControllerOptions options_;
    std::map<std::string, simulator::VirtualController*> controllers_; ///< by name
};

} // namespace harvlink::gateway
