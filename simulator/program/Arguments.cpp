#include "simulator/program/Arguments.h"

#include <arpa/inet.h>
#include <fmt/format.h>

#include "simulator/model/ControlGroups.h"
#include "simulator/model/Generation.h"

namespace harvlink::simulator {

namespace {

std::string CheckFaults(std::string const& text) {
    return FaultPlan{}.Parse(text);
}

std::string CheckGroup(std::string const& text) {
    return ControlGroups::FromText(text) ? "" : "'" + text + "' is not a control group such as R1, B1, S12 or R1:7";
}

std::string CheckGeneration(std::string const& text) {
    return GenerationFromName(text) ? "" : "'" + text + "' is not a generation; there are: " + GenerationNames();
}

std::string CheckTimeScale(std::string const& text) {
    double factor = 0;
    bool const isNumber = CLI::detail::lexical_cast(text, factor);
    return isNumber && factor >= SlowestTimeScale && factor <= FastestTimeScale
               ? ""
               : fmt::format("'{}' is not a number from {} to {}", text, SlowestTimeScale, FastestTimeScale);
}

std::string NameLines(std::vector<FaultName> const& names) {
    std::string lines;
    for (auto const& [name, meaning] : names) {
        lines += fmt::format("  {:26}{}\n", name, meaning);
    }
    return lines;
}

std::string Footer() {
    return fmt::format(
        "With --faults each named fault hits a share of the requests, from 0 to 1 or 0 to 100 %. A name with\n"
        "file-, such as file-drop=5%, sets the share on the file port; the name without it then applies to\n"
        "the robot port only.\n\n"
        "Faults:\n{}\nSettings of faults:\n{}\n"
        "Examples:\n"
        "  harvlink-sim\n"
        "  harvlink-sim --address 127.0.0.1 --address 127.0.0.2 --generation FS --groups R1,B1,S1:2\n"
        "  harvlink-sim --faults drop=2%,file-drop=5%\n"
        "  harvlink-sim --faults \"seed=7, drop=2%, delay=10%, delay-ms=30\"",
        NameLines(FaultNames()), NameLines(FaultSettingNames()));
}

} // namespace

std::string CheckAddress(std::string const& text) {
    in_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1 ? ""
                                                           : "'" + text + "' is not an IPv4 address such as 127.0.0.1";
}

ArgumentParser::ArgumentParser(CLI::App& app) {
    app.add_option("--address", addresses_, "Address to serve, repeatable: one controller on each [127.0.0.1]")
        ->check(CheckAddress)
        ->type_name("ADDRESS");
    app.add_option("--generation", generation_, "Generation of the controller: " + GenerationNames() + " [YA]")
        ->check(CheckGeneration)
        ->type_name("NAME");
    app.add_option("--rs022", rs022_, "1: the instance of a variable is its index, 0: it is one higher [1]")
        ->check(CLI::IsMember({0, 1}).description(""))
        ->type_name("0|1");
    app.add_option("--groups", groups_, "Control groups, such as R1,B1,S1 or with axes R1:7 [R1]")
        ->delimiter(',')
        ->check(CheckGroup)
        ->type_name("GROUP");
    app.add_option("--files", files_, "Folder whose files are served, instead of generated files")
        ->check(CLI::ExistingDirectory.description(""))
        ->type_name("FOLDER");
    app.add_option("--scene", scene_, "TOML file with the state to start from")
        ->check(CLI::ExistingFile.description(""))
        ->type_name("FILE");
    app.add_option("--time-scale", timeScale_, "Speed of jobs and motion against real time, 0.001 to 10000 [1]")
        ->check(CheckTimeScale)
        ->type_name("FACTOR");
    app.add_option("--faults", faults_, "Faults to inject, such as drop=2%,delay=10%; see below")
        ->check(CheckFaults)
        ->type_name("LIST");
    app.add_option("--report", report_, "JSON file to write at the end: numbers of requests and faults")
        ->type_name("FILE");
    app.add_option("--fault-log", faultLog_, "File that gets a line of JSON for every request that a fault hits")
        ->type_name("FILE");
    app.add_option("--pcap", pcap_, "File to record all datagrams in, for packet sniffers")->type_name("FILE");
    app.add_option("--replay", replay_,
                   "Recording, or capture of a packet sniffer, to answer from as its controller did")
        ->check(CLI::ExistingFile.description(""))
        ->type_name("FILE");
    app.add_option("--at", replayOptions_.at,
                   "With --replay, where to begin: UTC, +90s after the start, -1m before the end")
        ->type_name("TIME");
    app.add_option("--speed", replayOptions_.speed.factor, "With --replay, the speed against that of the recording [1]")
        ->check(CLI::Range(0.001, 10000.0).description(""))
        ->type_name("FACTOR");
    app.add_flag("--loop", replayOptions_.speed.loops, "With --replay, start again at the end");
    app.add_option("--cell", replayOptions_.controller,
                   "With --replay, the controller of the file to be, by its name or address")
        ->type_name("NAME");
    app.add_flag("--verbose", verbose_, "Print a line for every request");
    app.footer(Footer());
    app.failure_message([](CLI::App const*, CLI::Error const& error) {
        return fmt::format("harvlink-sim: {}\nRun harvlink-sim --help for all options\n", error.what());
    });
}

Arguments ArgumentParser::Result() const {
    Arguments result;
    result.addresses = addresses_;
    result.report = report_;
    result.faultLog = faultLog_;
    result.pcap = pcap_;
    result.verbose = verbose_;
    result.replay = replay_;
    result.replayOptions = replayOptions_;
    if (scene_) {
        result.scene = Scene::FromFile(*scene_);
        result.options = result.scene->Options();
    }
    auto& options = result.options;
    options.generation = generation_ ? *GenerationFromName(*generation_) : options.generation;
    options.rs022 = rs022_.value_or(options.rs022);
    options.timeScale = timeScale_.value_or(options.timeScale);
    options.filesFolder = files_ ? std::filesystem::path(*files_) : options.filesFolder;
    options.faults.Parse(faults_);
    if (!groups_.empty()) {
        options.groups.clear();
        for (auto const& text : groups_) {
            options.groups.push_back(*ControlGroups::FromText(text));
        }
    }
    return result;
}

} // namespace harvlink::simulator
