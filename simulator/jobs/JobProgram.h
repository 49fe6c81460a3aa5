#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace harvlink::simulator {

enum class Opcode : std::uint8_t {
    Nop,
    End,
    Comment,
    Label,
    Call,
    Jump,
    Timer,
    Wait,
    DigitalOut,
    Set,
    Increment,
    Decrement
};

enum class OperandKind : std::uint8_t { None, Byte, Integer, DoubleInt, Real, Input, Output };

enum class Comparison : std::uint8_t { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

/// A variable by its index, or a general signal by its number from 1.
struct Operand {
    OperandKind kind = OperandKind::None;
    std::uint32_t number = 0;

    bool operator==(Operand const&) const = default;
};

/// One line of a job. The opcode decides which members are used:
///
/// | opcode | members |
/// |---|---|
/// | Call | `target`: place in JobProgram::callees |
/// | Jump | `target`: line of the label; if `operand` is one, only when `operand` `comparison` `value` holds |
/// | Timer | `value`: seconds |
/// | Wait | `operand` `comparison` `value` |
/// | DigitalOut, Set | `operand`, `value`: what it becomes |
/// | Increment, Decrement | `operand` |
struct Instruction {
    Opcode opcode = Opcode::Nop;
    Comparison comparison = Comparison::Equal;
    Operand operand;
    std::uint32_t target = 0;
    std::uint32_t step =
        0; ///< how many instructions stand up to here, this one included; NOP, END, labels, comments don't count
    double value = 0.0;
};

/// A job that can be run. Line 0 is NOP, the last line is END.
struct JobProgram {
    std::string name;
    std::vector<Instruction> lines;
    std::vector<std::string> callees;
};

} // namespace harvlink::simulator
