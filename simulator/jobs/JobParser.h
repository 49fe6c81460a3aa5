#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/jobs/JobProgram.h"
#include "simulator/protocol/Refusal.h"

/// @file
/// The language of job files.
///
///     /JOB
///     //NAME PICK
///     //INST
///     NOP
///     'a comment
///     SET B000 5
///     *AGAIN
///     DOUT OT#(3) ON
///     TIMER T=1.50
///     CALL JOB:OPEN
///     DEC B000
///     JUMP *AGAIN IF B000>0
///     END
///
/// Every line, the last one too, ends in CR LF; blanks at its ends are ignored, and so are empty lines. Lines before
/// NOP start with a slash. One of them is "//NAME " and the name of the job, which is the file's name without its
/// extension; the content of the others is ignored. Lines are counted from NOP, which is line 0, to END. Everything is
/// in upper case.
///
/// | instruction | what it does |
/// |---|---|
/// | `NOP`, `END` | begin and end the job; END of a called job returns to its caller |
/// | `CALL JOB:NAME` | calls another job of the controller |
/// | `*LABEL` | a label: up to 8 letters and digits |
/// | `JUMP *LABEL` | jumps to a label; with `IF` and a condition only if the condition holds |
/// | `TIMER T=1.50` | waits, 0.01 to 655.35 s |
/// | `WAIT IN#(1)=ON` | waits until a condition holds |
/// | `DOUT OT#(1) ON` | switches a general output ON or OFF |
/// | `SET B000 5` | sets a variable to a value within its range |
/// | `INC I001`, `DEC D000` | adds or subtracts 1; a number that leaves its range wraps around |
///
/// Variables are `B`, `I`, `D` and `R` with an index of up to five digits. A condition is a variable, one of = <> < <=
/// > >= and a number, or `IN#(n)` or `OT#(n)`, = and ON or OFF, without blanks.

namespace harvlink::simulator {

namespace JobRefusal {

inline constexpr Refusal OutOfMemory{0x4010};
inline constexpr Refusal UnknownInstruction{0x4230};
inline constexpr Refusal SyntaxOfInstruction{0x5110};
inline constexpr Refusal NoNopOrEnd{0x5130};
inline constexpr Refusal NumberOfData{0x5180};
inline constexpr Refusal SyntaxOfHeader{0x5310};
inline constexpr Refusal NameRecord{0x5390};

} // namespace JobRefusal

inline constexpr std::size_t MaxJobLines = 65536;

struct JobParseResult {
    Refusal refusal = Refusal::None; ///< unless `None`, the program is not valid
    std::uint32_t fileLine = 0; ///< the line with the error, from 1; 0 if the error concerns the whole file
    JobProgram program;
};

JobParseResult ParseJob(std::string_view text);

/// Checks that a text is a valid job with the name `name`, which is the file's name without its extension.
Refusal CheckJobText(std::string_view name, std::string_view text);

} // namespace harvlink::simulator
