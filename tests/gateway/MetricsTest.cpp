#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "gateway/prometheus/Exposition.h"
#include "gateway/watch/Converter.h"
#include "harvlink/Fleet.h"

namespace harvlink::gateway {
namespace {

using recording::RecordedQuality;

/// A controller with one sample of each reading.
LatestController Watched(FleetState link, RecordedQuality quality) {
    std::vector<FleetGroup> const groups{
        {.items = {FleetItem::State(), FleetItem::Alarms(), FleetItem::Position(ControlGroupId::R1),
                   FleetItem::Position(ControlGroupId::R1, CoordinateType::BaseCoordinate),
                   FleetItem::Position(ControlGroupId::R1, CoordinateType::BaseCoordinate, 2),
                   FleetItem::Variable(FleetItemKind::ByteVariable, 5), FleetItem::Signal(10010)}}};
    Controller controller;
    controller.id = 1;
    controller.name = "press \"1\"";
    controller.readings = ReadingsOf(groups);
    LatestController latest;
    latest.controller = std::make_shared<Controller const>(controller);
    latest.link = link;
    latest.lastAnswer = 1'790'000'000'500'000;
    for (std::uint32_t i = 0; i < controller.readings.size(); ++i) {
        Sample sample{latest.controller, i, {.quality = quality}, {}};
        for (auto const& item : controller.readings[i].items) {
            bool const isText = item.type == recording::RecordedType::Text;
            sample.values.push_back(isText ? recording::RecordedValue("x") : recording::RecordedValue(std::int64_t{1}));
        }
        latest.samples.push_back(std::make_shared<Sample const>(std::move(sample)));
    }
    return latest;
}

std::string TextOf(LatestController const& latest, std::size_t most = 1000) {
    RoundTrips::Counts counts;
    counts.buckets[0] = 3;
    counts.buckets.back() = 1;
    counts.count = 4;
    counts.sum = 2.5;
    Exposition exposition({"hall", [&] { return std::vector{latest}; },
                           [] {
                               FleetStatistics statistics;
                               statistics.controllers.emplace_back().controller = "press \"1\"";
                               return statistics;
                           },
                           [&] {
                               return std::map<std::uint32_t, RoundTrips::Counts>{{1, counts}};
                           },
                           [] { return std::uint64_t{7}; },
                           [] {
                               return std::vector<Figure>{{"harvlink_mqtt_sent_total", "Sent.", 3.0}};
                           }},
                          most);
    return exposition.Text();
}

TEST(MetricsTest, NamesValuesAndUnits) {
    std::string const text = TextOf(Watched(FleetState::Online, RecordedQuality::Good));
    std::string const press = "controller=\"press \\\"1\\\"\"";
    for (std::string const& line : std::vector<std::string>{
             "harvlink_up{" + press + "} 1", "harvlink_servo_on{" + press + "} 1",
             "harvlink_control_mode{" + press + ",mode=\"play\"} 1",
             "harvlink_alarm_active{" + press + ",code=\"1\",subcode=\"1\"} 1",
             "harvlink_axis_position_pulses{" + press + ",group=\"R1\",axis=\"s\"} 1",
             "harvlink_axis_position_meters{" + press +
                 ",group=\"R1\",axis=\"x\",coordinate=\"base\",tool=\"0\"} 0.001",
             "harvlink_axis_position_degrees{" + press + ",group=\"R1\",axis=\"rz\",coordinate=\"base\",tool=\"0\"} 1",
             "harvlink_variable{" + press + ",variable=\"B005\"} 1",
             "harvlink_signal{" + press + ",signal=\"10010\"} 1",
             "harvlink_round_trip_seconds_bucket{" + press + ",le=\"0.001\"} 3",
             "harvlink_round_trip_seconds_bucket{" + press + ",le=\"+Inf\"} 4",
             "harvlink_last_answer_timestamp_seconds{" + press + "} 1790000000.5",
             std::string("harvlink_mqtt_sent_total 3"), std::string("harvlink_gateway_dropped_series 0")}) {
        EXPECT_NE(text.find("\n" + line + "\n"), std::string::npos) << line << " is not in\n" << text;
    }
    // No series is there twice, and none has a time.
    std::set<std::string> series;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('#')) {
            std::size_t const end =
                line.find_last_of('}') == std::string::npos ? line.find(' ') : line.find_last_of('}') + 1;
            EXPECT_TRUE(series.insert(line.substr(0, end)).second) << line;
            EXPECT_EQ(line.find(' ', end + 1), std::string::npos) << line;
        }
    }
}

TEST(MetricsTest, LeavesOutWhatIsNotKnownAndWhatIsTooMuch) {
    for (auto const& [link, quality] : {std::pair{FleetState::Silent, RecordedQuality::Stale},
                                        {FleetState::Silent, RecordedQuality::Good},
                                        {FleetState::Online, RecordedQuality::Stale},
                                        {FleetState::Online, RecordedQuality::Refused}}) {
        std::string const text = TextOf(Watched(link, quality));
        EXPECT_EQ(text.find("harvlink_servo_on{"), std::string::npos);
        EXPECT_NE(text.find(link == FleetState::Silent ? "\"} 0\n" : "\"} 1\n", text.find("harvlink_up{")),
                  std::string::npos);
        EXPECT_NE(text.find("harvlink_last_answer_timestamp_seconds{"), std::string::npos);
    }
    std::string const few = TextOf(Watched(FleetState::Online, RecordedQuality::Good), 20);
    EXPECT_EQ(few.find("harvlink_servo_on{"), std::string::npos);
    EXPECT_EQ(few.find("harvlink_gateway_dropped_series 0\n"), std::string::npos);
    EXPECT_NE(few.find("harvlink_up{"), std::string::npos) << "what says whether values can be relied on comes first";
}

TEST(MetricsTest, RulesAndDashboardNameOnlyWhatThereIs) {
    std::set<std::string> known;
    for (MetricDefinition const& definition : Definitions()) {
        known.emplace(definition.name);
    }
    known.insert("harvlink_round_trip_seconds_bucket");
    for (char const* const name : {"harvlink.rules.yml", "harvlink-dashboard.json"}) {
        std::ifstream file(std::string(HARVLINK_SOURCE_DIR) + "/packaging/prometheus/" + name);
        std::string const text{std::istreambuf_iterator<char>(file), {}};
        std::regex const metric("\\b(harvlink|process)_[a-z_]+");
        std::size_t count = 0;
        for (std::sregex_iterator match(text.begin(), text.end(), metric), last; match != last; ++match, ++count) {
            EXPECT_TRUE(known.contains(match->str())) << name << " names " << match->str();
        }
        EXPECT_GT(count, 8U) << name;
    }
}

} // namespace
} // namespace harvlink::gateway
