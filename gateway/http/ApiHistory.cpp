#include <algorithm>
#include <cctype>
#include <chrono>
#include <fstream>

#include <fmt/format.h>

#include "gateway/history/Incidents.h"
#include "gateway/http/Api.h"
#include "gateway/http/Items.h"
#include "gateway/http/Query.h"
#include "recording/model/TimeText.h"
#include "recording/read/CsvExport.h"
#include "recording/read/History.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

using recording::Microseconds;
using words::Json;

constexpr Microseconds Millisecond = 1000;
constexpr std::size_t MostItems = 64;
constexpr std::uintmax_t LargestDownload = 256ULL << 20;
constexpr std::chrono::seconds LongestReading(5); ///< of events

Response NoRecording(char const* what) {
    return ErrorResponse(409, fmt::format("this gateway has no {}: the section is not in its configuration", what));
}

/// The items that the query names by their ids.
std::vector<ApiItem> WantedItems(Request const& request, Controller const& controller) {
    std::vector<ApiItem> const all = ItemsOf(controller);
    std::vector<ApiItem> wanted;
    std::string const ids = TextOf(request, "items");
    for (std::string_view const text : words::Split(ids, ',')) {
        auto const id = words::ParseNumber<std::uint32_t>(text, "item");
        if (id == 0 || id > all.size()) {
            throw words::InputError(fmt::format("the controller has no item {}", id));
        }
        wanted.push_back(all[id - 1]);
    }
    if (wanted.size() > MostItems) {
        throw words::InputError(fmt::format("at most {} items at once", MostItems));
    }
    return wanted;
}

Json SeriesJson(Controller const& controller, ApiItem const& item, recording::HistorySeries const& series) {
    recording::RecordedItem const& own = controller.readings[item.reading].items[item.place];
    Json const named = ItemJson(controller, item);
    Json times = Json::array();
    Json low = Json::array();
    Json high = Json::array();
    Json last = Json::array();
    for (recording::HistorySeries::Point const& point : series.points) {
        times.push_back(Milliseconds(point.time));
        low.push_back(ValueJson(own, point.low));
        high.push_back(ValueJson(own, point.high));
        last.push_back(ValueJson(own, point.last));
    }
    return {{"id", item.id},         {"name", named["name"]},   {"unit", own.unit},       {"times", std::move(times)},
            {"low", std::move(low)}, {"high", std::move(high)}, {"last", std::move(last)}};
}

std::shared_ptr<FileBody> OpenBody(std::filesystem::path const& file) {
    auto body = std::make_shared<FileBody>();
    body->stream.open(file, std::ios::binary);
    std::error_code error;
    body->size = std::filesystem::file_size(file, error);
    if (error || !body->stream) {
        throw recording::RecordingError(fmt::format("can't read {}", file.string()));
    }
    return body;
}

/// Takes nothing any more once it must stop.
class StoppableFile : public std::filebuf {
public:
    explicit StoppableFile(std::stop_token stop) : stop_(std::move(stop)) {}

protected:
    std::streamsize xsputn(char const* text, std::streamsize count) override {
        return stop_.stop_requested() ? 0 : std::filebuf::xsputn(text, count);
    }

private:
    std::stop_token stop_;
};

/// Under which name a browser keeps it: a controller may have quotes and letters of any language in its own.
std::pair<std::string, std::string> Attached(std::string const& called) {
    std::string plain;
    std::string whole;
    for (char const letter : called) {
        bool const isPlain = (std::isalnum(static_cast<unsigned char>(letter)) != 0 && (letter & 0x80) == 0) ||
                             letter == '-' || letter == '.' || letter == '_';
        plain += isPlain ? letter : '_';
        whole += isPlain ? std::string(1, letter) : fmt::format("%{:02X}", static_cast<unsigned char>(letter));
    }
    return {"content-disposition:", fmt::format("attachment; filename=\"{}\"; filename*=UTF-8''{}", plain, whole)};
}

/// The rows of a recording, in a file that has no name any more: they may be many times as large as the recording.
std::shared_ptr<FileBody> CsvBody(std::filesystem::path const& file, std::stop_token const& stop) {
    std::filesystem::path const rows = file.string() + ".csv.part";
    StoppableFile buffer(stop);
    buffer.open(rows, std::ios::out | std::ios::trunc | std::ios::binary);
    auto body = OpenBody(rows);
    std::error_code error;
    std::filesystem::remove(rows, error);
    std::ostream out(&buffer);
    recording::Recording source(file);
    ExportCsv(source, {}, out);
    out.flush();
    if (!out) {
        throw recording::RecordingError("the rows could not be written beside the incident");
    }
    body->size = static_cast<std::uint64_t>(out.tellp());
    return body;
}

std::int64_t TimeOf(Incident const& incident) {
    std::string const& text = incident.time;
    std::string const iso = fmt::format("{}-{}-{}T{}:{}:{}Z", text.substr(0, 4), text.substr(4, 2), text.substr(6, 2),
                                        text.substr(9, 2), text.substr(11, 2), text.substr(13, 2));
    try {
        return Milliseconds(recording::ParseTime(iso, 0, 0));
    } catch (words::InputError const&) {
        return 0; // a file that somebody has named
    }
}

} // namespace

