#pragma once

#include <string>

#include "cli/output/Output.h"

namespace harvlink::cli {

/// The text of a document for people, each line ended. `bold` sets header lines off.
std::string FormatTable(Json const& document, bool bold);

} // namespace harvlink::cli
