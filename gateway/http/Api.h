#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "gateway/config/Config.h"
#include "gateway/http/Request.h"
#include "gateway/http/Summary.h"
#include "gateway/model/Observer.h"
#include "gateway/watch/LatestTable.h"
#include "harvlink/Fleet.h"

namespace harvlink::gateway {

/// What the API reads from. Operations may be called on any thread.
struct ApiSources {
    std::string gateway; ///< its name
    LatestTable const* table = nullptr;
    std::function<FleetStatistics()> statistics;
    std::function<FleetPlan()> plan;
    std::function<LastRoundTrips()> roundTrips;
    std::function<std::vector<Figure>()> figures;
    std::function<std::string()> metrics; ///< empty: there is no /metrics
    std::map<std::string, GeometryConfig> geometries; ///< by name of the controller
    std::filesystem::path recording; ///< empty: nothing is recorded
    std::filesystem::path incidents; ///< folder; empty: there are none
    bool isSimulated = false;
    /// Only of a simulated gateway: does to a virtual controller what the body says.
    std::function<Response(std::string const& controller, words::Json const& body)> changeVirtual;
};

/// How long an answer takes at worst.
enum class Effort {
    None, ///< microseconds
    Memory, ///< tens of milliseconds, of a thousand controllers
    Disk ///< seconds
};

/// Answers what begins with /api/, /metrics and /health. It keeps nothing.
class Api {
public:
    explicit Api(ApiSources sources) : sources_(std::move(sources)) {}

    /// Whether it is for the WebSocket, which the listener serves.
    static bool IsLive(Request const& request);

    static Effort EffortOf(Request const& given);

    /// `stop` ends soon what reads a recording; the answer is then of no use.
    Response Answer(Request const& given, std::stop_token const& stop = {}) const;

    /// What a client gets first over the WebSocket, without controllers and events.
    words::Json Hello() const;

    ApiSources const& Sources() const { return sources_; }

private:
    Response Controllers(Request const& request) const;
    Response OneController(std::string const& rest) const;
    Response Geometry(LatestController const& latest) const;
    Response Latest() const;
    Response Dispatch(Request const& request, std::stop_token const& stop) const;
    Response Events(Request const& request, std::stop_token const& stop) const;
    Response History(Request const& request, std::stop_token const& stop) const;
    Response Card(Request const& request) const;
    Response Incidents(Request const& request) const;
    Response Incident(Request const& request, std::string const& name, std::stop_token const& stop) const;
    Response Status() const;
    Response Health(Request const& request) const;
    Response Virtual(Request const& request, std::string const& name) const;
    words::Json LinkJson(std::string const& name) const;
    std::optional<LatestController> Find(std::string const& name) const;

    ApiSources sources_;
};

} // namespace harvlink::gateway
