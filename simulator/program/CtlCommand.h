#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace harvlink::simulator {

/// `harvlink-sim ctl`: drives a controller that runs already.
class CtlCommand {
public:
    explicit CtlCommand(CLI::App& app);

    bool IsGiven() const { return command_->parsed(); }

    /// Prints the answer. Returns the exit code.
    int Run() const;

private:
    CLI::App* command_;
    std::string address_ = "127.0.0.1";
    std::vector<std::string> words_;
};

} // namespace harvlink::simulator
