#include <algorithm>

#include <fmt/format.h>

#include "gateway/config/HostRange.h"
#include "gateway/config/Sections.h"
#include "harvlink/ControllerVersion.h"
#include "words/settings/SettingsFile.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::gateway {

namespace {

/// As the settings file of the tool has them.
void CheckHost(std::string const& host) {
    auto const& settings = words::AllSettings();
    std::find_if(settings.begin(), settings.end(), [](auto const& setting) {
        return setting.name == "host";
    })->check(host);
}

ControllerVersion GenerationOf(std::string const& text) {
    for (ControllerGeneration const& generation : ControllerGenerations) {
        if (generation.letters == words::UpperCase(text)) {
            return generation.version;
        }
    }
    throw words::InputError(fmt::format("'{}' is not a generation; there are: DS, DN, FS, YA, YB, YN", text));
}

void ReadOptions(Section& section, FleetControllerOptions& options) {
    using std::chrono::microseconds;
    section.Number("timeout", 1, 600'000,
                   [&](std::int64_t number) { options.timeout = static_cast<unsigned>(number); });
    section.Number("retries", 0, 1000, [&](std::int64_t number) { options.retries = static_cast<unsigned>(number); });
    section.Number("lanes", 1, 4, [&](std::int64_t number) { options.lanes = static_cast<unsigned>(number); });
    section.Duration("gap", microseconds(0), std::chrono::seconds(60), [&](microseconds gap) { options.gap = gap; });
    section.Real("most_requests_per_second", 0.01, 1e6, options.mostRequestsPerSecond);
    section.Text("generation", [&](std::string const& text) { options.generation = GenerationOf(text); });
}

GeometryConfig ReadGeometry(Section section) {
    GeometryConfig geometry;
    constexpr double Longest = 100'000.0;
    section.Text("group", [&](std::string const& text) { geometry.group = words::GroupName(words::ParseGroup(text)); });
    for (auto const& [key, length] : {std::pair{"shoulder_height", &geometry.shoulderHeight},
                                      {"shoulder_offset", &geometry.shoulderOffset},
                                      {"upper_arm", &geometry.upperArm},
                                      {"elbow_offset", &geometry.elbowOffset},
                                      {"forearm", &geometry.forearm},
                                      {"hand", &geometry.hand}}) {
        section.Require(key);
        section.Real(key, 0.0, Longest, *length);
    }
    section.Require("pulses_per_degree");
    toml::node const* const node = section.Node("pulses_per_degree");
    toml::array const* const pulses = node != nullptr ? node->as_array() : nullptr;
    bool isRight = pulses != nullptr && pulses->size() == geometry.pulsesPerDegree.size();
    for (std::size_t i = 0; isRight && i < geometry.pulsesPerDegree.size(); ++i) {
        auto const number = (*pulses)[i].value<double>();
        isRight = number && *number != 0.0 && *number > -1e9 && *number < 1e9;
        geometry.pulsesPerDegree.at(i) = number.value_or(0.0);
    }
    if (node != nullptr && !isRight) {
        section.Refuse("pulses_per_degree", "must be a list of six numbers other than 0");
    }
    section.Finish();
    return geometry;
}

} // namespace

std::vector<ControllerConfig> ReadControllers(Section& section, std::vector<std::string>& polls, Problems& problems) {
    ControllerConfig common;
    std::string name;
    std::string host;
    section.Require("name");
    section.Require("host");
    section.Require("poll");
    section.Text("name", name);
    section.Text("host", host);
    section.Texts("poll", [&](std::string const& poll) { polls.push_back(poll); });
    common.polls = polls;
    section.Text("encoding", [&](std::string const& text) { common.encoding = words::TextEncoding(text).Name(); });
    ReadOptions(section, common.options);
    if (toml::table const* const table = section.Child("geometry"); table != nullptr) {
        common.geometry = ReadGeometry(Section(*table, "[controller.geometry]", problems));
    }
    section.Finish();

    std::vector<ControllerConfig> controllers;
    char const* key = "host";
    try {
        for (NamedHost const& each : SpreadHosts(name, host)) {
            key = "name";
            constexpr std::size_t LongestName = 63;
            bool const isPlain = std::none_of(each.name.begin(), each.name.end(), [](unsigned char letter) {
                return letter < ' ' || letter == 0x7F || letter == '/' || letter == '+' || letter == '#';
            });
            if (section.Has("name") && (each.name.empty() || each.name.size() > LongestName || !isPlain)) {
                throw words::InputError(
                    fmt::format("'{}' is not a name of 1 to 63 bytes without / + # and control characters", each.name));
            }
            key = "host";
            if (section.Has("host")) {
                CheckHost(each.host);
            }
            ControllerConfig controller = common;
            controller.name = each.name;
            controller.options.address = each.host;
            controllers.push_back(std::move(controller));
        }
    } catch (words::InputError const& error) {
        section.Refuse(key, error.what());
    }
    return controllers;
}

} // namespace harvlink::gateway
