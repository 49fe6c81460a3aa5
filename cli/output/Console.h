#pragma once

#include <iosfwd>

namespace harvlink::cli {

/// The streams that the program reads and writes, so that a test can run the whole program in memory.
struct Console {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    bool inputIsTerminal = false;
    bool outputIsTerminal = false;
    bool errorIsTerminal = false;
};

} // namespace harvlink::cli
