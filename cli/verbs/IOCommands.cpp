#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/chrono.h>

#include "cli/output/Rows.h"
#include "cli/program/Help.h"
#include "cli/program/Interrupt.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "words/text/Text.h"
#include "words/values/SignalText.h"

namespace harvlink::cli {

namespace {

std::vector<SignalName> ParseSignals(std::vector<std::string> const& texts) {
    std::vector<SignalName> names;
    for (std::string const& text : texts) {
        std::vector<SignalName> const range = ParseSignalRange(text);
        names.insert(names.end(), range.begin(), range.end());
    }
    return names;
}

StatusInfo ResolveAll(IOInterface& io, std::vector<SignalName> const& names, std::vector<Signal>& signals) {
    for (SignalName const& name : names) {
        StatusInfo status = ResolveSignals(io, name, signals);
        if (status.StatusCode != 0) {
            return status;
        }
    }
    return {};
}

StatusInfo ShowSignals(QuorvanController& robot, Output& output, std::vector<SignalName> const& names) {
    std::vector<Signal> signals;
    StatusInfo resolved = ResolveAll(*robot.IO, names, signals);
    if (resolved.StatusCode != 0) {
        return resolved;
    }
    return ShowRows(
        output, signals,
        [&](Signal const& signal, Json& rows) {
            bool value = false;
            StatusInfo status = robot.IO->ReadBit(signal.address, value);
            if (status.StatusCode == 0) {
                Json row{{"signal", signal.name}, {"address", signal.address}};
                // For people the same words that io set takes.
                row.update(output.json ? Json{{"on", value}} : Json{{"state", value ? "on" : "off"}});
                rows.push_back(std::move(row));
            }
            return status;
        },
        [](Signal const& signal) { return signal.name; });
}

void AddGetSignal(CLI::App& family, Session& session) {
    auto names = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = family.add_subcommand("get", "Show signals; a group without a bit shows its eight");
    verb->add_option("SIGNAL", *names, "Such as 10010, 10010..10017 or general-output:1.0")->required();
    SetExamples(*verb, {"io get 10010", "io get 10010..10037", "io get general-output:1..4"}, SignalHelp);
    verb->callback([names, &session] {
        session.OnConnection(Access::Observe,
                             [parsed = ParseSignals(*names)](QuorvanController& robot, Output& output) {
                                 return ShowSignals(robot, output, parsed);
                             });
    });
}

struct SignalAssignment {
    SignalName name;
    bool value = false;
};

std::vector<SignalAssignment> ParseSignalAssignment(std::string const& text) {
    auto const [name, value] = SplitAssignment(text);
    std::vector<SignalAssignment> assignments;
    for (SignalName const& signal : ParseSignalRange(name)) {
        if (!signal.address && !signal.bit) {
            throw InputError(
                fmt::format("'{}' is a group; name a bit, such as {}.0, or write it with io byte", name, signal.text));
        }
        assignments.push_back({signal, ParseOnOff(value)});
    }
    return assignments;
}

StatusInfo SetSignals(QuorvanController& robot, Output& output, std::vector<SignalAssignment> const& assignments) {
    StatusInfo status;
    for (SignalAssignment const& assignment : assignments) {
        std::vector<Signal> signals;
        status = ResolveSignals(*robot.IO, assignment.name, signals);
        if (status.StatusCode == 0) {
            status = robot.IO->WriteBit(signals.front().address, assignment.value);
        }
        if (status.StatusCode != 0) {
            output.Failure(status, assignment.name.text);
            return {};
        }
    }
    output.Show(Json{{"written", assignments.size()}});
    return status;
}

void AddSetSignal(CLI::App& family, Session& session) {
    auto texts = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = family.add_subcommand("set", "Switch signals; whatever is wired to them may move");
    verb->add_option("SIGNAL=STATE", *texts, "Such as 10010=1 or general-output:1.0=off")->required();
    SetExamples(*verb, {"io set 10010=1 10011=off", "io set general-output:1.0=on"}, SignalHelp);
    verb->callback([texts, &session] {
        std::vector<SignalAssignment> assignments;
        for (std::string const& text : *texts) {
            std::vector<SignalAssignment> const range = ParseSignalAssignment(text);
            assignments.insert(assignments.end(), range.begin(), range.end());
        }
        session.OnConnection(Access::Operate, [assignments](QuorvanController& robot, Output& output) {
            return SetSignals(robot, output, assignments);
        });
    });
}

template <typename Value>
struct GroupRequest {
    SignalName name;
    std::optional<Value> write;
};

template <typename Value>
GroupRequest<Value> ParseGroupRequest(std::string const& text) {
    if (text.find('=') == std::string::npos) {
        return {ParseSignal(text), {}};
    }
    auto const [name, value] = SplitAssignment(text);
    return {ParseSignal(name), ParseNumber<Value>(value, "value")};
}

template <typename Value>
StatusInfo Exchange(IOInterface& io, unsigned address, std::optional<Value> const& write, Value& value) {
    value = write.value_or(Value{});
    if constexpr (sizeof(Value) == 1) {
        return write ? io.WriteByte(address, value) : io.ReadByte(address, value);
    } else {
        return write ? io.WriteWord(address, value) : io.ReadWord(address, value);
    }
}

template <typename Value>
Access AccessFor(std::vector<GroupRequest<Value>> const& requests) {
    bool const writes = std::ranges::any_of(requests, [](auto const& request) { return request.write.has_value(); });
    return writes ? Access::Operate : Access::Observe;
}

template <typename Value>
StatusInfo ShowGroups(QuorvanController& robot, Output& output, std::vector<GroupRequest<Value>> const& requests) {
    return ShowRows(
        output, requests,
        [&](GroupRequest<Value> const& request, Json& rows) {
            unsigned address = 0;
            Value value{};
            StatusInfo status = ResolveGroup(*robot.IO, request.name, address);
            if (status.StatusCode == 0) {
                status = Exchange(*robot.IO, address, request.write, value);
            }
            if (status.StatusCode == 0) {
                rows.push_back({{"group", request.name.text},
                                {"address", address},
                                {"value", value},
                                {"binary", fmt::format("{:0{}b}", value, 8 * sizeof(Value))}});
            }
            return status;
        },
        [](GroupRequest<Value> const& request) { return request.name.text; });
}

template <typename Value>
void AddGroupVerb(CLI::App& family, Session& session, char const* name, char const* description) {
    auto texts = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = family.add_subcommand(name, description);
    verb->add_option("GROUP[=VALUE]", *texts, "Such as 10010, general-output:1 or 10010=0xFF")->required();
    SetExamples(*verb, {fmt::format("io {} 10010", name), fmt::format("io {} general-output:1=0x0F", name)},
                SignalHelp);
    verb->callback([texts, &session] {
        std::vector<GroupRequest<Value>> requests;
        for (std::string const& text : *texts) {
            requests.push_back(ParseGroupRequest<Value>(text));
        }
        session.OnConnection(AccessFor(requests), [requests](QuorvanController& robot, Output& output) {
            return ShowGroups<Value>(robot, output, requests);
        });
    });
}

std::string TimeStamp() {
    auto const now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    auto const fraction = now.time_since_epoch().count() % 1000;
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}", fmt::localtime(std::chrono::system_clock::to_time_t(now)),
                       fraction);
}

