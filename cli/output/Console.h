#pragma once

#include <iosfwd>

namespace harvlink::cli {

/// Where the program reads and writes, so that a test can run it whole in memory.
struct Console {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    bool inputIsTerminal = false;
    bool outputIsTerminal = false;
    bool errorIsTerminal = false;
};

} // namespace harvlink::cli
