#pragma once

#include <string>
#include <string_view>

#include "simulator/jobs/JobProgram.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// A parsed line. The label or job that it refers to is still a name.
struct ParsedInstruction {
    Refusal refusal = Refusal::None;
    Instruction instruction;
    std::string_view name; ///< of the label or of the called job
};

/// Parses one line between NOP and END. The blanks at its ends have been removed.
ParsedInstruction ParseInstruction(std::string_view line);

} // namespace harvlink::simulator
