#include "words/text/Glob.h"

#include <fnmatch.h>

namespace harvlink::words {

bool MatchesGlob(std::string const& glob, std::string const& name) {
    return fnmatch(glob.c_str(), name.c_str(), 0) == 0;
}

} // namespace harvlink::words
