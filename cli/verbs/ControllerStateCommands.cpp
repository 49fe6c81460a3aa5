#include <array>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/chrono.h>

#include "cli/output/Rows.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "harvlink/ControllerStateInterface.h"
#include "words/text/Encoding.h"
#include "words/text/Text.h"
#include "words/values/ParameterText.h"
#include "words/values/PositionText.h"
#include "words/values/StateText.h"

namespace harvlink::cli {

namespace {

constexpr std::array<Named<SystemInfoId>, 19> InfoNames{{{"robot1", SystemInfoId::Robot1},
                                                         {"robot2", SystemInfoId::Robot2},
                                                         {"robot3", SystemInfoId::Robot3},
                                                         {"robot4", SystemInfoId::Robot4},
                                                         {"robot5", SystemInfoId::Robot5},
                                                         {"robot6", SystemInfoId::Robot6},
                                                         {"robot7", SystemInfoId::Robot7},
                                                         {"robot8", SystemInfoId::Robot8},
                                                         {"station1", SystemInfoId::Station1},
                                                         {"station2", SystemInfoId::Station2},
                                                         {"station3", SystemInfoId::Station3},
                                                         {"application1", SystemInfoId::Application1},
                                                         {"application2", SystemInfoId::Application2},
                                                         {"application3", SystemInfoId::Application3},
                                                         {"application4", SystemInfoId::Application4},
                                                         {"application5", SystemInfoId::Application5},
                                                         {"application6", SystemInfoId::Application6},
                                                         {"application7", SystemInfoId::Application7},
                                                         {"application8", SystemInfoId::Application8}}};

constexpr std::array<Named<TimeType>, 11> TimeNames{{{"control-power", TimeType::ControlPower},
                                                     {"servo-power", TimeType::ServoPowerTotal},
                                                     {"servo-power-robot", TimeType::ServoPowerRobot},
                                                     {"servo-power-station", TimeType::ServoPowerStation},
                                                     {"playback", TimeType::PlaybackTotal},
                                                     {"playback-robot", TimeType::PlaybackRobot},
                                                     {"playback-station", TimeType::PlaybackStation},
                                                     {"moving", TimeType::MovingTotal},
                                                     {"moving-robot", TimeType::MovingRobot},
                                                     {"moving-station", TimeType::MovingStation},
                                                     {"application", TimeType::Application}}};

SystemInfoId ParseInfoId(std::string const& text) {
    bool const isNumber = !text.empty() && text[0] >= '0' && text[0] <= '9';
    return isNumber ? static_cast<SystemInfoId>(ParseNumber<std::uint16_t>(text, "system information number"))
                    : ParseName(InfoNames, text, "kind of system information");
}

StatusInfo ShowInformation(QuorvanController& robot, Output& output, std::vector<SystemInfoId> const& ids) {
    return ShowRows(output, ids, [&](SystemInfoId id, Json& rows) {
        SystemInfoData data;
        StatusInfo status = robot.Status->ReadSystemInformation(id, data);
        if (status.StatusCode == 0) {
            rows.push_back({{"id", NameOf(InfoNames, id)},
                            {"model", ControllerText(data.modelName)},
                            {"software", ControllerText(data.softwareVersion)}});
        }
        return status;
    });
}

void AddInfo(CLI::App& app, Session& session) {
    auto names = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = app.add_subcommand("info", "Show model and software version");
    verb->add_option("ID", *names, "A number, or a name")->type_name(Choices(InfoNames))->default_str("robot1");
    SetExamples(*verb, {"info", "info robot1 station1"});
    verb->callback([names, &session] {
        std::vector<SystemInfoId> ids;
        for (std::string const& name : *names) {
            ids.push_back(ParseInfoId(name));
        }
        if (ids.empty()) {
            ids.push_back(SystemInfoId::Robot1);
        }
        session.OnConnection(Access::Observe, [ids](QuorvanController& robot, Output& output) {
            return ShowInformation(robot, output, ids);
        });
    });
}

StatusInfo ShowState(QuorvanController& robot, Output& output) {
    ControllerStateData state;
    StatusInfo status = robot.Status->ReadState(state);
    if (status.StatusCode == 0) {
        output.Show(StateJson(state));
    }
    return status;
}

void AddStatus(CLI::App& app, Session& session) {
    CLI::App* const verb =
        app.add_subcommand("status", "Show mode, cycle, running, hold, alarm, error and servo state");
    SetExamples(*verb, {"status", "status --json"});
    verb->callback([&session] { session.OnConnection(Access::Observe, ShowState); });
}

struct TimeArguments {
    std::vector<std::string> counters;
    std::string group = "R1";
    int application = 0;
};

/// Programs also get the seconds since 1970.
Json TimeJson(TimeType type, TimeData const& data, bool forPeople) {
    std::time_t const start = data.startTimeEpoch;
    std::tm const local = fmt::localtime(start);
    ElapsedTime const& elapsed = data.elapsedTime;
    Json row{{"counter", NameOf(TimeNames, type)},
             {forPeople ? "start (local time)" : "start", fmt::format("{:%Y-%m-%d %H:%M}", local)}};
    if (!forPeople) {
        row["start_epoch"] = data.startTimeEpoch;
    }
    row.update(Json{{"hours", elapsed.hours}, {"minutes", elapsed.minutes}, {"seconds", elapsed.seconds}});
    return row;
}

StatusInfo ShowTimes(QuorvanController& robot, Output& output, std::vector<TimeType> const& types,
                     TimeArguments const& arguments) {
    auto const application = static_cast<ApplicationNumber>(arguments.application);
    return ShowRows(output, types, [&](TimeType type, Json& rows) {
        TimeData data;
        StatusInfo status = robot.Status->ReadOperatingTimes(ParseGroup(arguments.group), type, data, application);
        if (status.StatusCode == 0) {
            rows.push_back(TimeJson(type, data, !output.json));
        }
        return status;
    });
}

void AddTimes(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<TimeArguments>();
    CLI::App* const verb = app.add_subcommand("times", "Show operating time counters");
    verb->add_option("COUNTER", arguments->counters, "Counters (default: the four of the whole controller)")
        ->type_name(Choices(TimeNames));
    verb->add_option("--group", arguments->group, "Group of a robot's or station's counter")
        ->type_name("GROUP")
        ->capture_default_str();
    verb->add_option("--application", arguments->application, "Number of an application's counter")->type_name("N");
    SetExamples(*verb, {"times", "times moving-robot --group R1", "times application --application 2"});
    verb->callback([arguments, &session] {
        std::vector<TimeType> types;
        for (std::string const& name : arguments->counters) {
            types.push_back(ParseName(TimeNames, name, "time counter"));
        }
        if (types.empty()) {
            types = {TimeType::ControlPower, TimeType::ServoPowerTotal, TimeType::PlaybackTotal, TimeType::MovingTotal};
        }
        ParseGroup(arguments->group);
        session.OnConnection(Access::Observe, [arguments, types](QuorvanController& robot, Output& output) {
            return ShowTimes(robot, output, types, *arguments);
        });
    });
}

struct ParameterArguments {
    std::vector<std::string> names;
    int group = 0;
};

StatusInfo ShowParameters(QuorvanController& robot, Output& output, std::vector<Parameter> const& parameters,
                          int group) {
    return ShowRows(output, parameters, [&](Parameter const& parameter, Json& rows) {
        int value = 0;
        StatusInfo status = group == 0 ? robot.Status->ReadSystemParam(parameter.type, parameter.number, value)
                                       : robot.Status->ReadSystemParam(parameter.type, parameter.number, group, value);
        if (status.StatusCode == 0) {
            rows.push_back({{"parameter", parameter.name}, {"value", value}});
        }
        return status;
    });
}

void AddParam(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<ParameterArguments>();
    CLI::App* const verb = app.add_subcommand("param", "Show system parameters (newer controllers)");
    verb->add_option("NAME", arguments->names, "Such as S2C430 or RS22; TYPE:NUMBER for a family without a name")
        ->required();
    verb->add_option("--group", arguments->group, "Number of the group, for S1C, S1E and S2E")
        ->check(CLI::Range(1, 1000))
        ->type_name("N");
    SetExamples(*verb, {"param S2C430 RS22", "param S1C400 --group 1"});
    verb->callback([arguments, &session] {
        std::vector<Parameter> parameters;
        for (std::string const& name : arguments->names) {
            parameters.push_back(ParseParameter(name));
        }
        session.OnConnection(Access::Observe,
                             [parameters, group = arguments->group](QuorvanController& robot, Output& output) {
                                 return ShowParameters(robot, output, parameters, group);
                             });
    });
}

} // namespace

void AddControllerStateCommands(CLI::App& app, Session& session) {
    AddInfo(app, session);
    AddStatus(app, session);
    AddTimes(app, session);
    AddParam(app, session);
}

} // namespace harvlink::cli
