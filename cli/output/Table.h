#pragma once

#include <string>
#include <string_view>

#include "cli/output/Output.h"

namespace harvlink::cli {

/// The text of a document for people, with an end on each line. `bold` prints header lines in bold.
std::string FormatTable(Json const& document, bool bold);

/// A key of a document as people read it: "servo_on" is "Servo on".
std::string Label(std::string_view key);

/// A value as one cell of a table, printable.
std::string CellText(Json const& value);

/// Whether the value is shown as a table with a header: a list of objects.
bool IsTable(Json const& value);

} // namespace harvlink::cli
