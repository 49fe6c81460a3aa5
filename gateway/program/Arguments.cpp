#include "gateway/program/Arguments.h"

#include <CLI/CLI.hpp>

#include "harvlink/Version.h"

namespace harvlink::gateway {

namespace {

constexpr int WrongUsage = 2;
constexpr int MostVirtual = 2000;

void CheckTogether(Arguments const& arguments) {
    if (!arguments.printExample && arguments.config.empty() && arguments.simulate == 0) {
        throw CLI::ValidationError("give --config FILE, or --simulate N to try it without a controller");
    }
    if (arguments.check && arguments.config.empty()) {
        throw CLI::ValidationError("--check takes --config FILE");
    }
}

} // namespace

std::optional<Arguments> ParseArguments(int argc, char** argv, int& exitStatus) {
    Arguments arguments;
    CLI::App app(
        "Watches robot controllers and hands what it sees to Prometheus, to MQTT with Sparkplug B, to a recording "
        "and to a page. It only reads.",
        "harvlink-gateway");
    app.set_version_flag("--version", "harvlink-gateway " + std::string(HeaderVersion));
    app.add_option("--config", arguments.config, "What to watch")->type_name("FILE");
    app.add_flag("--check", arguments.check, "Check the file and print what it costs; send nothing");
    app.add_flag("--print-example", arguments.printExample, "Print a file with all that can be set");
    app.add_option("--simulate", arguments.simulate, "Watch virtual controllers of its own")
        ->type_name("N")
        ->check(CLI::Range(1, MostVirtual));
    app.footer("SIGHUP reads the file again; SIGTERM ends the program.\n\nExamples:\n"
               "  harvlink-gateway --simulate 12\n"
               "  harvlink-gateway --print-example > plant.toml\n"
               "  harvlink-gateway --config plant.toml --check");
    try {
        app.parse(argc, argv);
        CheckTogether(arguments);
    } catch (CLI::ParseError const& error) {
        exitStatus = app.exit(error) == 0 ? 0 : WrongUsage;
        return std::nullopt;
    }
    return arguments;
}

} // namespace harvlink::gateway
