#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/output/Output.h"
#include "cli/program/Settings.h"
#include "harvlink/ConnectOptions.h"
#include "harvlink/StatusInfo.h"

namespace CLI {
class App;
}

namespace harvlink::cli {

class LibraryLog;

/// The options that all commands share, and the plan of the command that was given.
///
/// The callback of a command checks its arguments and makes a plan. The plan runs after the whole command line was parsed.
/// So wrong usage is found before a connection is opened, and each command opens at most one connection.
///
/// Every plan states the access that it takes: Observe for what looks, Operate for what writes, and Full only for motion by
/// targets. All connections are strict.
class Session {
public:
    using ConnectedPlan = std::function<StatusInfo(QuorvanController&, Output&)>;
    using LocalPlan = std::function<int(Output&)>;

    /// For a command that runs for several cells: the session of one of them.
    explicit Session(Output& output, std::string cell = {}) : output_(output), ownCell_(std::move(cell)) {}

    void AddOptions(CLI::App& app);

    /// Plans work on a connection. If it returns a failed status, the program shows it and ends with exit status 1; so it
    /// does if the work has shown a failure itself. With full access the user reads first what connecting clears.
    void OnConnection(Access access, ConnectedPlan plan);

    /// The same for work that moves the machine or changes its servo power: the user has to confirm it first.
    void OnConnectionConfirmed(Access access, std::string const& consequence, ConnectedPlan plan);

    /// For plans that ask in their middle. Throws InputError if nobody can be asked and --yes is not given.
    void CheckConfirmable(std::string const& consequence) const;

    /// Whether the user wants it, by --yes or by the answer.
    bool Confirm(std::string const& consequence);

    /// Plans work that needs no controller, or opens connections itself. It returns the exit status.
    void Locally(LocalPlan plan) { plan_ = std::move(plan); }

    /// The same for work that several cells can do at the same time, each by a run of its own.
    void LocallyForEachCell(LocalPlan plan);

    /// The same for work that takes all cells together, see NamedCells.
    void LocallyForAllCells(LocalPlan plan);

    /// Whether --all was given, or --cell more than once.
    bool NamesSeveralCells() const { return ownCell_.empty() && options_.NameSeveralCells(); }

    /// The cells that --cell or --all name. Empty if neither was given. Throws InputError.
    std::vector<std::string> NamedCells() const { return options_.NamedCells(); }

    /// Whether the command is to be run once for each of the named cells, as it only reads. Throws InputError.
    bool RunsForEachCell() const { return NamesSeveralCells() && several_ == SeveralCells::Each; }

    /// The folder that a command writes for the controller: `folder`, or one with the name of the cell in it if the command is
    /// for several.
    std::string FolderFor(std::string const& folder) const;

    /// Opens a connection by the settings, for plans with an exit status of their own. Empty on failure. Throws InputError if
    /// no host is given.
    Connection Open(Access access, StatusInfo& status);

    /// The same by other settings. From any thread.
    Connection Open(Settings const& wanted, Access access, StatusInfo& status) const;

    /// Throws InputError if no host is given.
    void CheckHost();

    /// The settings of this command. They are resolved by the first call, so that a command which needs none is not
    /// stopped by a bad configuration file; throws InputError then.
    Settings const& settings();

    /// The settings of a command for another cell than the one that --cell names. Throws InputError as settings() does.
    Settings SettingsOf(std::string const& cell) const { return options_.Resolve(cell); }

    /// Texts that the command was given are for a controller with the encoding of the settings. To be called before such a text
    /// is parsed.
    void UseEncoding() { settings(); }

    /// The bytes of a text for the controller.
    std::string BytesOf(std::string const& text);

    /// The controllers to which the configuration file gives names.
    std::vector<Cell> const& Cells() const { return options_.Cells(); }

    /// Full access then leaves the controller's motion targets as they are.
    void KeepTargets() { keepsTargets_ = true; }

    /// Lets the library write failures of motion to its log file. The program shows what was written, and where.
    void EnableLogging() { logging_ = true; }

    int Run();

    Output& output() { return output_; }

private:
    /// What becomes of a command for which several cells are named.
    enum class SeveralCells { Refused, Each, Together };

    void CheckOneCell() const;
    void AnnounceClear(Access access);
    bool IsConfirmed(Access access, std::string const& consequence);
    int RunConnected(Access access, ConnectedPlan const& plan);
    void ShowLog(LibraryLog const& log);

    Output& output_;
    std::string ownCell_;
    LocalPlan plan_;
    SeveralCells several_ = SeveralCells::Refused;
    bool isRunning_ = false;
    SettingsOptions options_;
    std::optional<Settings> settings_;
    bool confirmed_ = false;
    bool logging_ = false;
    bool keepsTargets_ = false;
};

} // namespace harvlink::cli
