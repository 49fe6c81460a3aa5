#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "gateway/http/Guard.h"
#include "gateway/http/LiveFeed.h"
#include "gateway/http/PageFiles.h"
#include "gateway/watch/Converter.h"

namespace {

using namespace harvlink::gateway; // NOLINT(google-build-using-namespace): all of it is about this

struct Hall {
    Hall() {
        Controller controller;
        controller.id = 1;
        controller.name = "press";
        std::vector<harvlink::FleetGroup> groups(1);
        groups[0].items = {harvlink::FleetItem::State(), harvlink::FleetItem::Alarms()};
        controller.readings = ReadingsOf(groups);
        controller.periods = PeriodsOf(groups);
        table.Added(std::make_shared<Controller const>(controller));
        ApiSources sources;
        sources.table = &table;
        sources.statistics = [] { return harvlink::FleetStatistics(); };
        sources.plan = [] { return harvlink::FleetPlan(); };
        sources.roundTrips = [] { return LastRoundTrips(); };
        sources.figures = [] { return std::vector<Figure>(); };
        sources.changeVirtual = [](std::string const&, auto const&) { return Response(); };
        sources.recording = "/dev/null/none";
        sources.incidents = "/dev/null/none";
        api.emplace(sources);
    }

    LatestTable table;
    std::optional<Api> api;
};

} // namespace

/// The bytes are, line by line: path with query, host, origin, authorization, and a body or message. Every answer has a status, and
/// a client of the WebSocket gets an answer to whatever it sends.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Hall const hall;
    static Guard const guard{ListenConfig{}};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes as text
    std::string_view rest(reinterpret_cast<char const*>(data), size);
    auto const line = [&] {
        std::string_view const text = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(text.size() + 1, rest.size()));
        return std::string(text);
    };
    Request request;
    std::string const target = line();
    std::size_t const question = std::min(target.find('?'), target.size());
    request.path = "/" + DecodeUrl(target.substr(0, question), false);
    request.query = ParseQuery(std::string_view(target).substr(std::min(question + 1, target.size())));
    request.host = line();
    request.origin = line();
    request.authorization = line();
    request.body = rest;
    request.method = request.body.empty() ? "GET" : "POST";
    guard.Refuse(request, false);
    guard.Refuse(request, true);
    if (hall.api->Answer(request).status < 200 || PageFile(request).status < 200) {
        std::abort();
    }
    LiveFeed feed(*hall.api);
    feed.Look();
    LiveClient client(feed);
    client.Receive(rest);
    for (int i = 0; i < 20 && client.Next() != nullptr; ++i) {
    }
    return 0;
}
