#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/program/Help.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "harvlink/FaultInterface.h"
#include "words/text/Text.h"
#include "words/values/StateText.h"

namespace harvlink::cli {

namespace {

constexpr std::uint32_t MostHistory = 100;

constexpr std::array<Named<AlarmCategory>, 5> CategoryNames{{{"major", AlarmCategory::Major},
                                                             {"minor", AlarmCategory::Minor},
                                                             {"system-user", AlarmCategory::SystemUser},
                                                             {"user", AlarmCategory::User},
                                                             {"offline", AlarmCategory::Offline}}};

// Only the entries that hold an alarm; these need not be the first ones.
Json AlarmRows(std::span<AlarmData const> alarms) {
    Json rows = Json::array();
    for (std::size_t place = 0; place < alarms.size(); ++place) {
        AlarmData const& alarm = alarms[place];
        if (alarm.code != 0) {
            Json row{{"place", place + 1}};
            row.update(AlarmJson(alarm));
            rows.push_back(row);
        }
    }
    return rows;
}

StatusInfo ShowActive(QuorvanController& robot, Output& output) {
    ActiveAlarms alarms;
    StatusInfo status = robot.Faults->GetActiveAlarms(alarms);
    if (status.StatusCode == 0) {
        output.Show(AlarmRows(alarms.alarms));
    }
    return status;
}

struct HistoryArguments {
    std::uint32_t count = 10;
    std::string category; ///< empty: all
};

/// Adds the alarms of one category to the rows.
StatusInfo ReadHistory(QuorvanController& robot, Named<AlarmCategory> const& category, std::uint32_t count,
                       Json& rows) {
    auto history = std::make_unique<AlarmHistory>();
    StatusInfo status = robot.Faults->GetAlarmHistory(category.value, count, *history);
    if (status.StatusCode == 0) {
        for (Json& row : AlarmRows(history->alarms)) {
            row["category"] = category.name;
            rows.push_back(std::move(row));
        }
    }
    return status;
}

// A controller may lack a category; only if it has none of them, the command fails.
StatusInfo ShowHistory(QuorvanController& robot, Output& output, std::vector<Named<AlarmCategory>> const& categories,
                       std::uint32_t count) {
    Json rows = Json::array();
    StatusInfo refused;
    std::size_t read = 0;
    for (Named<AlarmCategory> const& category : categories) {
        StatusInfo status = ReadHistory(robot, category, count, rows);
        if (IsSilence(status)) {
            return status;
        }
        read += status.StatusCode == 0 ? 1 : 0;
        refused = status.StatusCode == 0 ? refused : status;
    }
    if (read == 0) {
        return refused;
    }
    output.Show(rows);
    return {};
}

void PlanHistory(Session& session, HistoryArguments const& arguments) {
    std::vector<Named<AlarmCategory>> categories(CategoryNames.begin(), CategoryNames.end());
    if (!arguments.category.empty()) {
        AlarmCategory const wanted = ParseName(CategoryNames, arguments.category, "category of alarms");
        std::erase_if(categories, [&](auto const& named) { return named.value != wanted; });
    }
    session.OnConnection(Access::Observe,
                         [categories, count = arguments.count](QuorvanController& robot, Output& output) {
                             return ShowHistory(robot, output, categories, count);
                         });
}

void AddCategory(CLI::App& verb, HistoryArguments& arguments) {
    verb.add_option("--category", arguments.category, "Category of the history")
        ->type_name(Choices(CategoryNames))
        ->default_str("all");
}

void AddHistory(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<HistoryArguments>();
    CLI::App* const verb = family.add_subcommand("history", "Show the newest alarms of each category, newest first");
    verb->add_option("COUNT", arguments->count, "The most alarms to show of a category")
        ->check(CLI::Range(1U, MostHistory))
        ->capture_default_str();
    AddCategory(*verb, *arguments);
    SetExamples(*verb, {"alarms history", "alarms history 50 --category minor"});
    verb->callback([arguments, &session] { PlanHistory(session, *arguments); });
}

void AddClear(CLI::App& family, Session& session) {
    CLI::App* const verb = family.add_subcommand("clear", "Cancel the error and reset the alarms");
    SetExamples(*verb, {"alarms clear"});
    verb->callback([&session] {
        session.OnConnection(Access::Operate, [](QuorvanController& robot, Output& output) {
            return output.Done(robot.Faults->ClearAllFaults());
        });
    });
}

} // namespace

void AddFaultCommands(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<HistoryArguments>();
    CLI::App* const family = app.add_subcommand("alarms", "Show active alarms or their history, or clear them");
    CLI::Option const* const history =
        family
            ->add_option("--history", arguments->count,
                         "Show this many alarms of the history, as the command history does")
            ->check(CLI::Range(1U, MostHistory))
            ->type_name("N");
    AddCategory(*family, *arguments);
    family->require_subcommand(0, 1);
    AddHistory(*family, session);
    AddClear(*family, session);
    SetExamples(*family, {"alarms", "alarms --history 20 --category minor", "alarms clear"});
    family->callback([arguments, family, history, &session] {
        if (!family->get_subcommands().empty()) {
            return;
        }
        if (history->count() > 0) {
            PlanHistory(session, *arguments);
        } else {
            session.OnConnection(Access::Observe, ShowActive);
        }
    });
}

} // namespace harvlink::cli