// Reads all signals and shows those that have changed.
StatusInfo ShowChanges(IOInterface& io, Output& output, std::vector<Signal> const& signals,
                       std::vector<std::optional<bool>>& known) {
    for (std::size_t i = 0; i < signals.size(); ++i) {
        bool value = false;
        StatusInfo status = io.ReadBit(signals[i].address, value);
        if (status.StatusCode != 0) {
            return status;
        }
        if (known[i] != value) {
            known[i] = value;
            std::string const time = TimeStamp();
            output.ShowEvent(
                {{"time", time}, {"signal", signals[i].name}, {"address", signals[i].address}, {"on", value}},
                fmt::format("{}  {}  {}", time, signals[i].name, value ? "on" : "off"));
        }
    }
    return {};
}

StatusInfo Watch(QuorvanController& robot, Output& output, std::vector<SignalName> const& names,
                 std::chrono::milliseconds interval) {
    Interrupt const interrupt;
    std::vector<Signal> signals;
    StatusInfo status = ResolveAll(*robot.IO, names, signals);
    std::vector<std::optional<bool>> known(signals.size());
    while (status.StatusCode == 0) {
        status = ShowChanges(*robot.IO, output, signals, known);
        if (status.StatusCode == 0 && interrupt.Wait(interval)) {
            break;
        }
    }
    return status;
}

