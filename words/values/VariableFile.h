#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "words/values/VariableText.h"

namespace harvlink::words {

/// Reads variables from CSV with the columns "variable" and "value". Throws one InputError that names every wrong line.
std::vector<VariableAssignment> ParseVariableFile(std::string const& file, std::string_view text);

std::string FormatVariableFile(std::vector<VariableAssignment> const& variables);

} // namespace harvlink::words
