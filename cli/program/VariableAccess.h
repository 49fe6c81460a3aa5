#pragma once

#include "cli/output/Words.h"
#include "harvlink/StatusInfo.h"
#include "harvlink/VariablesInterface.h"
#include "words/values/VariableText.h"

namespace harvlink::cli {

/// Reads a variable of any kind.
StatusInfo ReadVariable(VariablesInterface& variables, VariableAddress address, VariableValue& value);

/// Writes a variable. The value must have the kind of the address, as ParseVariableValue returns it.
StatusInfo WriteVariable(VariablesInterface& variables, VariableAssignment const& assignment);

} // namespace harvlink::cli
