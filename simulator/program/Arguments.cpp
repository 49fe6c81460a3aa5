#include "simulator/program/Arguments.h"

#include "simulator/model/ControlGroups.h"
#include "simulator/model/Generation.h"

namespace harvlink::simulator {

namespace {

std::string CheckFaults(std::string const& text) {
    return FaultPlan{}.Parse(text);
}

std::string CheckGroup(std::string const& text) {
    return ControlGroups::FromText(text) ? "" : text + " is no control group such as R1, B1, S12 or R1:7";
}

} // namespace

ArgumentParser::ArgumentParser(CLI::App& app) {
    app.add_option("--address", addresses_, "Address to serve, repeatable: one controller on each")
        ->capture_default_str();
    app.add_option("--generation", generation_, "Generation of the controller [YA]")
        ->check(CLI::IsMember({"DS", "DN", "FS", "YA", "YB", "YN"}));
    app.add_option("--rs022", rs022_, "1: variable instances equal the index, 0: they are one higher [1]")
        ->check(CLI::IsMember({0, 1}));
    app.add_option("--groups", groups_, "Control groups, such as R1,B1,S1 or with axes R1:7 [R1]")
        ->delimiter(',')
        ->check(CheckGroup);
    app.add_option("--files", files_, "Folder to serve and to store files in, instead of generated ones")
        ->check(CLI::ExistingDirectory);
    app.add_option("--scene", scene_, "TOML file with the state to start from")->check(CLI::ExistingFile);
    app.add_option("--time-scale", timeScale_, "How much faster than real time jobs and motion run [1]")
        ->check(CLI::Range(0.001, 10000.0));
    app.add_option("--faults", faults_, "What shall go wrong, such as seed=7,drop=2%,delay=10%,delay-ms=30")
        ->check(CheckFaults);
    app.add_option("--report", report_, "File to write at the end: what was asked and what went wrong, as JSON");
    app.add_option("--pcap", pcap_, "File to record all datagrams in, for packet sniffers");
    app.add_flag("--verbose", verbose_, "Print a line for every request");
}

Arguments ArgumentParser::Result() const {
    Arguments result;
    result.addresses = addresses_;
    result.report = report_;
    result.pcap = pcap_;
    result.verbose = verbose_;
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
