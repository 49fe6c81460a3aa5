#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/Session.h"
#include "cli/trajectory/TrajectoryFile.h"
#include "cli/trajectory/TrajectoryRun.h"
#include "cli/verbs/Commands.h"
#include "cli/verbs/StillRunning.h"
#include "words/text/Csv.h"
#include "words/text/InputError.h"
#include "words/text/Printable.h"
#include "words/values/PositionText.h"

namespace harvlink::cli {

namespace {

constexpr char const* MoveWarning = "This MOVES THE MACHINE";

struct MoveArguments {
    std::string group;
    std::string to;
    double speed = 0.0;
    double acceleration = RatioNotSpecified;
    double deceleration = RatioNotSpecified;
    bool joint = false;
    bool line = false;
};

void PlanTrajectory(Session& session, Trajectory trajectory) {
    session.EnableLogging();
    session.OnConnectionConfirmed(Access::Full, MoveWarning,
                                  [trajectory = std::move(trajectory)](QuorvanController& robot, Output& output) {
                                      return RunTrajectory(robot, output, trajectory);
                                  });
}

CircularMotion MakeMotion(MoveArguments const& arguments) {
    if (arguments.joint == arguments.line) {
        throw InputError("the kind of move is missing; give --joint or --line");
    }
    CircularMotion motion;
    motion.controlGroup = ParseGroup(arguments.group);
    motion.speed = arguments.speed;
    motion.accelerationRatio = arguments.acceleration;
    motion.decelerationRatio = arguments.deceleration;
    motion.moveType = arguments.line ? MoveInterpolationType::Line : MoveInterpolationType::Joint;
    motion.position = ParsePosition(arguments.to, LeastAxes(motion.controlGroup));
    CheckMotion(motion);
    return motion;
}

void AddMove(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<MoveArguments>();
    CLI::App* const verb = app.add_subcommand("move", "Move a control group to a position: MOVES THE MACHINE");
    verb->add_option("GROUP", arguments->group, "Control group, such as R1")->type_name("GROUP")->required();
    CLI::Option* const joint =
        verb->add_flag("--joint", arguments->joint, "Move each axis on its own; either this or --line is required");
    verb->add_flag("--line", arguments->line, "Move in a straight line")->excludes(joint);
    verb->add_option("--to", arguments->to, "The position to move to")->required()->type_name("POSITION");
    verb->add_option("--speed", arguments->speed, "Speed in per cent (joint) or mm/s (line)")
        ->required()
        ->type_name("SPEED");
    verb->add_option("--acceleration", arguments->acceleration,
                     "20 to 100 per cent (default: the controller's setting)")
        ->type_name("PERCENT");
    verb->add_option("--deceleration", arguments->deceleration,
                     "20 to 100 per cent (default: the controller's setting)")
        ->type_name("PERCENT");
    SetExamples(*verb,
                {"move R1 --line --to base:480,0,600,180,0,0 --speed 100",
                 "move R1 --joint --to pulse:0,0,0,0,-90000,0 --speed 10 --yes"},
                PositionHelp);
    verb->callback([arguments, &session] { PlanTrajectory(session, {{MakeMotion(*arguments), {}}}); });
}

void AddTrajectory(CLI::App& app, Session& session) {
    CLI::App* const family = app.add_subcommand("trajectory", "Run or check a trajectory from a CSV file");
    family->require_subcommand(1);
    SetExamples(*family, {"trajectory check square.csv", "trajectory run square.csv"}, TrajectoryHelp);
    auto path = std::make_shared<std::string>();
    CLI::App* const run = family->add_subcommand("run", "Move through all points of a file: MOVES THE MACHINE. Ctrl-C "
                                                        "stops the motion and clears the queue, a second one quits");
    run->add_option("FILE", *path, "The trajectory")->type_name("TRAJECTORY")->required();
    SetExamples(*run, {"trajectory run square.csv", "trajectory run square.csv --yes --json"}, TrajectoryHelp);
    run->callback([path, &session] { PlanTrajectory(session, ParseTrajectory(*path, ReadTextFile(*path))); });
    CLI::App* const check = family->add_subcommand("check", "Check a file without a robot");
    check->add_option("FILE", *path, "The trajectory")->type_name("TRAJECTORY")->required();
    SetExamples(*check, {"trajectory check square.csv"}, TrajectoryHelp);
    check->callback([path, &session] {
        session.Locally([count = ParseTrajectory(*path, ReadTextFile(*path)).size()](Output& output) {
            output.Show(Json{{"points", count}, {"valid", true}});
            return ExitStatus::Success;
        });
    });
}

StatusInfo ShowProgress(QuorvanController& robot, Output& output, ControlGroupId group) {
    StatusInfo status;
    double const progress = robot.MotionManager->GetMotionTargetProgress(group, status);
    if (status.StatusCode == 0) {
        output.Show(Json{{"group", GroupName(group)}, {"progress", progress}});
    }
    return status;
}

void AddProgress(CLI::App& app, Session& session) {
    auto group = std::make_shared<std::string>("R1");
    CLI::App* const verb = app.add_subcommand("progress", "Show how far a control group has moved towards its target");
    verb->add_option("GROUP", *group, "Control group, such as R1")->type_name("GROUP")->capture_default_str();
    SetExamples(*verb, {"progress R1"});
    verb->callback([group, &session] {
        session.OnConnection(Access::Observe, [id = ParseGroup(*group)](QuorvanController& robot, Output& output) {
            return ShowProgress(robot, output, id);
        });
    });
}

// Stopping the motion does not stop a job, and a user who types "stop" wants the machine to stand still.
StatusInfo StopAndCheck(QuorvanController& robot, Output& output, bool clearsTargets) {
    StatusInfo const status = StopMotion(*robot.MotionManager, clearsTargets);
    Remains const remains = IsSilence(status) ? Remains{} : ReadRemains(robot);
    if (status.StatusCode != 0) {
        output.Failure(status);
    } else if (!remains.isRunning) {
        output.Done(status);
    } else if (output.json) {
        output.Show(Json{{"code", status.StatusCode}, {"message", status.Message}, {"still_running", remains.job}});
    }
    if (remains.isRunning && !remains.job.is_null()) {
        output.Problem(fmt::format("the job {} still runs, at line {}; to stop it: harvlink job stop",
                                   Printable(remains.job["name"].get<std::string>()), remains.job["line"].dump()));
    } else if (remains.isRunning) {
        output.Problem("the machine still runs; to hold it: harvlink hold on");
    } else if (remains.status.StatusCode != 0) {
        output.Failure(remains.status, "can't tell whether a job still runs");
    }
    return {};
}

void AddStop(CLI::App& parent, Session& session, char const* description) {
    auto keep = std::make_shared<bool>(false);
    CLI::App* const verb = parent.add_subcommand("stop", description);
    verb->add_flag("--keep-targets", *keep, "Leave the controller's targets as they are");
    SetExamples(*verb, {"motion stop", "stop"},
                "A job goes on: the command says so, with exit status 1. To stop a job: harvlink job stop");
    verb->callback([keep, &session] {
        session.OnConnection(Access::Operate, [keep](QuorvanController& robot, Output& output) {
            return StopAndCheck(robot, output, !*keep);
        });
    });
}

void AddClear(CLI::App& parent, Session& session, char const* description) {
    CLI::App* const verb = parent.add_subcommand("clear", description);
    SetExamples(*verb, {"motion clear", "clear"});
    verb->callback([&session] {
        session.OnConnection(Access::Operate, [](QuorvanController& robot, Output& output) {
            return output.Done(robot.MotionManager->ClearAllTrajectory());
        });
    });
}

void AddStart(CLI::App& family, Session& session) {
    CLI::App* const verb = family.add_subcommand(
        "start", "Start the motion to the targets that the controller has and keep them: MOVES THE MACHINE");
    SetExamples(*verb, {"motion start --yes"});
    verb->callback([&session] {
        session.KeepTargets(); // or nothing would be left to start
        session.OnConnectionConfirmed(Access::Full, MoveWarning, [](QuorvanController& robot, Output& output) {
            return output.Done(robot.MotionManager->MotionStart());
        });
    });
}

} // namespace

void AddMotionCommands(CLI::App& app, Session& session) {
    AddMove(app, session);
    AddTrajectory(app, session);
    AddProgress(app, session);
    CLI::App* const family = app.add_subcommand("motion", "Start, stop and clear motion (newer controllers)");
    family->require_subcommand(1);
    SetExamples(*family, {"motion stop", "motion clear", "motion start --yes"});
    AddStart(*family, session);
    AddStop(*family, session, "Stop the motion and clear its targets");
    AddClear(*family, session, "Clear the controller's targets");
    AddStop(app, session, "The same as motion stop");
    AddClear(app, session, "The same as motion clear");
}

} // namespace harvlink::cli
