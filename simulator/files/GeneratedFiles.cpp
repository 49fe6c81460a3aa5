#include "simulator/files/GeneratedFiles.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "simulator/model/ControllerModel.h"
#include "simulator/model/FixedText.h"
#include "simulator/model/Generation.h"

namespace harvlink::simulator {

namespace {

constexpr std::size_t ValuesPerLine = 10;

/// Ten values per line, separated by commas.
template <typename Values>
void AppendLines(std::string& text, Values const& values) {
    for (std::size_t first = 0; first < values.size(); first += ValuesPerLine) {
        auto const count = std::min(ValuesPerLine, values.size() - first);
        fmt::format_to(std::back_inserter(text), "{}\r\n", fmt::join(std::span(values).subspan(first, count), ","));
    }
}

std::string ParameterText(ControllerModel const& model) {
    constexpr std::uint32_t Count = 300;
    std::vector<std::int32_t> values(Count);
    for (std::uint32_t number = 0; number < Count; ++number) {
        auto const type = static_cast<std::uint32_t>(SystemParameterType::RS);
        static_cast<void>(model.parameters.Read(type, 0, number, values[number]));
    }
    std::string text = "//PARAMETER RS\r\n";
    AppendLines(text, values);
    return text;
}

std::string ToolText(ControllerModel const& model) {
    std::string text;
    auto const& tools = model.frames.tools;
    for (std::size_t i = 0; i < tools.size(); ++i) {
        auto const& [x, y, z, rx, ry, rz] = tools[i].pose;
        fmt::format_to(std::back_inserter(text),
                       "//TOOL {}\r\n///NAME {}\r\n{:.3f},{:.3f},{:.3f},{:.4f},{:.4f},{:.4f}\r\n0.000\r\n", i,
                       tools[i].name, x, y, z, rx, ry, rz);
    }
    return text;
}

std::string GroupText(ControlGroupId id) {
    auto const number = static_cast<int>(id);
    if (id >= ControlGroupId::S1) {
        return fmt::format("S{}", number - 20);
    }
    return id >= ControlGroupId::B1 ? fmt::format("B{}", number - 10) : fmt::format("R{}", number);
}

/// Base n belongs to the n-th robot of the list, whatever the number of that robot is. The line names a base only if it
/// exists.
std::string RobotNames(ControlGroups const& groups) {
    std::string text;
    int place = 0;
    for (auto const& group : groups.All()) {
        if (group.id > ControlGroupId::R8) {
            continue;
        }
        ++place;
        auto const base = static_cast<ControlGroupId>(10 + place);
        fmt::format_to(std::back_inserter(text), "{} : HV012-1440-A00{}\r\n", GroupText(group.id),
                       groups.Find(base) != nullptr ? fmt::format(" + B{}", place) : "");
    }
    return text;
}

std::string SystemText(ControllerModel const& model) {
    auto const& generation = TextsOf(model.state.generation);
    std::string text = fmt::format("//SYSTEM VERSION\r\n{}\r\n//CONTROLLER\r\n{}\r\n//PARAMETER VERSION\r\n{}\r\n",
                                   generation.softwareVersion, generation.controllerModel, generation.parameterVersion);
    text += "//SERVO POWER\r\n";
    int unit = 0;
    for (auto const& group : model.groups.All()) {
        fmt::format_to(std::back_inserter(text), "{} : UNIT {}, {} AXES\r\n", GroupText(group.id), ++unit, group.axes);
    }
    text += "//ROBOT NAME\r\n" + RobotNames(model.groups);
    fmt::format_to(std::back_inserter(text), "//TOOL FILES\r\n{}\r\n//USER COORDINATES\r\n{}\r\n",
                   model.frames.tools.size(), TaughtFrames::HighestUser);
    return text;
}

std::string VariableText(ControllerModel const& model) {
    std::string text = "//B\r\n";
    AppendLines(text, model.variables.bytes);
    text += "//I\r\n";
    AppendLines(text, model.variables.integers);
    text += "//D\r\n";
    AppendLines(text, model.variables.doubleInts);
    text += "//R\r\n";
    AppendLines(text, model.variables.reals);
    return text;
}

void AppendHistory(std::string& text, Alarms const& alarms, AlarmCategory category) {
    for (std::size_t position = 1; position <= Alarms::HistoryLength; ++position) {
        auto const alarm = alarms.History(category, position);
        if (alarm.code == 0) {
            return;
        }
        fmt::format_to(std::back_inserter(text), "{:04},{},{},{},{}\r\n", static_cast<int>(category), alarm.code,
                       alarm.subcode, FieldText(alarm.time), FieldText(alarm.name));
    }
}

std::string AlarmText(ControllerModel const& model) {
    std::string text = "//ALARM HISTORY\r\n";
    for (auto const category : {AlarmCategory::Major, AlarmCategory::Minor, AlarmCategory::SystemUser,
                                AlarmCategory::User, AlarmCategory::Offline}) {
        AppendHistory(text, model.alarms, category);
    }
    return text;
}

constexpr std::array<GeneratedFile, 5> Files{{
    {"ALARM.LOG", false, AlarmText},
    {"RS.PRM", true, ParameterText},
    {"SYSTEM.SYS", true, SystemText},
    {"TOOL.CND", true, ToolText},
    {"VAR.DAT", false, VariableText},
}};

} // namespace

std::span<GeneratedFile const> GeneratedFiles() {
    return Files;
}

} // namespace harvlink::simulator
