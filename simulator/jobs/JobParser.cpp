#include "simulator/jobs/JobParser.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "simulator/base/Text.h"
#include "simulator/jobs/InstructionParser.h"
#include "simulator/model/JobName.h"

namespace harvlink::simulator {

namespace {

constexpr std::string_view LineEnd = "\r\n";
constexpr std::string_view NamePrefix = "//NAME ";

/// Parses a job line by line.
class Parser {
public:
    explicit Parser(std::string_view text) : rest_(text) {}

    JobParseResult Run() {
        Refusal refusal = Refusal::None;
        while (refusal == Refusal::None && NextLine()) {
            refusal = line_.empty() ? Refusal::None : TakeLine();
        }
        if (refusal == Refusal::None) {
            refusal = Finish();
        }
        result_.refusal = refusal;
        return std::move(result_);
    }

private:
    enum class Section { Header, Instructions, Closed };

    /// Text without a line end is not a line.
    bool NextLine() {
        auto const end = rest_.find(LineEnd);
        if (end == std::string_view::npos) {
            return false;
        }
        line_ = TrimBlanks(rest_.substr(0, end));
        rest_.remove_prefix(end + LineEnd.size());
        ++result_.fileLine;
        return true;
    }

    Refusal TakeLine() {
        switch (section_) {
        case Section::Header:
            return TakeHeader();
        case Section::Instructions:
            return TakeInstruction();
        default:
            return JobRefusal::SyntaxOfInstruction;
        }
    }

    Refusal TakeHeader() {
        if (line_ == "NOP") {
            section_ = Section::Instructions;
            result_.program.lines.emplace_back();
            return Refusal::None;
        }
        if (!line_.starts_with('/')) {
            return JobRefusal::NoNopOrEnd;
        }
        return line_.starts_with(NamePrefix) ? TakeName(TrimBlanks(line_.substr(NamePrefix.size()))) : Refusal::None;
    }

    Refusal TakeName(std::string_view name) {
        if (!result_.program.name.empty() || !IsJobName(name)) {
            return JobRefusal::SyntaxOfHeader;
        }
        result_.program.name = name;
        return Refusal::None;
    }

    Refusal TakeInstruction() {
        auto& lines = result_.program.lines;
        if (lines.size() == MaxJobLines) {
            return JobRefusal::OutOfMemory;
        }
        if (line_ == "END") {
            section_ = Section::Closed;
            Instruction end;
            end.opcode = Opcode::End;
            Append(end);
            return Refusal::None;
        }
        auto parsed = line_ == "NOP" ? ParsedInstruction() : ParseInstruction(line_);
        if (parsed.refusal != Refusal::None) {
            return parsed.refusal;
        }
        return Register(parsed);
    }

    /// Records the label that a line defines, or the name that it refers to.
    Refusal Register(ParsedInstruction& parsed) {
        auto const line = static_cast<std::uint32_t>(result_.program.lines.size());
        auto& instruction = parsed.instruction;
        if (instruction.opcode == Opcode::Label && !labels_.emplace(parsed.name, line).second) {
            return JobRefusal::SyntaxOfInstruction;
        }
        if (instruction.opcode == Opcode::Jump) {
            jumps_.push_back({line, result_.fileLine, parsed.name});
        }
        if (instruction.opcode == Opcode::Call) {
            instruction.target = CalleeIndex(parsed.name);
        }
        Append(instruction);
        return Refusal::None;
    }

    std::uint32_t CalleeIndex(std::string_view name) {
        auto& callees = result_.program.callees;
        auto const [known, isNew] = calleeIndexes_.emplace(name, static_cast<std::uint32_t>(callees.size()));
        if (isNew) {
            callees.emplace_back(name);
        }
        return known->second;
    }

    void Append(Instruction instruction) {
        auto& lines = result_.program.lines;
        bool const isStep = instruction.opcode > Opcode::Label;
        instruction.step = lines.back().step + (isStep ? 1 : 0);
        lines.push_back(instruction);
    }

    Refusal Finish() {
        if (section_ != Section::Closed || !TrimBlanks(rest_).empty()) {
            result_.fileLine = 0;
            return JobRefusal::NoNopOrEnd;
        }
        if (result_.program.name.empty()) {
            result_.fileLine = 0;
            return JobRefusal::SyntaxOfHeader;
        }
        for (auto const& jump : jumps_) {
            auto const label = labels_.find(jump.label);
            if (label == labels_.end()) {
                result_.fileLine = jump.fileLine;
                return JobRefusal::SyntaxOfInstruction;
            }
            result_.program.lines[jump.line].target = label->second;
        }
        result_.fileLine = 0;
        return Refusal::None;
    }

    struct JumpLine {
        std::uint32_t line;
        std::uint32_t fileLine;
        std::string_view label;
    };

    std::string_view rest_;
    std::string_view line_;
    Section section_ = Section::Header;
    std::unordered_map<std::string_view, std::uint32_t> labels_;
    std::unordered_map<std::string_view, std::uint32_t> calleeIndexes_;
    std::vector<JumpLine> jumps_;
    JobParseResult result_;
};

} // namespace

JobParseResult ParseJob(std::string_view text) {
    return Parser(text).Run();
}

Refusal CheckJobText(std::string_view name, std::string_view text) {
    auto const result = ParseJob(text);
    if (result.refusal != Refusal::None) {
        return result.refusal;
    }
    return result.program.name == name ? Refusal::None : JobRefusal::NameRecord;
}

} // namespace harvlink::simulator
