#pragma once

#include "cli/output/Words.h"
#include "harvlink/StatusInfo.h"
#include "harvlink/VariablesInterface.h"
#include "words/values/VariableText.h"

namespace harvlink::cli {

/// Reads a variable of any kind.
StatusInfo ReadVariable(VariablesInterface& variables, VariableAddress address, VariableValue& value);

/// Writes a variable; the value must be of the address's kind, as ParseVariableValue gives it.
StatusInfo WriteVariable(VariablesInterface& variables, VariableAssignment const& assignment);

} // namespace harvlink::cli
