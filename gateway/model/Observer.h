#pragma once

#include <string>
#include <utility>
#include <vector>

#include "gateway/model/Batch.h"
#include "gateway/model/Controller.h"

namespace harvlink::gateway {

/// A figure that a sink shows in /metrics and in /api/v1/status.
struct Figure {
    std::string
        name; ///< after the conventions of Prometheus, such as "harvlink_mqtt_store_bytes"; counters end in "_total"
    std::string help;
    double value = 0.0;
    std::vector<std::pair<std::string, std::string>> labels{}; ///< of few values
};

/// Gets everything that the fleet reads. All operations but Figures are called on one thread, the dispatcher's, one at a time,
/// and must not block: what takes time, a sink does on a thread of its own. An operation raises no exception.
///
/// A controller is added before its first sample, and after its removal none comes. An observer that is added later gets the
/// controllers first, and then the latest sample and the state of the link of each, in a batch. Batches come all the time, empty
/// ones too, at least ten a second.
class Observer {
public:
    Observer() = default;
    Observer(Observer const&) = delete;
    Observer& operator=(Observer const&) = delete;
    virtual ~Observer() = default;

    virtual void Added(ControllerPtr const& controller) = 0;
    virtual void Removed(ControllerPtr const& controller) = 0;
    virtual void Take(Batch const& batch) = 0;

    /// Called on any thread.
    virtual std::vector<Figure> Figures() const { return {}; }
};

} // namespace harvlink::gateway
