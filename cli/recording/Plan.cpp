#include "cli/recording/Plan.h"

#include <algorithm>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/HostAddress.h"
#include "recording/model/TimeText.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"
#include "words/values/SignalText.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::recordings {

using namespace words; // NOLINT(google-build-using-namespace): as in all folders of the tool

namespace {

FleetItemKind KindOf(VariableKind kind) {
    return static_cast<FleetItemKind>(static_cast<int>(FleetItemKind::ByteVariable) + static_cast<int>(kind));
}
static_assert(static_cast<int>(FleetItemKind::StationPositionVariable) -
                  static_cast<int>(FleetItemKind::ByteVariable) ==
              static_cast<int>(VariableKind::StationPosition));

void AddPositions(PlanArguments const& arguments, std::vector<FleetItem>& items) {
    for (std::string const& name : arguments.groups) {
        ControlGroupId const group = ParseGroup(name);
        for (std::string const& text : arguments.coordinates) {
            Coordinate const coordinate = ParseCoordinate(text);
            FleetItem item = FleetItem::Position(group, coordinate.type);
            item.userCoordinateNumber = static_cast<std::uint8_t>(coordinate.userNumber);
            items.push_back(item);
        }
        items.push_back(FleetItem::Torque(group));
    }
}

std::vector<FleetGroup> GroupsOf(PlanArguments const& arguments) {
    constexpr std::chrono::seconds Slow(1);
    constexpr std::chrono::minutes Rare(1);
    FleetGroup fast;
    fast.period = recording::ParseDuration(arguments.every);
    fast.items = {FleetItem::State(), FleetItem::Job()};
    AddPositions(arguments, fast.items);
    for (std::string const& name : arguments.variables) {
        for (VariableAddress const& address : ParseVariableRange(name)) {
            fast.items.push_back(FleetItem::Variable(KindOf(address.kind), address.index));
        }
    }
    for (std::string const& text : arguments.signals) {
        for (SignalName const& name : ParseSignalRange(text)) {
            if (name.address) {
                fast.items.push_back(FleetItem::Signal(*name.address));
            }
        }
    }
    for (std::string const& text : arguments.registers) {
        for (std::uint16_t const number : ParseRegisterRange(text)) {
            fast.items.push_back(FleetItem::Register(number));
        }
    }
    FleetGroup slow;
    slow.period = std::max<std::chrono::nanoseconds>(fast.period, Slow);
    slow.items = {FleetItem::Alarms()};
    FleetGroup rare;
    rare.period = Rare;
    rare.items = {FleetItem::Software()};
    return {fast, slow, rare};
}

std::vector<SignalName> SignalsByClass(PlanArguments const& arguments) {
    std::vector<SignalName> signals;
    for (std::string const& text : arguments.signals) {
        for (SignalName const& name : ParseSignalRange(text)) {
            if (!name.address) {
                signals.push_back(name);
            }
        }
    }
    return signals;
}

} // namespace

void PlanArguments::AddOptions(CLI::App& verb) {
    verb.add_option("--every", every, "Time between two readings")->type_name("DURATION")->capture_default_str();
    verb.add_option("--group", groups, "Control groups whose position and torque are recorded")
        ->type_name("GROUP")
        ->default_str("R1");
    verb.add_option("--coordinate", coordinates, "Coordinates of the positions")
        ->type_name("COORDINATE")
        ->default_str("pulse base");
    verb.add_option("--var", variables, "Variables and ranges, such as B5 S4 P12 B0..B9")->type_name("VARIABLE");
    verb.add_option("--io", signals, "Signals and ranges, such as 10010 or general-output:1.0..7")->type_name("SIGNAL");
    verb.add_option("--register", registers, "Registers and ranges, such as 5 or 0..9")->type_name("REGISTER");
}

std::vector<PlannedController> ControllersOf(PlanArguments const& arguments, Session& session) {
    std::vector<PlannedController> controllers;
    for (FleetCell& cell : FleetCells(session)) {
        cell.options.address = AddressOf(cell.options.address);
        controllers.push_back({std::move(cell), GroupsOf(arguments), SignalsByClass(arguments)});
    }
    return controllers;
}

StatusInfo AddSignalsByClass(PlannedController const& controller, std::vector<FleetGroup>& groups) {
    StatusInfo status;
    if (controller.signalsByClass.empty()) {
        return status;
    }
    FleetControllerOptions const& options = controller.cell.options;
    Connection const robot = Connect({.address = options.address,
                                      .timeout = options.timeout,
                                      .retries = options.retries,
                                      .logging = false,
                                      .access = Access::Observe},
                                     status);
    std::vector<Signal> signals;
    for (SignalName const& name : controller.signalsByClass) {
        status = status.StatusCode == 0 ? ResolveSignals(*robot->IO, name, signals) : status;
    }
    for (Signal const& signal : signals) {
        groups.front().items.push_back(FleetItem::Signal(signal.address));
    }
    return status;
}

} // namespace harvlink::cli::recordings
