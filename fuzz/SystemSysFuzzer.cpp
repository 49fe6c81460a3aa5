#include <regex>
#include <set>

#include "FuzzedConnection.h"
#include "connection/SystemFileParser.h"
#include "harvlink/ControlGroupInterface.h"

// The parser of "SYSTEM.SYS", and the control groups that a connection reads from it. The groups of each line are compared
// with regular expressions that mean the same as the parser's patterns.

namespace harvlink::fuzz {
namespace {

std::optional<ControlGroupId> GroupOf(std::string const& line) {
    static std::regex const robot("R([1-8])");
    static std::regex const station("S([1-9])");
    std::smatch match;
    if (std::regex_search(line, match, robot)) {
        return static_cast<ControlGroupId>(std::stoi(match[1]));
    }
    if (std::regex_search(line, match, station)) {
        return static_cast<ControlGroupId>(20 + std::stoi(match[1]));
    }
    return std::nullopt;
}

std::set<ControlGroupId> GroupsOf(std::string const& text) {
    static std::regex const base("B[1-8A-Z]");
    SystemFileParser parser(text);
    std::set<ControlGroupId> groups{ControlGroupId::R1, ControlGroupId::B1, ControlGroupId::S1};
    std::vector<std::string> lines;
    parser.GetSection("SERVO POWER", lines);
    for (auto const& line : lines) {
        if (auto const group = GroupOf(line)) {
            groups.insert(*group);
        }
    }
    auto const robots = std::ranges::count_if(groups, [](auto group) { return group <= ControlGroupId::R8; });
    parser.GetSection("ROBOT NAME", lines);
    for (std::size_t i = 0; i < lines.size() && i < static_cast<std::size_t>(robots); ++i) {
        if (std::regex_search(lines[i], base)) {
            groups.insert(static_cast<ControlGroupId>(11 + i));
        }
    }
    return groups;
}

bool IsAttached(FuzzedConnection& connection, int group) {
    PositionData position;
    auto const status = connection.robot.ControlGroup->ReadPositionData(static_cast<ControlGroupId>(group),
                                                                        CoordinateType::Pulse, 0, 0, position);
    return status.StatusCode != static_cast<int>(ErrorStatusCodes::ControlGroupNotAttached);
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string text(Input(data, size).TakeText());
    std::ranges::replace(text, '\0', ' ');
    FuzzedConnection connection(3);
    connection.SetAnswers(BlocksOf(text));
    Require(connection.robot.GetAttachedControlGroups(), "a complete file is read");
    auto const groups = GroupsOf(text);
    for (int group = 0; group <= 45; ++group) {
        bool const isExpected = groups.contains(static_cast<ControlGroupId>(group));
        Require(IsAttached(connection, group) == isExpected, "exactly the groups in the file");
    }
    return 0;
}

} // namespace harvlink::fuzz
