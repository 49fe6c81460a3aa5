#include "simulator/program/CtlCommand.h"

#include <fmt/format.h>

#include "simulator/control/ControlCommands.h"
#include "simulator/control/ControlSocket.h"
#include "simulator/program/Arguments.h"

namespace harvlink::simulator {

namespace {

std::string CommandLines() {
    std::string lines = "What it can do:\n";
    for (auto const& command : ControlCommands()) {
        lines += fmt::format("  {:32}{}\n", fmt::format("{} {}", command.name, command.arguments), command.meaning);
    }
    return lines + "\nExamples:\n"
                   "  harvlink-sim ctl alarm 4107 3 \"Out of range\"\n"
                   "  harvlink-sim ctl --address 127.0.0.2 signal 20010 on\n"
                   "  harvlink-sim ctl faults silence=100%,silence-ms=3000";
}

} // namespace

CtlCommand::CtlCommand(CLI::App& app)
    : command_(
          app.add_subcommand("ctl", "Drives a virtual controller that runs already; see harvlink-sim ctl --help")) {
    command_->add_option("--address", address_, "Address of the controller [127.0.0.1]")
        ->check(CheckAddress)
        ->type_name("ADDRESS");
    command_->add_option("COMMAND", words_, "What to do, see below")->required()->type_name("");
    command_->footer(CommandLines());
}

int CtlCommand::Run() const {
    auto const [isDone, text] = AskController(address_, words_);
    if (!isDone) {
        fmt::print(stderr, "harvlink-sim: {}\n", text);
    } else if (!text.empty()) {
        fmt::print("{}\n", text);
    }
    return isDone ? 0 : 1;
}

} // namespace harvlink::simulator
