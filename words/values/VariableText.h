#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "harvlink/PositionData.h"
#include "words/text/Json.h"
#include "words/text/Text.h"

namespace harvlink::words {

/// In the order of the alternatives of VariableValue; the three kinds of positions share the last.
enum class VariableKind { Byte, Integer, DoubleInteger, Real, String, RobotPosition, BasePosition, StationPosition };

inline constexpr std::array<Named<VariableKind>, 8> VariableKindNames{{{"B", VariableKind::Byte},
                                                                       {"I", VariableKind::Integer},
                                                                       {"D", VariableKind::DoubleInteger},
                                                                       {"R", VariableKind::Real},
                                                                       {"S", VariableKind::String},
                                                                       {"P", VariableKind::RobotPosition},
                                                                       {"BP", VariableKind::BasePosition},
                                                                       {"SP", VariableKind::StationPosition}}};

inline constexpr char const* VariableHelp =
    "Variables are named by kind and number, such as B5; a range is written B0..B9. Kinds:\n"
    "B byte, I integer, D double integer, R real, S string, P robot position,\n"
    "BP base position, SP (or EX) station position.";

using VariableValue = std::variant<std::uint8_t, std::int16_t, std::int32_t, float, std::string, PositionData>;

struct VariableAddress {
    VariableKind kind = VariableKind::Byte;
    std::uint16_t index = 0;

    bool operator==(VariableAddress const&) const = default;
};

struct VariableAssignment {
    VariableAddress address;
    VariableValue value;
};

/// In upper or lower case. "EX", the word of the controller's own programs, is the same as "SP".
VariableKind ParseVariableKind(std::string_view text);

VariableAddress ParseVariable(std::string_view text);
std::string VariableName(VariableAddress address);

/// All variables of a name or a range such as "B0..B9" or "B0..9".
std::vector<VariableAddress> ParseVariableRange(std::string_view text);

VariableValue ParseVariableValue(VariableKind kind, std::string_view text);
std::string FormatVariableValue(VariableValue const& value);
Json VariableValueJson(VariableValue const& value);

/// "B5=12", or a range on the left side, of which every variable gets the value.
std::vector<VariableAssignment> ParseVariableAssignment(std::string_view text);

} // namespace harvlink::words
