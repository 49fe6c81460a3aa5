#pragma once

#include <string>
#include <vector>

#include "harvlink/ControllerStateInterface.h"

namespace harvlink::cli::snapshot {

/// Consecutive parameters of one family.
struct ParameterRange {
    std::string family; ///< its name, such as "S2C"
    SystemParameterType type{};
    int first = 0;
    int last = 0;
};

/// "RS22", or a range such as "RS0..RS299" or "RS0..299". Throws InputError.
ParameterRange ParseParameterRange(std::string const& text);

/// The first thousand numbers of every family.
std::vector<ParameterRange> AllParameterRanges();

} // namespace harvlink::cli::snapshot
