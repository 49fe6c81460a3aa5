#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
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
    verb->add_option("NAME", arguments->name, "Name of the job, with or without .JBI")->required();
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
    CLI::App* const family = app.add_subcommand("job", "Select, start and follow jobs");
    family->require_subcommand(1);
    SetExamples(*family, {"job select MAIN", "job start", "job status"});
    AddSelect(*family, session);
    AddStart(*family, session, "Start the selected job: MOVES THE MACHINE");
    AddTaskVerb(*family, session, "status", "Show name, line, step and speed of the job that a task executes", ShowJob)
        ->alias("show");
    AddTaskVerb(*family, session, "stack", "Show the jobs on a task's call stack (newer controllers)", ShowStack);
    AddStart(app, session, "The same as job start: MOVES THE MACHINE");
}

} // namespace harvlink::cli