void AddWatch(CLI::App& family, Session& session) {
    auto names = std::make_shared<std::vector<std::string>>();
    auto interval = std::make_shared<unsigned>(100);
    CLI::App* const verb = family.add_subcommand("watch", "Print signals and then each change, until Ctrl-C");
    verb->add_option("SIGNAL", *names, "Such as 10010 or general-output:1")->required();
    verb->add_option("--interval", *interval, "Milliseconds between two readings")
        ->check(CLI::Range(1U, 3'600'000U))
        ->type_name("MS")
        ->capture_default_str();
    SetExamples(*verb, {"io watch 10010 general-input:1", "io watch 10010 --interval 20 --json"}, SignalHelp);
    verb->callback([names, interval, &session] {
        session.OnConnection(Access::Observe,
                             [parsed = ParseSignals(*names),
                              time = std::chrono::milliseconds(*interval)](QuorvanController& robot, Output& output) {
                                 return Watch(robot, output, parsed, time);
                             });
    });
}

// "5", or a range such as "0..9".
std::vector<std::uint16_t> ParseRegisters(std::vector<std::string> const& texts) {
    std::vector<std::uint16_t> registers;
    for (std::string const& text : texts) {
        auto const range = ParseRegisterRange(text);
        registers.insert(registers.end(), range.begin(), range.end());
    }
    return registers;
}

void AddRegisterGet(CLI::App& family, Session& session) {
    auto texts = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = family.add_subcommand("get", "Show registers");
    verb->add_option("REGISTER", *texts, "Numbers and ranges, such as 5 or 0..9")->required();
    SetExamples(*verb, {"register get 5 10..19"});
    verb->callback([texts, &session] {
        session.OnConnection(Access::Observe,
                             [registers = ParseRegisters(*texts)](QuorvanController& robot, Output& output) {
                                 return ShowRows(
                                     output, registers,
                                     [&](unsigned short index, Json& rows) {
                                         unsigned short value = 0;
                                         StatusInfo status = robot.IO->ReadRegister(index, value);
                                         if (status.StatusCode == 0) {
                                             rows.push_back({{"register", index}, {"value", value}});
                                         }
                                         return status;
                                     },
                                     [](unsigned short index) { return fmt::format("register {}", index); });
                             });
    });
}

struct RegisterAssignment {
    unsigned short index = 0;
    unsigned short value = 0;
};

StatusInfo SetRegisters(QuorvanController& robot, Output& output, std::vector<RegisterAssignment> const& assignments) {
    StatusInfo status;
    for (RegisterAssignment const& assignment : assignments) {
        status = robot.IO->WriteRegister(assignment.index, assignment.value);
        if (status.StatusCode != 0) {
            output.Failure(status, fmt::format("register {}", assignment.index));
            return {};
        }
    }
    output.Show(Json{{"written", assignments.size()}});
    return status;
}

void AddRegisterSet(CLI::App& family, Session& session) {
    auto texts = std::make_shared<std::vector<std::string>>();
    CLI::App* const verb = family.add_subcommand("set", "Write registers");
    verb->add_option("REGISTER=VALUE", *texts, "Such as 5=12")->required();
    SetExamples(*verb, {"register set 5=12 6=0xFF"});
    verb->callback([texts, &session] {
        std::vector<RegisterAssignment> assignments;
        for (std::string const& text : *texts) {
            auto const [index, value] = SplitAssignment(text);
            assignments.push_back({ParseNumber<unsigned short>(index, "register number"),
                                   ParseNumber<unsigned short>(value, "register value")});
        }
        session.OnConnection(Access::Operate, [assignments](QuorvanController& robot, Output& output) {
            return SetRegisters(robot, output, assignments);
        });
    });
}

} // namespace

void AddIOCommands(CLI::App& app, Session& session) {
    CLI::App* const signals = app.add_subcommand("io", "Read, switch and watch signals");
    signals->require_subcommand(1);
    SetExamples(*signals, {"io get 10010", "io set 10010=on", "io watch general-input:1"}, SignalHelp);
    AddGetSignal(*signals, session);
    AddSetSignal(*signals, session);
    AddGroupVerb<unsigned char>(*signals, session, "byte", "Show groups of eight signals, or write them");
    AddGroupVerb<unsigned short>(*signals, session, "word",
                                 "Show pairs of groups, the first in the low byte, or write them");
    AddWatch(*signals, session);
    CLI::App* const registers = app.add_subcommand("register", "Read and write registers");
    registers->require_subcommand(1);
    SetExamples(*registers, {"register get 0..9", "register set 5=12"});
    AddRegisterGet(*registers, session);
    AddRegisterSet(*registers, session);
}

} // namespace harvlink::cli
