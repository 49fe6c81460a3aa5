#include "CommandLine.h"

#include <exception>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "InputError.h"
#include "Output.h"
#include "Session.h"
#include "harvlink/Version.h"

namespace harvlink::cli {

namespace {

constexpr char const* Footer =
    "Exit status: 0 success, 1 the controller refused or did not answer, 2 wrong usage.\n"
    "Options may stand before or behind the command; on the command line they win over the environment.\n\n"
    "Examples:\n"
    "  harvlink --host 192.168.255.1 status\n"
    "  harvlink --host 192.168.255.1 position R1 --coordinate base --json\n"
    "  HARVLINK_HOST=192.168.255.1 harvlink var get B0..B9 P1";

void AddCommands(CLI::App& app, Session& session) {
    AddControllerStateCommands(app, session);
    AddControlGroupCommands(app, session);
    AddVariableCommands(app, session);
    AddIOCommands(app, session);
    AddFileCommands(app, session);
    AddFaultCommands(app, session);
    AddJobCommands(app, session);
    AddControlCommands(app, session);
    AddMotionCommands(app, session);
    AddKinematicsCommands(app, session);
    AddWatchCommand(app, session);
    AddSnapshotCommands(app, session);
}

int ParseAndRun(CLI::App& app, Session& session, int argc, char const* const* argv, Console& console) {
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error, console.out, console.err) == 0 ? ExitStatus::Success : ExitStatus::WrongUsage;
    }
    return session.Run();
}

} // namespace

int RunCommandLine(int argc, char const* const* argv, Console& console) {
    Output output(console);
    Session session(output);
    CLI::App app("Reads from and commands a robot controller over Ethernet.", "harvlink");
    app.set_version_flag("--version", "harvlink " + std::string(HeaderVersion));
    app.require_subcommand(1);
    // Lets the global options stand behind the command too; subcommands inherit it.
    app.fallthrough();
    session.AddOptions(app);
    AddCommands(app, session);
    // Behind the commands, which would inherit it.
    app.footer(Footer);
    try {
        return ParseAndRun(app, session, argc, argv, console);
    } catch (InputError const& error) {
        output.Problem(error.what());
        return ExitStatus::WrongUsage;
    } catch (std::exception const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
}

} // namespace harvlink::cli
