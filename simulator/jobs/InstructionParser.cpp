#include "simulator/jobs/InstructionParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

#include "simulator/jobs/JobParser.h"
#include "simulator/model/JobName.h"

namespace harvlink::simulator {

namespace {

constexpr std::size_t MaxWords = 5;
constexpr std::size_t MaxLabelLength = 8;
constexpr std::size_t MaxIndexDigits = 5;
constexpr double MinTimer = 0.01;
constexpr double MaxTimer = 655.35;

/// The words that follow the name of the instruction.
using Words = std::span<std::string_view const>;

struct WordList {
    std::array<std::string_view, MaxWords> words;
    std::size_t count = 0; ///< MaxWords + 1 if there are more
};

WordList Split(std::string_view line) {
    WordList result;
    constexpr std::string_view Blanks = " \t";
    for (auto at = line.find_first_not_of(Blanks); at != std::string_view::npos;) {
        auto const end = std::min(line.find_first_of(Blanks, at), line.size());
        if (result.count == MaxWords) {
            ++result.count;
            break;
        }
        result.words[result.count++] = line.substr(at, end - at);
        at = line.find_first_not_of(Blanks, end);
    }
    return result;
}

template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
    Number number{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    bool const isWhole = error == std::errc{} && end == text.data() + text.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

std::optional<double> ParseDecimal(std::string_view text) {
    auto const number = ParseNumber<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<double> ParseSwitch(std::string_view text) {
    if (text == "ON") {
        return 1.0;
    }
    return text == "OFF" ? std::optional(0.0) : std::nullopt;
}

std::optional<Operand> ParseVariable(std::string_view text) {
    constexpr std::string_view Letters = "BIDR";
    constexpr std::array Kinds{OperandKind::Byte, OperandKind::Integer, OperandKind::DoubleInt, OperandKind::Real};
    auto const kind = text.empty() ? std::string_view::npos : Letters.find(text.front());
    if (kind == std::string_view::npos || text.size() > MaxIndexDigits + 1) {
        return std::nullopt;
    }
    auto const index = ParseNumber<std::uint32_t>(text.substr(1));
    return index ? std::optional(Operand{Kinds[kind], *index}) : std::nullopt;
}

std::optional<Operand> ParseSignal(std::string_view text) {
    constexpr std::size_t PrefixLength = 4;
    auto const prefix = text.substr(0, PrefixLength);
    bool const isInput = prefix == "IN#(";
    if ((!isInput && prefix != "OT#(") || !text.ends_with(')')) {
        return std::nullopt;
    }
    auto const digits = text.substr(PrefixLength, text.size() - PrefixLength - 1);
    auto const number = digits.size() > MaxIndexDigits ? std::nullopt : ParseNumber<std::uint32_t>(digits);
    if (!number || *number == 0) {
        return std::nullopt;
    }
    return Operand{isInput ? OperandKind::Input : OperandKind::Output, *number};
}

bool IsLabel(std::string_view text) {
    return text.size() > 1 && text.size() <= MaxLabelLength + 1 && text.front() == '*' &&
           std::ranges::all_of(text.substr(1), [](char character) {
               return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
           });
}

/// Fills operand, comparison and value. `refusal` is `None` on success.
Refusal ParseCondition(std::string_view text, Instruction& instruction) {
    auto const at = text.find_first_of("=<>");
    if (at == std::string_view::npos) {
        return JobRefusal::SyntaxOfInstruction;
    }
    auto const end = std::min(text.find_first_not_of("=<>", at), text.size());
    constexpr std::array<std::string_view, 6> Signs{"=", "<>", "<", "<=", ">", ">="}; // in the order of Comparison
    auto const sign = std::ranges::find(Signs, text.substr(at, end - at));
    auto const left = text.substr(0, at);
    auto const variable = ParseVariable(left);
    auto const operand = variable ? variable : ParseSignal(left);
    if (sign == Signs.end() || !operand) {
        return JobRefusal::SyntaxOfInstruction;
    }
    auto const value = variable ? ParseDecimal(text.substr(end)) : ParseSwitch(text.substr(end));
    instruction.comparison = static_cast<Comparison>(sign - Signs.begin());
    if (!value || (!variable && instruction.comparison != Comparison::Equal)) {
        return JobRefusal::SyntaxOfInstruction;
    }
    instruction.operand = *operand;
    instruction.value = *value;
    return Refusal::None;
}

ParsedInstruction Wrong(Refusal refusal) {
    return {.refusal = refusal, .instruction = {}, .name = {}};
}

ParsedInstruction ParsePlain(Opcode opcode) {
    ParsedInstruction parsed;
    parsed.instruction.opcode = opcode;
    return parsed;
}

ParsedInstruction ParseCall(Words words) {
    constexpr std::string_view Prefix = "JOB:";
    auto parsed = ParsePlain(Opcode::Call);
    if (words.size() != 1) {
        return Wrong(JobRefusal::NumberOfData);
    }
    if (!words[0].starts_with(Prefix) || !IsJobName(words[0].substr(Prefix.size()))) {
        return Wrong(JobRefusal::SyntaxOfInstruction);
    }
    parsed.name = words[0].substr(Prefix.size());
    return parsed;
}

ParsedInstruction ParseJump(Words words) {
    auto parsed = ParsePlain(Opcode::Jump);
    if (words.size() != 1 && words.size() != 3) {
        return Wrong(JobRefusal::NumberOfData);
    }
    if (!IsLabel(words[0]) || (words.size() == 3 && words[1] != "IF")) {
        return Wrong(JobRefusal::SyntaxOfInstruction);
    }
    parsed.name = words[0].substr(1);
    parsed.refusal = words.size() == 3 ? ParseCondition(words[2], parsed.instruction) : Refusal::None;
    return parsed;
}

ParsedInstruction ParseTimer(Words words) {
    auto parsed = ParsePlain(Opcode::Timer);
    if (words.size() != 1) {
        return Wrong(JobRefusal::NumberOfData);
    }
    auto const seconds = words[0].starts_with("T=") ? ParseDecimal(words[0].substr(2)) : std::nullopt;
    if (!seconds) {
        return Wrong(JobRefusal::SyntaxOfInstruction);
    }
    if (*seconds < MinTimer || *seconds > MaxTimer) {
        return Wrong(Refusal::DataOverRange);
    }
    parsed.instruction.value = *seconds;
    return parsed;
}

ParsedInstruction ParseWait(Words words) {
    auto parsed = ParsePlain(Opcode::Wait);
    if (words.size() != 1) {
        return Wrong(JobRefusal::NumberOfData);
    }
    parsed.refusal = ParseCondition(words[0], parsed.instruction);
    return parsed;
}

ParsedInstruction ParseDigitalOut(Words words) {
    auto parsed = ParsePlain(Opcode::DigitalOut);
    if (words.size() != 2) {
        return Wrong(JobRefusal::NumberOfData);
    }
    auto const signal = ParseSignal(words[0]);
    auto const value = ParseSwitch(words[1]);
    if (!signal || signal->kind != OperandKind::Output || !value) {
        return Wrong(JobRefusal::SyntaxOfInstruction);
    }
    parsed.instruction.operand = *signal;
    parsed.instruction.value = *value;
    return parsed;
}

template <typename Number>
bool Fits(double value) {
    return value >= static_cast<double>(std::numeric_limits<Number>::lowest()) &&
           value <= static_cast<double>(std::numeric_limits<Number>::max());
}

bool IsInRange(OperandKind kind, double value) {
    switch (kind) {
    case OperandKind::Byte:
        return Fits<std::uint8_t>(value);
    case OperandKind::Integer:
        return Fits<std::int16_t>(value);
    case OperandKind::DoubleInt:
        return Fits<std::int32_t>(value);
    default:
        return Fits<float>(value);
    }
}

ParsedInstruction ParseSet(Words words) {
    auto parsed = ParsePlain(Opcode::Set);
    if (words.size() != 2) {
        return Wrong(JobRefusal::NumberOfData);
    }
    auto const variable = ParseVariable(words[0]);
    auto const value = ParseDecimal(words[1]);
    if (!variable || !value || (variable->kind != OperandKind::Real && std::trunc(*value) != *value)) {
        return Wrong(JobRefusal::SyntaxOfInstruction);
    }
    if (!IsInRange(variable->kind, *value)) {
        return Wrong(Refusal::DataOverRange);
    }
    parsed.instruction.operand = *variable;
    parsed.instruction.value = *value;
    return parsed;
}

ParsedInstruction ParseCount(Opcode opcode, Words words) {
    auto parsed = ParsePlain(opcode);
    if (words.size() != 1) {
        return Wrong(JobRefusal::NumberOfData);
    }
    auto const variable = ParseVariable(words[0]);
    parsed.refusal = variable ? Refusal::None : JobRefusal::SyntaxOfInstruction;
    parsed.instruction.operand = variable.value_or(Operand{});
    return parsed;
}

ParsedInstruction ParseIncrement(Words words) {
    return ParseCount(Opcode::Increment, words);
}

ParsedInstruction ParseDecrement(Words words) {
    return ParseCount(Opcode::Decrement, words);
}

struct InstructionName {
    std::string_view name;
    ParsedInstruction (*parse)(Words words);
};

constexpr std::array<InstructionName, 8> Instructions{{{"CALL", ParseCall},
                                                       {"DEC", ParseDecrement},
                                                       {"DOUT", ParseDigitalOut},
                                                       {"INC", ParseIncrement},
                                                       {"JUMP", ParseJump},
                                                       {"SET", ParseSet},
                                                       {"TIMER", ParseTimer},
                                                       {"WAIT", ParseWait}}};

ParsedInstruction ParseLabel(std::string_view line) {
    auto parsed = ParsePlain(Opcode::Label);
    parsed.name = line.substr(1);
    parsed.refusal = IsLabel(line) ? Refusal::None : JobRefusal::SyntaxOfInstruction;
    return parsed;
}

} // namespace

ParsedInstruction ParseInstruction(std::string_view line) {
    if (line.starts_with('\'')) {
        return ParsePlain(Opcode::Comment);
    }
    if (line.starts_with('*')) {
        return ParseLabel(line);
    }
    auto const split = Split(line);
    if (split.count == 0) {
        return Wrong(JobRefusal::SyntaxOfInstruction);
    }
    auto const known = std::ranges::find(Instructions, split.words[0], &InstructionName::name);
    if (known == Instructions.end()) {
        return Wrong(JobRefusal::UnknownInstruction);
    }
    if (split.count > MaxWords) {
        return Wrong(JobRefusal::NumberOfData);
    }
    return known->parse(Words(split.words).subspan(1, split.count - 1));
}

} // namespace harvlink::simulator
