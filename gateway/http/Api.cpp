#include "gateway/http/Api.h"

#include <algorithm>
#include <chrono>
#include <numeric>

#include <fmt/format.h>

#include "gateway/http/Items.h"
#include "gateway/http/Query.h"
#include "harvlink/Version.h"
#include "recording/store/Database.h"
#include "words/cards/Explain.h"
#include "words/text/InputError.h"

namespace harvlink::gateway {

namespace {

using words::Json;

constexpr std::string_view ControllersPath = "/api/controllers/";
constexpr std::string_view CardsPath = "/api/cards/";
constexpr std::string_view IncidentsPath = "/api/incidents/";
constexpr std::string_view VirtualPath = "/api/virtual/";
constexpr std::string_view GeometrySuffix = "/geometry";

Response NotFound(std::string const& text) {
    return ErrorResponse(404, text);
}

/// The same paths are there with the version of the API in them.
Request WithoutVersion(Request request) {
    constexpr std::string_view Version = "/api/v1";
    if (request.path.starts_with(Version) &&
        (request.path.size() == Version.size() || request.path[Version.size()] == '/')) {
        request.path = "/api" + request.path.substr(Version.size());
    }
    return request;
}

} // namespace

Effort Api::EffortOf(Request const& given) {
    std::string const path = WithoutVersion(given).path;
    if (path.starts_with("/health")) {
        return Effort::None; // nothing that runs, and no length of a queue, must make it look dead
    }
    bool const needsDisk = path == "/api/events" || path == "/api/history" || path.starts_with("/api/incidents");
    return needsDisk ? Effort::Disk : Effort::Memory;
}

bool Api::IsLive(Request const& request) {
    return WithoutVersion(request).path == "/api/live";
}

Response Api::Answer(Request const& given, std::stop_token const& stop) const {
    Request const request = WithoutVersion(given);
    bool const isPost = request.method == "POST" && request.path.starts_with(VirtualPath);
    if (!request.IsRead() && !isPost) {
        Response response = ErrorResponse(405, "the gateway only reads; use GET");
        response.headers.emplace_back("allow:", "GET, HEAD");
        return response;
    }
    try {
        return Dispatch(request, stop);
    } catch (words::InputError const& error) {
        return ErrorResponse(400, error.what());
    } catch (recording::RecordingError const& error) {
        return ErrorResponse(503, fmt::format("the recording can't be read now: {}", error.what()));
    }
}

Response Api::Dispatch(Request const& request, std::stop_token const& stop) const {
    std::string const& path = request.path;
    if (path == "/metrics") {
        return sources_.metrics ? Response{200, "text/plain; version=0.0.4; charset=utf-8", sources_.metrics()}
                                : NotFound("metrics are switched off by [prometheus] enabled = false");
    }
    if (path.starts_with("/health")) {
        return Health(request);
    }
    if (path == "/api/controllers") {
        return Controllers(request);
    }
    if (path == "/api/latest") {
        return Latest();
    }
    if (path == "/api/events") {
        return Events(request, stop);
    }
    if (path == "/api/history") {
        return History(request, stop);
    }
    if (path == "/api/status") {
        return Status();
    }
    if (path == "/api/incidents") {
        return Incidents(request);
    }
    if (path.starts_with(ControllersPath)) {
        return OneController(path.substr(ControllersPath.size()));
    }
    if (path.starts_with(CardsPath)) {
        return Card(request);
    }
    if (path.starts_with(IncidentsPath)) {
        return Incident(request, path.substr(IncidentsPath.size()), stop);
    }
    if (path.starts_with(VirtualPath)) {
        return Virtual(request, path.substr(VirtualPath.size()));
    }
    return NotFound("there is no such path; docs/gateway.md lists them");
}

Json Api::Hello() const {
    using std::chrono::duration_cast;
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return {{"type", "hello"},
            {"gateway", sources_.gateway},
            {"version", std::string(HeaderVersion)},
            {"simulated", sources_.isSimulated},
            {"history", !sources_.recording.empty()},
            {"time", duration_cast<std::chrono::milliseconds>(now).count()}};
}

std::optional<LatestController> Api::Find(std::string const& name) const {
    for (LatestController& latest : sources_.table->Snapshot()) {
        if (latest.controller->name == name) {
            return {std::move(latest)};
        }
    }
    return std::nullopt;
}

Response Api::Controllers(Request const& /*request*/) const {
    auto const roundTrips = sources_.roundTrips();
    Json all = Json::array();
    for (LatestController const& latest : sources_.table->Snapshot()) {
        all.push_back(SummaryJson(latest, roundTrips));
    }
    return JsonResponse(all);
}

Response Api::OneController(std::string const& rest) const {
    bool const isGeometry = rest.ends_with(GeometrySuffix);
    std::string const name = isGeometry ? rest.substr(0, rest.size() - GeometrySuffix.size()) : rest;
    auto const latest = Find(name);
    if (!latest) {
        return NotFound(fmt::format("there is no controller '{}'", name));
    }
    if (isGeometry) {
        return Geometry(*latest);
    }
    Json items = Json::array();
    Json values = Json::array();
    for (ApiItem const& item : ItemsOf(*latest->controller)) {
        items.push_back(ItemJson(*latest->controller, item));
        values.push_back(ItemValueJson(*latest->controller, item, latest->samples.at(item.reading)));
    }
    return JsonResponse({{"summary", SummaryJson(*latest, sources_.roundTrips())},
                         {"items", std::move(items)},
                         {"values", std::move(values)},
                         {"link", LinkJson(name)},
                         {"hasGeometry", sources_.geometries.contains(name)}});
}

Json Api::LinkJson(std::string const& name) const {
    Json link = Json::object();
    for (FleetControllerStatistics const& each : sources_.statistics().controllers) {
        if (each.controller != name) {
            continue;
        }
        Json groups = Json::array();
        for (FleetGroupStatistics const& group : each.groups) {
            using Milliseconds = std::chrono::duration<double, std::milli>;
            groups.push_back({{"rounds", group.rounds},
                              {"overruns", group.overruns},
                              {"rate", group.effectiveRate},
                              {"lastRound", Milliseconds(group.lastRound).count()}});
        }
        using std::chrono::duration_cast;
        auto const since = duration_cast<std::chrono::milliseconds>(each.stateSince.time_since_epoch()).count();
        link = {{"since", since},
                {"exchanges", each.exchanges},
                {"timeouts", each.timeouts},
                {"repeated", each.repeatedRequests},
                {"late", each.lateAnswers},
                {"malformed", each.malformedAnswers},
                {"refused", each.refusals},
                {"startUps", each.startUps},
                {"groups", std::move(groups)}};
    }
    return link;
}

Response Api::Geometry(LatestController const& latest) const {
    auto const found = sources_.geometries.find(latest.controller->name);
    if (found == sources_.geometries.end()) {
        return NotFound("the lengths of this arm are not known; [controller.geometry] gives them");
    }
    GeometryConfig const& arm = found->second;
    return JsonResponse({{"group", arm.group},
                         {"shoulderHeight", arm.shoulderHeight},
                         {"shoulderOffset", arm.shoulderOffset},
                         {"upperArm", arm.upperArm},
                         {"elbowOffset", arm.elbowOffset},
                         {"forearm", arm.forearm},
                         {"hand", arm.hand},
                         {"pulsesPerDegree", arm.pulsesPerDegree}});
}

Response Api::Latest() const {
    Json all = Json::object();
    for (LatestController const& latest : sources_.table->Snapshot()) {
        Json values = Json::array();
        for (ApiItem const& item : ItemsOf(*latest.controller)) {
            values.push_back(ItemValueJson(*latest.controller, item, latest.samples.at(item.reading)));
        }
        all[latest.controller->name] = std::move(values);
    }
    return JsonResponse(all);
}

Response Api::Card(Request const& request) const {
    std::string const code = request.path.substr(CardsPath.size());
    std::string const subcode = TextOf(request, "subcode");
    for (std::string const& text :
         {subcode.empty() ? "alarm:" + code : fmt::format("{}-{}", code, subcode), "alarm:" + code}) {
        for (words::Explanation const& explanation : words::Explain(text)) {
            if (explanation.match == words::ExactMatch) {
                return JsonResponse({{"code", explanation.code},
                                     {"title", explanation.text},
                                     {"meaning", explanation.advice.cause},
                                     {"action", explanation.advice.check}});
            }
        }
    }
    return NotFound(fmt::format("nothing is known of alarm {}", code));
}

Response Api::Status() const {
    FleetStatistics const statistics = sources_.statistics();
    FleetPlan const plan = sources_.plan();
    std::uint64_t overruns = 0;
    std::map<std::string, int> links;
    for (LatestController const& latest : sources_.table->Snapshot()) {
        ++links[SummaryJson(latest, {})["link"]];
    }
    for (FleetControllerStatistics const& controller : statistics.controllers) {
        for (FleetGroupStatistics const& group : controller.groups) {
            overruns += group.overruns;
        }
    }
    Json figures = Json::array();
    for (Figure const& figure : sources_.figures()) {
        Json labels = Json::object();
        for (auto const& [name, value] : figure.labels) {
            labels[name] = value;
        }
        figures.push_back({{"name", figure.name}, {"help", figure.help}, {"value", figure.value}, {"labels", labels}});
    }
    return JsonResponse({{"gateway", sources_.gateway},
                         {"version", std::string(HeaderVersion)},
                         {"simulated", sources_.isSimulated},
                         {"controllers", links},
                         {"exchangesPerSecond", plan.exchangesPerSecond},
                         {"samples", statistics.samples},
                         {"droppedSamples", statistics.droppedSamples},
                         {"overruns", overruns},
                         {"recording", sources_.recording.string()},
                         {"figures", std::move(figures)}});
}

/// Alive: the program answers. Ready: every controller has answered, or has been found silent.
Response Api::Health(Request const& request) const {
    bool const isLive = request.path == "/health/live";
    bool const isReady = request.path == "/health/ready" || request.path == "/health";
    if (!isLive && !isReady) {
        return NotFound("there are /health/live and /health/ready");
    }
    auto const counts = sources_.table->LinkCounts();
    auto const of = [&](FleetState state) { return counts.at(static_cast<std::size_t>(state)); };
    std::size_t const connecting = of(FleetState::Connecting);
    std::size_t const online = of(FleetState::Online) + of(FleetState::Late);
    bool const isWell = isLive || connecting == 0;
    return JsonResponse({{"status", isLive   ? "live"
                                    : isWell ? "ready"
                                             : "starting"},
                         {"controllers", std::accumulate(counts.begin(), counts.end(), std::size_t{0})},
                         {"online", online},
                         {"connecting", connecting}},
                        isWell ? 200 : 503);
}

Response Api::Virtual(Request const& request, std::string const& name) const {
    if (!sources_.changeVirtual) {
        return ErrorResponse(404, "only the virtual controllers of --simulate can be changed");
    }
    if (request.method != "POST") {
        return ErrorResponse(405, "use POST");
    }
    Json const body = Json::parse(request.body, nullptr, false);
    if (!body.is_object()) {
        return ErrorResponse(400, "the body must be a JSON object such as {\"alarm\":4107}");
    }
    return sources_.changeVirtual(name, body);
}

} // namespace harvlink::gateway
