#include "Session.h"

#include <istream>
#include <ostream>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "CommandLine.h"
#include "InputError.h"

namespace harvlink::cli {

namespace {

constexpr unsigned LongestTimeout = 600'000;
constexpr unsigned MostRetries = 1'000;

} // namespace

void Session::AddOptions(CLI::App& app) {
    app.add_option("--host", host_, "IPv4 address of the controller")
        ->envname("HARVLINK_HOST")
        ->check(CLI::ValidIPV4)
        ->type_name("ADDRESS");
    app.add_option("--timeout", timeoutMilliseconds_, "Milliseconds for which an exchange listens for its answer")
        ->envname("HARVLINK_TIMEOUT")
        ->check(CLI::Range(0U, LongestTimeout))
        ->type_name("MS")
        ->capture_default_str();
    app.add_option("--retries", retries_, "How many further such periods it listens")
        ->envname("HARVLINK_RETRIES")
        ->check(CLI::Range(0U, MostRetries))
        ->type_name("N")
        ->capture_default_str();
    app.add_flag("--json", output_.json, "Print JSON for programs instead of tables for people");
    app.add_flag("-y,--yes", confirmed_, "Do not ask before the machine moves or its power changes");
}

void Session::OnConnection(ConnectedPlan plan) {
    plan_ = [this, plan = std::move(plan)](Output&) {
        CheckHost();
        return RunConnected(plan);
    };
}

void Session::OnConnectionConfirmed(std::string const& consequence, ConnectedPlan plan) {
    plan_ = [this, consequence, plan = std::move(plan)](Output&) {
        CheckHost();
        int const refusal = Confirm(consequence);
        return refusal == ExitStatus::Success ? RunConnected(plan) : refusal;
    };
}

void Session::CheckHost() const {
    if (host_.empty()) {
        throw InputError("which controller? Give --host or set HARVLINK_HOST");
    }
}

int Session::Confirm(std::string const& consequence) {
    Console& console = output_.console();
    if (confirmed_) {
        return ExitStatus::Success;
    }
    if (!console.inputIsTerminal || !console.errorIsTerminal) {
        throw InputError(fmt::format("{}; give --yes to confirm it", consequence));
    }
    console.err << fmt::format("{}. Go on? [y/N] ", consequence) << std::flush;
    std::string answer;
    std::getline(console.in, answer);
    if (answer == "y" || answer == "Y" || answer == "yes") {
        return ExitStatus::Success;
    }
    output_.Problem("not confirmed, nothing was done");
    return ExitStatus::Failure;
}

Connection Session::Open(StatusInfo& status) const {
    CheckHost();
    return Connect(host_, status, timeoutMilliseconds_, retries_, logging_);
}

int Session::RunConnected(ConnectedPlan const& plan) {
    StatusInfo status;
    Connection const connection = Open(status);
    if (connection) {
        status = plan(*connection, output_);
    }
    if (status.StatusCode != 0) {
        output_.Failure(status);
    }
    return output_.HasFailed() ? ExitStatus::Failure : ExitStatus::Success;
}

} // namespace harvlink::cli
