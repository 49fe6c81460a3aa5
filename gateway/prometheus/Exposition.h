#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "gateway/config/Config.h"
#include "gateway/prometheus/RoundTrips.h"
#include "gateway/prometheus/SeriesPlan.h"
#include "gateway/watch/LatestTable.h"
#include "harvlink/Fleet.h"

namespace harvlink::gateway {

/// Where figures come from. All are called by Text.
struct ExpositionSources {
    std::string gateway; ///< its name
    std::function<std::vector<LatestController>()> latest;
    std::function<FleetStatistics()> statistics;
    std::function<std::map<std::uint32_t, RoundTrips::Counts>()> roundTrips;
    std::function<std::uint64_t()> samples;
    std::function<std::vector<Figure>()> figures;
};

class Families;

/// The text that a Prometheus server scrapes, of what is known now. There are no time stamps in it: they would switch off the
/// server's marking of stale values. Values that are not good are left out. Operations may be called from any thread.
class Exposition {
public:
    Exposition(ExpositionSources sources, std::size_t mostSeries);

    std::string Text();

    void SetMostSeries(std::size_t mostSeries);

private:
    using AllSeries = std::vector<std::vector<Series>>;
    struct Plan {
        std::shared_ptr<AllSeries const> series; ///< of each reading; controllers with the same ones share them
        bool isUsed = false;
    };

    void AddController(Families& families, LatestController const& latest);
    static void AddLink(Families& families, LatestController const& latest);
    static void AddStatistics(Families& families, FleetStatistics const& statistics,
                              std::map<std::string, ControllerPtr> const& controllers);
    void AddGateway(Families& families, FleetStatistics const& statistics) const;
    Plan const& PlanOf(ControllerPtr const& controller);

    ExpositionSources sources_;
    std::mutex mutex_;
    std::size_t mostSeries_;
    std::size_t lastSize_ = 0; ///< of the text
    std::map<std::uint32_t, Plan> plans_; ///< by id of the controller
    std::shared_ptr<AllSeries const> lastSeries_; ///< that were made
};

} // namespace harvlink::gateway
