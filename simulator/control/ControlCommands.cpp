#include "simulator/control/ControlCommands.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "simulator/control/StateReport.h"
#include "simulator/scene/Scene.h"

namespace harvlink::simulator {

namespace {

using Words = std::span<std::string const>;

constexpr std::uint32_t HighestAlarm = 9999;
constexpr std::uint32_t MostRequests = 1'000'000;

std::uint32_t ToNumber(std::string const& text, char const* what, std::uint32_t least, std::uint32_t most) {
    std::uint32_t number = 0;
    auto const* const last = text.data() + text.size();
    auto const [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc{} || end != last || number < least || number > most) {
        throw ControlError(fmt::format("'{}' is not {} from {} to {}", text, what, least, most));
    }
    return number;
}

std::size_t ToChoice(std::string const& text, std::initializer_list<std::string_view> choices) {
    auto const* const found = std::ranges::find(choices, text);
    if (found == choices.end()) {
        throw ControlError(fmt::format("'{}' is not one of: {}", text, fmt::join(choices, ", ")));
    }
    return static_cast<std::size_t>(found - choices.begin());
}

bool ToSwitch(std::string const& text) {
    return ToChoice(text, {"off", "on"}) == 1;
}

std::string RaiseAlarm(VirtualController& controller, ControllerOptions const& /*options*/, Words words) {
    auto const code = ToNumber(words[0], "an alarm code", 1, HighestAlarm);
    auto const subcode =
        words.size() > 1 ? ToNumber(words[1], "a subcode", 0, std::numeric_limits<std::uint16_t>::max()) : 0;
    auto const name = words.size() > 2 ? words[2] : "Raised by ctl";
    if (name.size() > Alarms::NameLength) {
        throw ControlError(fmt::format("the name of an alarm has at most {} bytes", Alarms::NameLength));
    }
    controller.With([&](ControllerModel& model) { model.RaiseAlarm(code, subcode, name); });
    return {};
}

std::string ResetAlarms(VirtualController& controller, ControllerOptions const& /*options*/, Words /*words*/) {
    controller.With([](ControllerModel& model) {
        model.SetError(false);
        model.ResetAlarms();
    });
    return {};
}

std::string SetSignal(VirtualController& controller, ControllerOptions const& /*options*/, Words words) {
    auto const address = ToNumber(words[0], "the address of a signal", 0, 99999);
    auto const value = ToChoice(words[1], {"off", "on", "0", "1"}) % 2 == 1;
    if (!controller.With([&](ControllerModel& model) { return model.signals.Write(address, value); })) {
        throw ControlError(fmt::format("there is no signal {}", address));
    }
    return {};
}

std::string SetHold(VirtualController& controller, ControllerOptions const& /*options*/, Words words) {
    auto const isOn = ToSwitch(words[0]);
    controller.With([&](ControllerModel& model) { model.SetHold(HoldSource::Pendant, isOn); });
    return {};
}

std::string SetMode(VirtualController& controller, ControllerOptions const& /*options*/, Words words) {
    auto const mode = static_cast<Mode>(ToChoice(words[0], {"teach", "play", "remote"}));
    controller.With([&](ControllerModel& model) { model.SetMode(mode); });
    return {};
}

std::string SetServo(VirtualController& controller, ControllerOptions const& /*options*/, Words words) {
    auto const isOn = ToSwitch(words[0]);
    controller.With([&](ControllerModel& model) {
        if (isOn && (model.state.mode == Mode::Teach || model.IsFaulted())) {
            throw ControlError("servo power stays off in teach mode, and while there is an alarm or error");
        }
        model.SetServo(isOn);
    });
    return {};
}

std::string InjectFault(VirtualController& controller, ControllerOptions const& /*options*/, Words words) {
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < FaultKinds; ++i) {
        names.push_back(NameOf(static_cast<Fault>(i)));
    }
    auto const found = std::ranges::find(names, words[0]);
    if (found == names.end()) {
        throw ControlError(fmt::format("'{}' is not a fault; there are: {}", words[0], fmt::join(names, ", ")));
    }
    auto const count = words.size() > 1 ? ToNumber(words[1], "a number of requests", 1, MostRequests) : 1;
    controller.WithFaults([&](FaultInjector& faults) { faults.Arm(static_cast<Fault>(found - names.begin()), count); });
    return {};
}

std::string SetFaults(VirtualController& controller, ControllerOptions const& options, Words words) {
    auto plan = words[0] == "as-started" ? options.faults : FaultPlan{};
    if (words[0] != "none" && words[0] != "as-started") {
        if (auto const problem = plan.Parse(words[0]); !problem.empty()) {
            throw ControlError(problem);
        }
    }
    controller.WithFaults([&](FaultInjector& faults) { faults.SetPlan(plan); });
    return {};
}

std::string ApplyScene(VirtualController& controller, ControllerOptions const& options, Words words) {
    auto const change = Scene::ChangeFromText(words[0], "set", options);
    controller.WithParts([&](ControllerParts& parts) { change.ApplyTo(parts); });
    return {};
}

std::string ShowState(VirtualController& controller, ControllerOptions const& /*options*/, Words /*words*/) {
    return StateReport(controller);
}

constexpr std::array Commands{
    ControlCommand{"alarm", "CODE [SUBCODE] [NAME]", "raises an alarm", RaiseAlarm},
    ControlCommand{"reset", "", "resets all alarms and the error", ResetAlarms},
    ControlCommand{"signal", "ADDRESS on|off", "sets a signal, an input too", SetSignal},
    ControlCommand{"hold", "on|off", "presses or releases hold on the pendant", SetHold},
    ControlCommand{"mode", "teach|play|remote", "turns the mode switch", SetMode},
    ControlCommand{"servo", "on|off", "switches servo power, as the safety circuit does", SetServo},
    ControlCommand{"fault", "NAME [COUNT]", "lets a fault hit the next request, or the next COUNT", InjectFault},
    ControlCommand{"faults", "LIST|none|as-started", "sets the rates of faults, as --faults does", SetFaults},
    ControlCommand{"set", "TEXT", "sets what a scene sets, such as 'variables.B.5 = 12'", ApplyScene},
    ControlCommand{"show", "", "prints mode, servo power, holds, alarms and counters as JSON", ShowState},
};

} // namespace

std::span<ControlCommand const> ControlCommands() {
    return Commands;
}

std::string RunControlCommand(VirtualController& controller, ControllerOptions const& options, Words words) {
    auto const name = words.empty() ? std::string_view() : std::string_view(words[0]);
    auto const* const command = std::ranges::find(Commands, name, &ControlCommand::name);
    if (command == Commands.end()) {
        std::vector<std::string_view> names;
        std::ranges::transform(Commands, std::back_inserter(names), &ControlCommand::name);
        throw ControlError(fmt::format("'{}' is not a command; there are: {}", name, fmt::join(names, ", ")));
    }
    // Each argument of the help is one word; those in brackets may be left out.
    auto const most = command->arguments.empty() ? 0 : std::ranges::count(command->arguments, ' ') + 1;
    auto const least = most - std::ranges::count(command->arguments, '[');
    auto const given = std::ssize(words) - 1;
    if (given < least || given > most) {
        throw ControlError(fmt::format("usage: {} {}", command->name, command->arguments));
    }
    return command->run(controller, options, words.subspan(1));
}

} // namespace harvlink::simulator
