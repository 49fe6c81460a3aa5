#include "words/values/VariableText.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <type_traits>

#include <fmt/format.h>

#include "words/text/Encoding.h"
#include "words/values/PositionText.h"

namespace harvlink::words {

namespace {

constexpr std::size_t LongestString = 32;

std::size_t LetterCount(std::string_view text) {
    auto const end = std::find_if(text.begin(), text.end(),
                                  [](char letter) { return std::isalpha(static_cast<unsigned char>(letter)) == 0; });
    return static_cast<std::size_t>(end - text.begin());
}

std::uint16_t ParseIndex(std::string_view text) {
    return ParseNumber<std::uint16_t>(text, "variable number");
}

std::string ParseString(std::string_view text) {
    std::string bytes = ControllerBytes(text);
    if (bytes.size() > LongestString) {
        throw InputError(fmt::format("'{}' is longer than the {} bytes of a string variable", text, LongestString));
    }
    return bytes;
}

// The shortest decimal that is read back as the same float: 0.1 rather than 0.10000000149.
double ShortestDouble(float value) {
    return std::strtod(fmt::format("{}", value).c_str(), nullptr);
}

} // namespace

VariableKind ParseVariableKind(std::string_view text) {
    return ParseName(VariableKindNames, LowerCase(text) == "ex" ? "SP" : text, "kind of variable");
}

VariableAddress ParseVariable(std::string_view text) {
    std::size_t const letters = LetterCount(text);
    VariableKind const kind = ParseVariableKind(text.substr(0, letters));
    return {kind, ParseIndex(text.substr(letters))};
}

std::string VariableName(VariableAddress address) {
    return fmt::format("{}{}", NameOf(VariableKindNames, address.kind), address.index);
}

std::vector<VariableAddress> ParseVariableRange(std::string_view text) {
    std::size_t const dots = text.find("..");
    VariableAddress const first = ParseVariable(text.substr(0, dots));
    VariableAddress last = first;
    if (dots != std::string_view::npos) {
        std::string_view const end = text.substr(dots + 2);
        last = LetterCount(end) == 0 ? VariableAddress{first.kind, ParseIndex(end)} : ParseVariable(end);
    }
    if (last.kind != first.kind || last.index < first.index) {
        throw InputError(fmt::format("'{}' is not a range of variables such as B0..B9", text));
    }
    std::vector<VariableAddress> addresses;
    for (unsigned index = first.index; index <= last.index; ++index) {
        addresses.push_back({first.kind, static_cast<std::uint16_t>(index)});
    }
    return addresses;
}

VariableValue ParseVariableValue(VariableKind kind, std::string_view text) {
    switch (kind) {
    case VariableKind::Byte:
        return ParseNumber<std::uint8_t>(text, "byte");
    case VariableKind::Integer:
        return ParseNumber<std::int16_t>(text, "integer");
    case VariableKind::DoubleInteger:
        return ParseNumber<std::int32_t>(text, "double integer");
    case VariableKind::Real:
        return ParseNumber<float>(text, "real number");
    case VariableKind::String:
        return ParseString(text);
    case VariableKind::RobotPosition:
        return ParsePosition(text);
    case VariableKind::BasePosition:
    case VariableKind::StationPosition:
        break;
    }
    return ParsePosition(text, 1);
}

std::string FormatVariableValue(VariableValue const& value) {
    if (PositionData const* const position = std::get_if<PositionData>(&value)) {
        return FormatPosition(*position);
    }
    if (std::string const* const text = std::get_if<std::string>(&value)) {
        return ControllerText(*text);
    }
    Json const number = VariableValueJson(value);
    return number.is_number_float() ? fmt::format("{}", number.get<double>()) : number.dump();
}

Json VariableValueJson(VariableValue const& value) {
    return std::visit(
        [](auto const& held) -> Json {
            using Held = std::remove_cvref_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, PositionData>) {
                return PositionJson(held);
            } else if constexpr (std::is_same_v<Held, std::string>) {
                return ControllerText(held);
            } else if constexpr (std::is_same_v<Held, float>) {
                return ShortestDouble(held);
            } else {
                return held;
            }
        },
        value);
}

std::vector<VariableAssignment> ParseVariableAssignment(std::string_view text) {
    auto const [name, value] = SplitAssignment(text);
    std::vector<VariableAssignment> assignments;
    for (VariableAddress const address : ParseVariableRange(name)) {
        assignments.push_back({address, ParseVariableValue(address.kind, value)});
    }
    return assignments;
}

} // namespace harvlink::words
