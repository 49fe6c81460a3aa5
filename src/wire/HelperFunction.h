#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "harvlink/ControlGroupId.h"
#include "harvlink/ControllerVersion.h"

/// @file
/// Small functions that several subsystems share.

namespace harvlink::HelperFunction {

/// Whether `a` sorts before `b`, byte by byte; of equal beginnings the shorter sorts first.
bool CompareStrings(std::string_view const& a, std::string_view const& b);

/// A percentage as the wire's hundredths of a per cent, truncated.
std::int32_t ConvertDoubleToInt32(double value);

/// Whether the generation understands the extended commands. Compares unsigned, on purpose: an unknown generation counts
/// as new here.
bool CheckUAPICompatible(ControllerVersion version);

std::string ToUpper(std::string text);

/// Appends the items of `text` to `out`. In spite of its name it splits at any run of white space; there are no empty items.
void SplitStringOnCLRF(std::vector<std::string>& out, std::string_view const& text, bool sort);

/// Appends the fields of `text` to `out`. An empty field between two separators is kept; one behind the last is not.
void SplitStringOnChar(std::vector<std::string>& out, std::string_view const& text, char separator, bool sort);

/// Whether the controller has the tool. The upper bound is inclusive, on purpose.
bool DoesToolFileExist(int toolFileCount, int toolNumber);

/// The group that "R1", "B2" or "S12" names. `valid` is false, and the result R1, if the first letter is none of these.
/// Throws std::invalid_argument or std::out_of_range if no number follows; the number is not checked against the groups.
ControlGroupId ControlGroupFromString(std::string const& text, bool& valid);

} // namespace harvlink::HelperFunction
