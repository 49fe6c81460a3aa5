#pragma once

#include <string>
#include <string_view>

#include "simulator/jobs/JobProgram.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// What a line says, with the name that it refers to still as text.
struct ParsedInstruction {
    Refusal refusal = Refusal::None;
    Instruction instruction;
    std::string_view name; ///< of the label or of the job called
};

/// Parses one line between NOP and END, without blanks at its ends.
ParsedInstruction ParseInstruction(std::string_view line);

} // namespace harvlink::simulator
