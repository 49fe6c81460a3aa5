#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "cli/verbs/StillRunning.h"
#include "harvlink/ControlCommandsInterface.h"
#include "harvlink/JobInterface.h"
#include "words/text/Encoding.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

struct SelectArguments {
    std::string name;
    unsigned line = 0;
};

void AddSelect(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<SelectArguments>();
    CLI::App* const verb = family.add_subcommand("select", "Choose the job that a start will run");
    verb->add_option("NAME", arguments->name, "Name of the job, with or without .JBI")->type_name("JOB")->required();
    verb->add_option("--line", arguments->line, "Line to start from, 0 to 9999")->type_name("N")->capture_default_str();
    SetExamples(*verb, {"job select MAIN", "job select MAIN --line 12"});
    verb->callback([arguments, &session] {
        session.OnConnection(Access::Operate, [arguments](QuorvanController& robot, Output& output) {
            return output.Done(robot.Job->SetActiveJob(ControllerBytes(arguments->name), arguments->line));
        });
    });
}

void AddStart(CLI::App& parent, Session& session, char const* description) {
    CLI::App* const verb = parent.add_subcommand("start", description);
    SetExamples(*verb, {"job start", "job start --yes"});
    verb->callback([&session] {
        session.OnConnectionConfirmed(
            Access::Operate, "Starting the job MOVES THE MACHINE",
            [](QuorvanController& robot, Output& output) { return output.Done(robot.ControlCommands->StartJob()); });
    });
}

// No command ends a job: a hold stops it where it is.
StatusInfo StopJob(QuorvanController& robot, Output& output) {
    StatusInfo status = robot.ControlCommands->SetHold(SignalStatus::On);
    if (status.StatusCode != 0) {
        return status;
    }
    Remains const remains = ReadRemains(robot);
    if (remains.status.StatusCode != 0) {
        output.Failure(remains.status, "held, but can't tell whether the job still runs");
    } else if (remains.isRunning) {
        output.Problem("held, but the machine still runs; press the emergency stop if it must not");
    } else {
        output.Done(status);
    }
    if (output.console().errorIsTerminal) {
        output.console().err << "The hold stays on. To release it: harvlink hold off\n";
    }
    return {};
}

void AddJobStop(CLI::App& family, Session& session) {
    CLI::App* const verb = family.add_subcommand("stop", "Stop the job that runs: holds the machine, as hold on does");
    SetExamples(*verb, {"job stop"}, "The hold stays on until hold off. Then job start lets the job go on.");
    verb->callback([&session] { session.OnConnection(Access::Operate, StopJob); });
}

StatusInfo ShowJob(QuorvanController& robot, Output& output, TesselTaskNumber task) {
    JobData job;
    StatusInfo status = robot.Job->GetExecutingJobInformation(task, job);
    if (status.StatusCode == 0) {
        output.Show(Json{{"task", static_cast<int>(task)},
                         {"name", ControllerText(job.name)},
                         {"line", job.line},
                         {"step", job.stepNumber},
                         {"speed_override_percent", job.speedOverride}});
    }
    return status;
}

StatusInfo ShowStack(QuorvanController& robot, Output& output, TesselTaskNumber task) {
    std::vector<std::string> jobs;
    StatusInfo status = robot.Job->GetJobStack(task, jobs);
    if (status.StatusCode == 0) {
        Json rows = Json::array();
        for (std::string const& job : jobs) {
            rows.push_back({{"depth", rows.size() + 1}, {"name", ControllerText(job)}});
        }
        output.Show(rows);
    }
    return status;
}

using ShowTask = StatusInfo (*)(QuorvanController&, Output&, TesselTaskNumber);

CLI::App* AddTaskVerb(CLI::App& family, Session& session, char const* name, char const* description, ShowTask show) {
    auto task = std::make_shared<int>(0);
    CLI::App* const verb = family.add_subcommand(name, description);
    verb->add_option("--task", *task, "Task; 0 is the master task")
        ->check(CLI::Range(0, 255))
        ->type_name("N")
        ->capture_default_str();
    SetExamples(*verb, {fmt::format("job {}", name), fmt::format("job {} --task 1", name)});
    verb->callback([task, show, &session] {
        session.OnConnection(Access::Observe, [task, show](QuorvanController& robot, Output& output) {
            return show(robot, output, static_cast<TesselTaskNumber>(*task));
        });
    });
    return verb;
}

} // namespace

void AddJobCommands(CLI::App& app, Session& session) {
    CLI::App* const family = app.add_subcommand("job", "Select, start, stop and follow jobs");
    family->require_subcommand(1);
    SetExamples(*family, {"job select MAIN", "job start", "job stop", "job status"});
    AddSelect(*family, session);
    AddStart(*family, session, "Start the selected job: MOVES THE MACHINE");
    AddJobStop(*family, session);
    AddTaskVerb(*family, session, "status", "Show name, line, step and speed of the job that a task executes", ShowJob)
        ->alias("show");
    AddTaskVerb(*family, session, "stack", "Show the jobs on a task's call stack (newer controllers)", ShowStack);
    AddStart(app, session, "The same as job start: MOVES THE MACHINE");
}

} // namespace harvlink::cli
