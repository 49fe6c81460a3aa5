#pragma once

#include "cli/output/Words.h"
#include "cli/program/Writes.h"
#include "harvlink/StatusInfo.h"
#include "harvlink/VariablesInterface.h"
#include "words/values/VariableText.h"

namespace harvlink::cli {

/// Reads a variable of any kind.
StatusInfo ReadVariable(VariablesInterface& variables, VariableAddress address, VariableValue& value);

/// Writes a variable. The value must have the kind of the address, as ParseVariableValue returns it.
StatusInfo WriteVariable(VariablesInterface& variables, VariableAssignment const& assignment);

/// Writes it later. `variables` has to live until then.
PendingWrite PendingVariable(VariablesInterface& variables, VariableAssignment const& assignment, AfterLoss afterLoss);

} // namespace harvlink::cli
