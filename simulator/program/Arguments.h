#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "simulator/controller/ControllerOptions.h"
#include "simulator/replay/Replay.h"
#include "simulator/scene/Scene.h"

namespace harvlink::simulator {

struct Arguments {
    std::vector<std::string> addresses;
    ControllerOptions options;
    std::optional<Scene> scene;
    std::optional<std::string> report;
    std::optional<std::string> faultLog;
    std::optional<std::string> pcap;
    std::optional<std::string> replay;
    ReplayOptions replayOptions;
    bool verbose = false;
};

/// A check for CLI11.
std::string CheckAddress(std::string const& text);

/// The command line. It takes precedence over the scene.
class ArgumentParser {
public:
    explicit ArgumentParser(CLI::App& app);

    /// Call after parsing. Throws SceneError.
    Arguments Result() const;

private:
    std::vector<std::string> addresses_{"127.0.0.1"};
    std::optional<std::string> generation_;
    std::optional<int> rs022_;
    std::vector<std::string> groups_;
    std::optional<std::string> files_;
    std::optional<std::string> scene_;
    std::optional<double> timeScale_;
    std::string faults_;
    std::optional<std::string> report_;
    std::optional<std::string> faultLog_;
    std::optional<std::string> pcap_;
    std::optional<std::string> replay_;
    ReplayOptions replayOptions_;
    bool verbose_ = false;
};

} // namespace harvlink::simulator
