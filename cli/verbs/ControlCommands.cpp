#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "harvlink/ControlCommandsInterface.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

constexpr std::size_t LongestPendantLine = 30;

constexpr std::array<Named<SignalStatus>, 2> SwitchNames{{{"on", SignalStatus::On}, {"off", SignalStatus::Off}}};

constexpr std::array<Named<CycleMode>, 4> WantedCycleNames{{{"step", CycleMode::Step},
                                                            {"cycle", CycleMode::Cycle},
                                                            {"automatic", CycleMode::Automatic},
                                                            {"auto", CycleMode::Automatic}}};

void AddServo(CLI::App& app, Session& session) {
    auto state = std::make_shared<std::string>();
    CLI::App* const verb = app.add_subcommand("servo", "Turn servo power on or off: POWERS THE MACHINE");
    verb->add_option("STATE", *state, "On or off")->type_name(Choices(SwitchNames))->required();
    SetExamples(*verb, {"servo on", "servo off --yes"});
    verb->callback([state, &session] {
        SignalStatus const wanted = ParseName(SwitchNames, *state, "state of the servos");
        session.OnConnectionConfirmed(Access::Operate,
                                      wanted == SignalStatus::On
                                          ? "Servo power on makes the machine able to move"
                                          : "Servo power off stops the machine and drops its power",
                                      [wanted](QuorvanController& robot, Output& output) {
                                          return output.Done(robot.ControlCommands->SetServos(wanted));
                                      });
    });
}

// A hold stops the machine and must not be kept waiting; its release lets the job go on.
void AddHold(CLI::App& app, Session& session) {
    auto state = std::make_shared<std::string>();
    CLI::App* const verb = app.add_subcommand("hold", "Hold the machine, or release it: off MOVES THE MACHINE");
    verb->add_option("STATE", *state, "On or off")->type_name(Choices(SwitchNames))->required();
    SetExamples(*verb, {"hold on", "hold off --yes"});
    verb->callback([state, &session] {
        SignalStatus const wanted = ParseName(SwitchNames, *state, "state of the hold");
        auto const plan = [wanted](QuorvanController& robot, Output& output) {
            return output.Done(robot.ControlCommands->SetHold(wanted));
        };
        if (wanted == SignalStatus::On) {
            session.OnConnection(Access::Operate, plan);
        } else {
            session.OnConnectionConfirmed(Access::Operate, "Releasing the hold may MOVE THE MACHINE", plan);
        }
    });
}

void AddCycle(CLI::App& app, Session& session) {
    auto mode = std::make_shared<std::string>();
    CLI::App* const verb = app.add_subcommand("cycle", "Set the cycle mode");
    verb->add_option("MODE", *mode, "Cycle mode")->type_name(Choices(WantedCycleNames))->required();
    SetExamples(*verb, {"cycle automatic"});
    verb->callback([mode, &session] {
        CycleMode const wanted = ParseName(WantedCycleNames, *mode, "cycle mode");
        session.OnConnection(Access::Operate, [wanted](QuorvanController& robot, Output& output) {
            return output.Done(robot.ControlCommands->SetCycleMode(wanted));
        });
    });
}

void AddPendant(CLI::App& app, Session& session) {
    auto text = std::make_shared<std::string>();
    CLI::App* const verb = app.add_subcommand("pendant", "Show a line on the pendant, at most 30 bytes");
    verb->add_option("TEXT", *text, "The line")->required();
    SetExamples(*verb, {"pendant \"Door open\""});
    verb->callback([text, &session] {
        std::string const line = session.BytesOf(*text);
        // The library would cut it without a word.
        if (line.size() > LongestPendantLine) {
            throw InputError(
                fmt::format("the line has {} bytes, and the pendant shows {}", line.size(), LongestPendantLine));
        }
        session.OnConnection(Access::Operate, [line](QuorvanController& robot, Output& output) {
            return output.Done(robot.ControlCommands->DisplayStringToPendant(line));
        });
    });
}

} // namespace

void AddControlCommands(CLI::App& app, Session& session) {
    AddServo(app, session);
    AddHold(app, session);
    AddCycle(app, session);
    AddPendant(app, session);
}

} // namespace harvlink::cli