Response Api::Events(Request const& request, std::stop_token const& stop) const {
    std::int64_t const from = NumberOf(request, "from", 0, 0, LatestTime);
    std::int64_t const to = NumberOf(request, "to", LatestTime, 0, LatestTime);
    constexpr std::int64_t MostEvents = 10'000;
    auto const limit = static_cast<std::size_t>(NumberOf(request, "limit", 200, 1, MostEvents));
    std::string const controller = TextOf(request, "controller");
    std::string const kind = TextOf(request, "kind");
    Json wanted = Json::array();
    auto const take = [&](Json&& event) {
        auto const time = event["time"].get<std::int64_t>();
        bool const isWanted = time >= from && time < to && (controller.empty() || event["controller"] == controller) &&
                              (kind.empty() || event["kind"] == kind);
        if (isWanted && wanted.size() < limit) {
            wanted.push_back(std::move(event));
        }
    };
    std::vector<NumberedEvent> const known = sources_.table->Events();
    std::for_each(known.rbegin(), known.rend(), [&](NumberedEvent const& event) { take(EventJson(event)); });
    // What was before this start of the gateway, only the recording knows.
    if (!sources_.recording.empty() && wanted.size() < limit) {
        auto const first = known.empty() ? LatestTime : Milliseconds(known.front().event.record.time);
        auto const end = std::chrono::steady_clock::now() + LongestReading;
        recording::ForEachPastEvent(
            sources_.recording, {from * Millisecond, std::min(to, first) * Millisecond},
            [&](recording::PastEvent&& event) {
                take(EventJson(static_cast<std::uint64_t>(event.number), event.controller, event.event));
                return wanted.size() < limit && !stop.stop_requested() && std::chrono::steady_clock::now() < end;
            });
    }
    return JsonResponse(wanted);
}

Response Api::History(Request const& request, std::stop_token const& stop) const {
    if (sources_.recording.empty()) {
        return NoRecording("[recording]");
    }
    std::string const name = TextOf(request, "controller");
    auto const latest = Find(name);
    if (!latest) {
        return ErrorResponse(404, fmt::format("there is no controller '{}'", name));
    }
    constexpr std::int64_t MostPoints = 20'000;
    constexpr std::int64_t Hour = 3'600'000;
    recording::HistoryQuery query;
    query.controller = name;
    query.stop = stop;
    std::int64_t const to = NumberOf(request, "to", NowMilliseconds(), 0, LatestTime);
    std::int64_t const from = NumberOf(request, "from", to - Hour, 0, LatestTime);
    if (from >= to) {
        throw words::InputError("from must be before to");
    }
    query.from = from * Millisecond;
    query.to = to * Millisecond;
    query.points = static_cast<std::size_t>(NumberOf(request, "points", 1000, 1, MostPoints));
    std::vector<ApiItem> const items = WantedItems(request, *latest->controller);
    for (ApiItem const& item : items) {
        query.items.push_back({latest->controller->readings[item.reading].name, item.place});
    }
    recording::HistoryResult const result = ReadHistory(sources_.recording, query);
    Json series = Json::array();
    for (std::size_t i = 0; i < items.size(); ++i) {
        series.push_back(SeriesJson(*latest->controller, items[i], result.series[i]));
    }
    return JsonResponse({{"from", from}, {"to", to}, {"cut", result.isCut}, {"series", std::move(series)}});
}

Response Api::Incidents(Request const& /*request*/) const {
    if (sources_.incidents.empty()) {
        return JsonResponse(Json::array());
    }
    Json all = Json::array();
    for (gateway::Incident const& incident : ListIncidents(sources_.incidents)) {
        all.push_back({{"file", incident.file},
                       {"controller", incident.controller},
                       {"time", TimeOf(incident)},
                       {"kind", incident.kind},
                       {"bytes", incident.bytes},
                       {"complete", incident.isComplete}});
    }
    return JsonResponse(all);
}

Response Api::Incident(Request const& request, std::string const& name, std::stop_token const& stop) const {
    if (sources_.incidents.empty()) {
        return NoRecording("[recording.incidents]");
    }
    // Only names of the list: nothing that a path could be made of.
    auto const all = ListIncidents(sources_.incidents);
    gateway::Incident const* const found = FindIncident(all, name);
    if (found == nullptr) {
        return ErrorResponse(404, fmt::format("there is no incident '{}'", name));
    }
    std::filesystem::path const file = sources_.incidents / found->file;
    if (!found->isComplete) {
        return ErrorResponse(409, "the incident is still being written");
    }
    if (found->bytes > LargestDownload) {
        return ErrorResponse(
            413, fmt::format("the incident has more than 256 MB; take {} from the gateway's disk", found->file));
    }
    if (TextOf(request, "format") == "csv") {
        return {200, "text/csv; charset=utf-8", {}, {Attached(file.stem().string() + ".csv")}, CsvBody(file, stop)};
    }
    return {200, "application/vnd.sqlite3", {}, {Attached(found->file)}, OpenBody(file)};
}

} // namespace harvlink::gateway
