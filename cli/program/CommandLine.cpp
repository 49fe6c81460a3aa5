#include "cli/program/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/output/Output.h"
#include "cli/program/CellRuns.h"
#include "cli/program/Help.h"
#include "cli/program/HelpCommand.h"
#include "cli/program/Interrupt.h"
#include "cli/program/ParseErrorText.h"
#include "cli/program/Session.h"
#include "harvlink/Version.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"

namespace harvlink::cli {

namespace {

constexpr char const* Footer =
    "Exit status: 0 success, 1 the controller refused or did not answer, 2 wrong usage, 130 Ctrl-C.\n"
    "Options may stand before or after the command. An option comes before its environment\n"
    "variable (in brackets), and this before the configuration file: see harvlink config.\n\n"
    "Examples:\n"
    "  harvlink --host 192.168.255.1 status\n"
    "  harvlink --host 192.168.255.1 position R1 --coordinate base --json\n"
    "  HARVLINK_HOST=192.168.255.1 harvlink var get B0..B9 P1";

/// The words that lead to the command at which the parsing stopped.
std::string CommandName(CLI::App const& app) {
    std::string name = app.get_name();
    for (CLI::App const* command = &app; !command->get_subcommands().empty();) {
        command = command->get_subcommands().front();
        name += " " + command->get_name();
    }
    return name;
}

/// The arguments in the order that the parser wants, the last first. A negative code after "explain" is written in
/// hexadecimal, as the parser would take it for an option.
std::vector<std::string> Arguments(CLI::App const& app, int argc, char const* const* argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    bool const isHelp = !arguments.empty() && arguments.front() == "help";
    RewriteHelp(arguments);
    if (isHelp) {
        CheckHelp(app, arguments);
    }
    bool isExplained = false;
    for (std::string& argument : arguments) {
        std::int32_t code = 0;
        char const* const end = argument.data() + argument.size();
        auto const result = std::from_chars(argument.data(), end, code);
        if (isExplained && code < 0 && result.ec == std::errc{} && result.ptr == end) {
            argument = fmt::format("0x{:X}", static_cast<std::uint32_t>(code));
        }
        isExplained = isExplained || argument == "explain";
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

/// Runs a part of the program and shows what it throws. Returns its exit status.
template <typename Part>
int Guarded(Output& output, Part const& part) {
    try {
        return part();
    } catch (InputError const& error) {
        output.Problem(error.what());
        return ExitStatus::WrongUsage;
    } catch (Interrupted const& error) {
        BrokenPipesIgnored const readerMayBeGone; // the exit status counts
        output.Problem(error.what());
        return error.ExitStatus();
    } catch (std::filesystem::filesystem_error const& error) {
        output.Problem(fmt::format("{}: {}", TextOf(error.path1()), error.code().message()));
        return ExitStatus::Failure;
    } catch (std::exception const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
}

/// A command line, with all commands of the program.
class Program {
public:
    Program(Output& output, std::span<AddCommands const> commands, std::string const& cell = {})
        : session_(output, cell), app_("Reads from and commands a robot controller over Ethernet.", "harvlink") {
        UseHelpFormat(app_);
        app_.set_version_flag("--version", "harvlink " + std::string(HeaderVersion));
        app_.allow_windows_style_options(false); // "/jobs" is a folder on every system
        app_.require_subcommand(1);
        // Lets the global options stand after the command too; subcommands inherit it.
        app_.fallthrough();
        session_.AddOptions(app_);
        for (AddCommands const add : commands) {
            add(app_, session_);
        }
        // After the commands are added, as they would inherit it.
        app_.footer(Footer);
    }

    /// Returns the exit status if nothing is left to run, after the help for example.
    std::optional<int> Parse(int argc, char const* const* argv, Console& console) {
        try {
            app_.parse(Arguments(app_, argc, argv));
        } catch (CLI::ParseError const& error) {
            if (error.get_exit_code() == 0) {
                return app_.exit(error, console.out, console.err);
            }
            throw InputError(
                fmt::format("{}\nFor help run: {} --help", ParseErrorText(app_, error), CommandName(app_)));
        }
        return std::nullopt;
    }

    Session& session() { return session_; }

private:
    Session session_;
    CLI::App app_;
};

/// Every command line is parsed again for each cell, and checked, before any of them runs.
int RunForEachCell(int argc, char const* const* argv, std::span<AddCommands const> commands,
                   std::vector<std::string> const& cells, Output& output) {
    CellRuns runs(output);
    std::vector<std::unique_ptr<Program>> programs;
    for (std::string const& cell : cells) {
        CellRuns::Run& run = runs.Add(cell);
        Program& program = *programs.emplace_back(std::make_unique<Program>(run.output, commands, cell));
        (void)program.Parse(argc, argv, run.console);
        run.encoding = program.session().settings().encoding;
        run.work = [&program, &run] { return Guarded(run.output, [&] { return program.session().Run(); }); };
    }
    return runs.Finish();
}

int Run(int argc, char const* const* argv, Console& console, std::span<AddCommands const> commands, Output& output) {
    return Guarded(output, [&] {
        Program program(output, commands);
        if (auto const exit = program.Parse(argc, argv, console)) {
            return *exit;
        }
        Session& session = program.session();
        return session.RunsForEachCell() ? RunForEachCell(argc, argv, commands, session.NamedCells(), output)
                                         : session.Run();
    });
}

} // namespace

int RunCommandLine(int argc, char const* const* argv, Console& console, std::span<AddCommands const> commands) {
    Output output(console);
    int const exit = Run(argc, argv, console, commands, output);
    if (!console.out.flush()) {
        output.Problem("can't write the output");
        return exit == ExitStatus::Success ? ExitStatus::Failure : exit;
    }
    return exit;
}

} // namespace harvlink::cli
