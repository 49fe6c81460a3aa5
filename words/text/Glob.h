#pragma once

#include <string>

namespace harvlink::words {

/// Whether a name fits a glob of "*", "?" and "[a-z]", as a shell has them. Letters count as they are.
bool MatchesGlob(std::string const& glob, std::string const& name);

} // namespace harvlink::words
