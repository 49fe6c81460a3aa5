#include "cli/program/Session.h"

#include <filesystem>
#include <istream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Interrupt.h"
#include "cli/program/LibraryLog.h"
#include "cli/program/Terminal.h"
#include "harvlink/ControllerStateInterface.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/SafeName.h"

namespace harvlink::cli {

namespace {

void CheckGeneration(QuorvanController& robot, std::string const& wanted) {
    SystemInfoData data;
    StatusInfo const status = robot.Status->ReadSystemInformation(SystemInfoId::Robot1, data);
    if (status.StatusCode != 0 || !data.softwareVersion.starts_with(wanted)) {
        throw std::runtime_error(fmt::format(
            "the controller's software version is '{}', not of generation {}; only the connection was opened",
            Printable(ControllerText(data.softwareVersion)), wanted));
    }
}

} // namespace

void Session::AddOptions(CLI::App& app) {
    options_.Add(app);
    app.add_flag("--json", output_.json, "Print JSON for programs instead of tables for people");
    app.add_flag("-y,--yes", confirmed_, "Do not ask before the machine moves or its power changes");
}

/// What writes could have been done at one controller when another one refuses, so it takes one at a time.
void Session::CheckOneCell() const {
    if (NamesSeveralCells()) {
        throw InputError("this command works on one controller; give one --cell. Several, and --all, are for commands "
                         "that only read");
    }
}

void Session::OnConnection(Access access, ConnectedPlan plan) {
    if (access == Access::Observe) {
        several_ = SeveralCells::Each;
    } else {
        CheckOneCell();
    }
    plan_ = [this, access, plan = std::move(plan)](Output&) {
        CheckHost();
        AnnounceClear(access);
        return RunConnected(access, plan);
    };
}

void Session::OnConnectionConfirmed(Access access, std::string const& consequence, ConnectedPlan plan) {
    CheckOneCell();
    plan_ = [this, access, consequence, plan = std::move(plan)](Output&) {
        CheckHost();
        return IsConfirmed(access, consequence) ? RunConnected(access, plan) : ExitStatus::Failure;
    };
}

void Session::LocallyForEachCell(LocalPlan plan) {
    several_ = SeveralCells::Each;
    plan_ = std::move(plan);
}

void Session::LocallyForAllCells(LocalPlan plan) {
    several_ = SeveralCells::Together;
    plan_ = std::move(plan);
}

std::string Session::FolderFor(std::string const& folder) const {
    if (ownCell_.empty() && !NamesSeveralCells()) {
        return folder;
    }
    std::string const cell = ownCell_.empty() ? NamedCells().front() : ownCell_;
    return TextOf(PathOf(folder) / PathOf(SafeName(cell)));
}

int Session::Run() {
    isRunning_ = true;
    return plan_ ? plan_(output_) : ExitStatus::Success;
}

Settings const& Session::settings() {
    if (isRunning_ && several_ == SeveralCells::Refused) {
        CheckOneCell();
    }
    if (!settings_) {
        std::vector<std::string> const named = ownCell_.empty() ? NamedCells() : std::vector{ownCell_};
        settings_ = options_.Resolve(named.empty() ? "" : named.front());
        if (ownCell_.empty()) { // or else its thread has the encoding
            SetControllerEncoding(TextEncoding(settings_->encoding));
        }
    }
    return *settings_;
}

std::string Session::BytesOf(std::string const& text) {
    UseEncoding();
    return ControllerBytes(text);
}

void Session::CheckHost() {
    if (settings().host.empty()) {
        throw InputError(
            "no controller is given; give --host or --cell, set HARVLINK_HOST or write host into the configuration "
            "file");
    }
}

void Session::AnnounceClear(Access access) {
    if (access == Access::Full && !keepsTargets_) {
        BrokenPipesIgnored const readerMayBeGone;
        output_.console().err
            << "Connecting for this clears the motion targets of a controller from YA up, those of other "
               "programs too.\n"
            << std::flush;
    }
}

bool Session::IsConfirmed(Access access, std::string const& consequence) {
    CheckConfirmable(consequence);
    AnnounceClear(access);
    return Confirm(consequence);
}

void Session::CheckConfirmable(std::string const& consequence) const {
    Console const& console = output_.console();
    if (!confirmed_ && (!console.inputIsTerminal || !console.errorIsTerminal)) {
        throw InputError(fmt::format("{}; give --yes to confirm it", consequence));
    }
}

bool Session::Confirm(std::string const& consequence) {
    Console& console = output_.console();
    if (confirmed_) {
        return true;
    }
    // What was typed before the question is not an answer to it.
    DiscardTyped();
    console.err << fmt::format("{}. Go on? [y/N] ", consequence) << std::flush;
    std::string answer;
    std::getline(console.in, answer);
    if (answer == "y" || answer == "Y" || answer == "yes") {
        return true;
    }
    output_.Problem("not confirmed, nothing was done");
    return false;
}

Connection Session::Open(Access access, StatusInfo& status) {
    CheckHost();
    return Open(settings(), access, status);
}

Connection Session::Open(Settings const& wanted, Access access, StatusInfo& status) const {
    Connection connection = Connect({.address = wanted.host,
                                     .timeout = wanted.timeoutMilliseconds,
                                     .retries = wanted.retries,
                                     .logging = logging_,
                                     .access = access,
                                     .clearTargets = !keepsTargets_},
                                    status);
    if (connection && !wanted.generation.empty()) {
        CheckGeneration(*connection, wanted.generation);
    }
    return connection;
}

void Session::ShowLog(LibraryLog const& log) {
    std::string const added = logging_ ? log.Added() : "";
    for (std::string_view const line : Split(added, '\n')) {
        if (!line.empty()) {
            output_.Problem(fmt::format("logged in {}: {}", TextOf(log.Path()), Printable(line)));
        }
    }
}

int Session::RunConnected(Access access, ConnectedPlan const& plan) {
    StatusInfo status;
    LibraryLog const log;
    if (Connection const connection = Open(access, status)) {
        status = plan(*connection, output_);
    }
    // After the connection is closed: its thread may write to the log until then.
    ShowLog(log);
    if (status.StatusCode != 0) {
        output_.Failure(status);
    }
    return output_.HasFailed() ? ExitStatus::Failure : ExitStatus::Success;
}

} // namespace harvlink::cli
