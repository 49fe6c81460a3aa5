#pragma once

#include <string>
#include <vector>

namespace harvlink::cli {

/// The files of this computer that fit a glob, sorted. A name without wildcards is returned as it is.
std::vector<std::string> LocalFiles(std::string const& glob);

} // namespace harvlink::cli
