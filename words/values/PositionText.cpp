#include "words/values/PositionText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <sstream>

#include <fmt/format.h>

#include "words/text/Text.h"

namespace harvlink::words {

namespace {

constexpr std::array<Named<CoordinateType>, 8> CoordinateNames{{{"pulse", CoordinateType::Pulse},
                                                                {"joint", CoordinateType::JointAngle},
                                                                {"base", CoordinateType::BaseCoordinate},
                                                                {"robot", CoordinateType::RobotCoordinate},
                                                                {"tool", CoordinateType::ToolCoordinate},
                                                                {"user", CoordinateType::UserCoordinate},
                                                                {"master-tool", CoordinateType::MasterTool},
                                                                {"undefined", CoordinateType::Undefined}}};

struct GroupFamily {
    char letter;
    int offset;
    int count;
};

constexpr std::array<GroupFamily, 3> GroupFamilies{{{'r', 0, 8}, {'b', 10, 8}, {'s', 20, 24}}};

struct AngleFlag {
    std::string_view word;
    AxisAngle Figure::*field;
};

constexpr std::array<AngleFlag, 8> AngleFlags{{{"s180", &Figure::sAngle},
                                               {"l180", &Figure::lAngle},
                                               {"u180", &Figure::uAngle},
                                               {"r180", &Figure::rAngle},
                                               {"b180", &Figure::bAngle},
                                               {"t180", &Figure::tAngle},
                                               {"e180", &Figure::eAngle},
                                               {"w180", &Figure::wAngle}}};

constexpr std::array<std::string_view, 8> CartesianAxisNames{"x", "y", "z", "rx", "ry", "rz", "re", "rw"};
constexpr std::array<std::string_view, 8> PulseAxisNames{"s", "l", "u", "r", "b", "t", "e", "w"};

bool SetAngleFlag(Figure& figure, std::string_view word) {
    auto const* const flag = std::ranges::find(AngleFlags, word, &AngleFlag::word);
    if (flag == AngleFlags.end()) {
        return false;
    }
    figure.*flag->field = AxisAngle::GreaterThan180;
    return true;
}

void SetFigureWord(Figure& figure, std::string_view word) {
    if (word == "front" || word == "back") {
        figure.frontOrBack = word == "front" ? FrontOrBack::Front : FrontOrBack::Back;
    } else if (word == "upper" || word == "lower") {
        figure.upperOrLower = word == "upper" ? UpperOrLower::Upper : UpperOrLower::Lower;
    } else if (word == "flip" || word == "noflip") {
        figure.flipOrNoFlip = word == "flip" ? FlipOrNoFlip::Flip : FlipOrNoFlip::NoFlip;
    } else if (!SetAngleFlag(figure, word)) {
        throw InputError(
            fmt::format("'{}' is not a word of a figure; there are: front, back, upper, lower, flip, noflip, "
                        "s180, l180, u180, r180, b180, t180, e180, w180",
                        word));
    }
}

void AddItem(PositionData& position, std::string_view item, std::size_t& axisCount) {
    std::size_t const equals = item.find('=');
    std::string const name = LowerCase(item.substr(0, equals));
    if (equals == std::string_view::npos) {
        if (axisCount == position.axes.size()) {
            throw InputError("a position has at most 8 axes");
        }
        position.axes.at(axisCount++) = ParseNumber<double>(item, "axis value");
    } else if (name == "tool") {
        position.toolNumber = ParseNumber<std::int32_t>(item.substr(equals + 1), "tool number");
    } else if (name == "figure") {
        position.figure = ParseFigure(item.substr(equals + 1));
    } else {
        throw InputError(fmt::format("'{}' is not part of a position", item));
    }
}

std::string Units(CoordinateType type) {
    return type == CoordinateType::Pulse ? "pulses" : IsCartesian(type) ? "mm, degrees" : "degrees";
}

} // namespace

ControlGroupId ParseGroup(std::string_view text) {
    std::string const lower = LowerCase(text);
    for (GroupFamily const& family : GroupFamilies) {
        if (!lower.empty() && lower[0] == family.letter) {
            int const number = ParseNumber<int>(std::string_view(lower).substr(1), "control group number");
            if (number >= 1 && number <= family.count) {
                return static_cast<ControlGroupId>(number + family.offset);
            }
        }
    }
    throw InputError(fmt::format("'{}' is not a control group; there are R1 to R8, B1 to B8 and S1 to S24", text));
}

std::string GroupName(ControlGroupId group) {
    std::ostringstream name;
    name << group;
    return name.str();
}

std::size_t LeastAxes(ControlGroupId group) {
    return group < ControlGroupId::B1 ? 6 : 1;
}

Coordinate ParseCoordinate(std::string_view text) {
    std::size_t const colon = text.find(':');
    std::string const name = LowerCase(text.substr(0, colon));
    auto const* const named = std::find_if(CoordinateNames.begin(), CoordinateNames.end(),
                                           [&](auto const& each) { return each.name == name; });
    CoordinateType const type = named == CoordinateNames.end() ? CoordinateType::Undefined : named->value;
    bool const isUser = type == CoordinateType::UserCoordinate;
    if (type == CoordinateType::Undefined || isUser != (colon != std::string_view::npos)) {
        throw InputError(fmt::format(
            "'{}' is not a coordinate system; there are: pulse, joint, base, robot, tool, user:N, master-tool", text));
    }
    return {type, isUser ? ParseNumber<int>(text.substr(colon + 1), "user coordinate number") : 0};
}

std::string CoordinateName(Coordinate coordinate) {
    std::string const name = NameOf(CoordinateNames, coordinate.type);
    return coordinate.type == CoordinateType::UserCoordinate ? fmt::format("{}:{}", name, coordinate.userNumber) : name;
}

bool IsCartesian(CoordinateType type) {
    return type != CoordinateType::Pulse && type != CoordinateType::JointAngle;
}

Figure ParseFigure(std::string_view text) {
    Figure figure;
    std::string const lower = LowerCase(text);
    for (std::string_view const word : Split(lower, '+')) {
        SetFigureWord(figure, word);
    }
    return figure;
}

std::string FigureText(Figure const& figure) {
    std::string text = figure.frontOrBack == FrontOrBack::Front ? "front" : "back";
    text += figure.upperOrLower == UpperOrLower::Upper ? "+upper" : "+lower";
    text += figure.flipOrNoFlip == FlipOrNoFlip::Flip ? "+flip" : "+noflip";
    for (AngleFlag const& flag : AngleFlags) {
        if (figure.*flag.field != AxisAngle::LessThan180) {
            text += fmt::format("+{}", flag.word);
        }
    }
    return text;
}

PositionData ParsePosition(std::string_view text, std::size_t leastAxes) {
    std::size_t const colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        throw InputError(
            fmt::format("'{}' is not a position; a position begins with a coordinate system and a colon", text));
    }
    Coordinate const coordinate = ParseCoordinate(text.substr(0, colon));
    PositionData position{.coordinateType = coordinate.type, .userCoordinateNumber = coordinate.userNumber};
    std::size_t axisCount = 0;
    for (std::string_view const item : Split(text.substr(colon + 1), ',')) {
        AddItem(position, TrimBlanks(item), axisCount);
    }
    if (axisCount < leastAxes) {
        throw InputError(fmt::format("'{}' has {} axes, but at least {} are needed", text, axisCount, leastAxes));
    }
    return position;
}

std::string FormatPosition(PositionData const& position) {
    std::string text = CoordinateName({position.coordinateType, position.userCoordinateNumber}) + ":";
    for (std::size_t axis = 0; axis < position.axes.size(); ++axis) {
        text += fmt::format("{}{}", axis == 0 ? "" : ",", position.axes.at(axis));
    }
    if (position.toolNumber != 0) {
        text += fmt::format(",tool={}", position.toolNumber);
    }
    if (IsCartesian(position.coordinateType)) {
        text += ",figure=" + FigureText(position.figure);
    }
    return text;
}

Json PositionJson(PositionData const& position) {
    CoordinateType const type = position.coordinateType;
    auto const& names = IsCartesian(type) ? CartesianAxisNames : PulseAxisNames;
    Json axes = Json::object();
    for (std::size_t axis = 0; axis < names.size(); ++axis) {
        axes[std::string(names.at(axis))] = position.axes.at(axis);
    }
    return Json{{"coordinate", CoordinateName({type, position.userCoordinateNumber})},
                {"tool", position.toolNumber},
                {"figure", IsCartesian(type) ? Json(FigureText(position.figure)) : Json()},
                {"units", Units(type)},
                {"axes", axes}};
}

} // namespace harvlink::words
