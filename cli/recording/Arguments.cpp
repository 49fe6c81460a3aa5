#include "cli/recording/Arguments.h"

#include <algorithm>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "recording/model/TimeText.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"
#include "words/text/Text.h"

namespace harvlink::cli::recordings {

using namespace words; // NOLINT(google-build-using-namespace): as in all folders of the tool

namespace {

/// The same for all forms in which a name is typed: 'S004', 'S4' and 's4'.
std::string Plain(std::string_view name) {
    std::string plain = LowerCase(name);
    std::size_t const number = plain.find_first_of("0123456789");
    bool const isVariable = number != std::string::npos && number > 0 && plain.find(' ') == std::string::npos;
    while (isVariable && number + 1 < plain.size() && plain[number] == '0') {
        plain.erase(number, 1);
    }
    return plain;
}

} // namespace

void PartArguments::AddFile(CLI::App& verb) {
    verb.add_option("file", file, "The recording")->required()->type_name("FILE");
}

void PartArguments::AddTimes(CLI::App& verb) {
    verb.add_option("--from", from, "Begin")->type_name("TIME");
    verb.add_option("--to", to, "End")->type_name("TIME");
}

void PartArguments::AddChoice(CLI::App& verb) {
    verb.add_option("--controller", controllers, "Only of these controllers")->type_name("NAME");
    verb.add_option("--item", items, "Only what has these names, such as 'state' or 'position R1 base'")
        ->type_name("NAME");
}

recording::TimeRange PartArguments::Range(recording::Recording& source) const {
    recording::RecordingInfo const info = source.Info();
    recording::TimeRange range;
    if (!from.empty()) {
        range.begin = recording::ParseTime(from, info.begin, info.end);
    }
    if (!to.empty()) {
        range.end = recording::ParseTime(to, info.begin, info.end);
    }
    if (range.begin >= range.end) {
        throw InputError("the end must be after the start");
    }
    return range;
}

bool PartArguments::IsWanted(std::string const& controller) const {
    return controllers.empty() || std::find(controllers.begin(), controllers.end(), controller) != controllers.end();
}

std::vector<std::uint32_t> PartArguments::Readings(recording::Recording const& source) const {
    recording::Catalogue const& contents = source.Contents();
    for (std::string const& name : controllers) {
        auto const has = [&](recording::RecordedController const& controller) { return controller.name == name; };
        if (std::none_of(contents.controllers.begin(), contents.controllers.end(), has)) {
            throw InputError(fmt::format("the recording has no controller '{}'", name));
        }
    }
    std::vector<std::uint32_t> readings;
    std::vector<bool> used(items.size());
    for (std::uint32_t id = 1; id <= contents.readings.size(); ++id) {
        recording::RecordedReading const& reading = contents.readings[id - 1];
        auto const item = std::find_if(items.begin(), items.end(),
                                       [&](std::string const& name) { return Plain(name) == Plain(reading.name); });
        bool const isWanted = IsWanted(contents.controllers[reading.controller - 1].name);
        if (isWanted && (items.empty() || item != items.end())) {
            readings.push_back(id);
        }
        if (item != items.end()) {
            used[static_cast<std::size_t>(item - items.begin())] = true;
        }
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!used[i]) {
            throw InputError(fmt::format("the recording has no item '{}'; recording info lists them", items[i]));
        }
    }
    return readings;
}

int WithRecording(Output& output, std::string const& file, std::function<int(recording::Recording&)> const& work) {
    try {
        recording::Recording source(words::PathOf(file));
        return work(source);
    } catch (recording::RecordingError const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
}

} // namespace harvlink::cli::recordings
