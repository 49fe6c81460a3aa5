#pragma once

namespace harvlink::gateway {

/// What the system says of this process.
struct ProcessFigures {
    double cpuSeconds = 0.0;
    double residentBytes = 0.0;
    double openDescriptors = 0.0;
    double startTime = 0.0; ///< seconds since 1970
};

ProcessFigures ReadProcessFigures();

} // namespace harvlink::gateway
