#pragma once

#include <functional>
#include <optional>
#include <string>

#include "cli/output/Output.h"
#include "cli/program/Settings.h"
#include "harvlink/QuorvanController.h"
#include "harvlink/StatusInfo.h"

namespace CLI {
class App;
}

namespace harvlink::cli {

class LibraryLog;

/// The options that all commands share, and the one thing that the command line asked for.
///
/// A command's callback only checks its arguments and plans; the plan runs when the whole line was understood. So wrong
/// usage is found before a connection is opened, and the connection is opened once, however much a command does with it.
class Session {
public:
    using ConnectedPlan = std::function<StatusInfo(QuorvanController&, Output&)>;
    using LocalPlan = std::function<int(Output&)>;

    explicit Session(Output& output) : output_(output) {}

    void AddOptions(CLI::App& app);

    /// Plans work on a connection. A failed status of it ends the program with its status line and exit status 1, as does a
    /// failure that it showed itself.
    void OnConnection(ConnectedPlan plan);

    /// The same for work that moves the machine or changes its power: asks for confirmation first.
    void OnConnectionConfirmed(std::string const& consequence, ConnectedPlan plan);

    /// Plans work that needs no controller. It returns the exit status.
    void Locally(LocalPlan plan) { plan_ = std::move(plan); }

    /// Opens a connection as the options say, for plans that end by an exit status of their own. Empty on failure. Throws
    /// InputError if no host is given.
    Connection Open(StatusInfo& status);

    /// Throws InputError if no host is given.
    void CheckHost();

    /// The settings of this command. They are resolved by the first call, so that a command which needs none is not
    /// stopped by a bad configuration file; throws InputError then.
    Settings const& settings();

    /// Lets the library write motion failures that have no caller to its log file. What it wrote is shown, with the
    /// place.
    void EnableLogging() { logging_ = true; }

    int Run() { return plan_ ? plan_(output_) : 0; }

    Output& output() { return output_; }

private:
    int Confirm(std::string const& consequence);
    int RunConnected(ConnectedPlan const& plan);
    void ShowLog(LibraryLog const& log);

    Output& output_;
    LocalPlan plan_;
    SettingsOptions options_;
    std::optional<Settings> settings_;
    bool confirmed_ = false;
    bool logging_ = false;
};

} // namespace harvlink::cli
