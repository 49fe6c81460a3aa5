#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "harvlink/ControlGroupInterface.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::cli {

namespace {

constexpr int HighestTool = 63;

using AxisValues = std::array<std::int32_t, 8>;
using ReadAxes = StatusInfo (*)(ControlGroupInterface&, ControlGroupId, AxisValues&);

struct PositionArguments {
    std::string group;
    std::string coordinate = "pulse";
    int tool = 0;
};

StatusInfo ShowPosition(QuorvanController& robot, Output& output, ControlGroupId group, Coordinate coordinate,
                        int tool) {
    PositionData position;
    StatusInfo status =
        robot.ControlGroup->ReadPositionData(group, coordinate.type, static_cast<unsigned char>(coordinate.userNumber),
                                             static_cast<unsigned char>(tool), position);
    if (status.StatusCode == 0) {
        Json document{{"group", GroupName(group)}};
        document.update(PositionJson(position));
        // The library returns a user coordinate number that is one higher than the number asked for.
        document["coordinate"] = CoordinateName({position.coordinateType, coordinate.userNumber});
        output.Show(document);
    }
    return status;
}

void AddPosition(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<PositionArguments>();
    CLI::App* const verb = app.add_subcommand("position", "Show the position of a control group");
    verb->add_option("GROUP", arguments->group, "Control group, such as R1, B1 or S1")->type_name("GROUP")->required();
    verb->add_option("--coordinate", arguments->coordinate, "Coordinate system")
        ->type_name("pulse|base|robot|user:N")
        ->capture_default_str();
    verb->add_option("--tool", arguments->tool, "Tool number; older controllers know only 0")
        ->check(CLI::Range(0, HighestTool))
        ->type_name("N")
        ->capture_default_str();
    SetExamples(*verb, {"position R1", "position R1 --coordinate user:2 --tool 1"});
    verb->callback([arguments, &session] {
        ControlGroupId const group = ParseGroup(arguments->group);
        Coordinate const coordinate = ParseCoordinate(arguments->coordinate);
        if (coordinate.userNumber < 0 || coordinate.userNumber > 255) {
            throw InputError("the user coordinate number must be from 1 to 63");
        }
        session.OnConnection(Access::Observe,
                             [group, coordinate, tool = arguments->tool](QuorvanController& robot, Output& output) {
                                 return ShowPosition(robot, output, group, coordinate, tool);
                             });
    });
}

StatusInfo ShowAxes(QuorvanController& robot, Output& output, ControlGroupId group) {
    std::array<char, 8> letters{};
    StatusInfo status = robot.ControlGroup->ReadAxisConfiguration(group, letters);
    if (status.StatusCode == 0) {
        Json names = Json::array();
        for (char const letter : letters) {
            if (letter != '\0') {
                names.push_back(std::string(1, letter));
            }
        }
        output.Show(Json{{"group", GroupName(group)}, {"count", names.size()}, {"axes", names}});
    }
    return status;
}

StatusInfo ReadTorque(ControlGroupInterface& controlGroup, ControlGroupId group, AxisValues& values) {
    TorqueData data;
    StatusInfo status = controlGroup.ReadTorqueData(group, data);
    values = data.axes;
    return status;
}

StatusInfo ReadError(ControlGroupInterface& controlGroup, ControlGroupId group, AxisValues& values) {
    PositionErrorData data;
    StatusInfo status = controlGroup.ReadPositionError(group, data);
    values = data.axes;
    return status;
}

/// A program always gets eight values; people get those of the axes that the group has.
std::size_t ShownAxes(QuorvanController& robot, Output& output, ControlGroupId group, AxisValues const& values) {
    std::array<char, 8> letters{};
    bool const isKnown = !output.json && robot.ControlGroup->ReadAxisConfiguration(group, letters).StatusCode == 0;
    auto const count = static_cast<std::size_t>(
        std::count_if(letters.begin(), letters.end(), [](char letter) { return letter != '\0'; }));
    return isKnown && count > 0 ? count : values.size();
}

StatusInfo ShowAxisValues(QuorvanController& robot, Output& output, ControlGroupId group, ReadAxes read) {
    AxisValues values{};
    StatusInfo status = read(*robot.ControlGroup, group, values);
    if (status.StatusCode == 0) {
        Json axes = Json::object();
        std::size_t const shown = ShownAxes(robot, output, group, values);
        for (std::size_t axis = 0; axis < shown; ++axis) {
            axes["axis_" + std::to_string(axis + 1)] = values.at(axis);
        }
        output.Show(Json{{"group", GroupName(group)}, {"axes", axes}});
    }
    return status;
}

using GroupAction = std::function<StatusInfo(QuorvanController&, Output&, ControlGroupId)>;

void AddGroupVerb(CLI::App& app, Session& session, char const* name, char const* description, GroupAction action) {
    auto group = std::make_shared<std::string>();
    CLI::App* const verb = app.add_subcommand(name, description);
    verb->add_option("GROUP", *group, "Control group, such as R1, B1 or S1")->type_name("GROUP")->required();
    SetExamples(*verb, {std::string(name) + " R1"});
    verb->callback([group, action = std::move(action), &session] {
        session.OnConnection(Access::Observe,
                             [action, id = ParseGroup(*group)](QuorvanController& robot, Output& output) {
                                 return action(robot, output, id);
                             });
    });
}

GroupAction AxisAction(ReadAxes read) {
    return [read](QuorvanController& robot, Output& output, ControlGroupId group) {
        return ShowAxisValues(robot, output, group, read);
    };
}

} // namespace

void AddControlGroupCommands(CLI::App& app, Session& session) {
    AddPosition(app, session);
    AddGroupVerb(app, session, "axes", "Show the axes that a control group has", ShowAxes);
    AddGroupVerb(app, session, "torque", "Show the torque of each axis, in the controller's unit",
                 AxisAction(ReadTorque));
    AddGroupVerb(app, session, "position-error", "Show the position error of each axis, in pulses",
                 AxisAction(ReadError));
}

} // namespace harvlink::cli
