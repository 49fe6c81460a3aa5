#pragma once

#include "cli/watch/Sample.h"

namespace harvlink::cli::watch {

/// What a Feed reads from.
class SampleSource {
public:
    SampleSource() = default;
    SampleSource(SampleSource const&) = delete;
    SampleSource& operator=(SampleSource const&) = delete;
    virtual ~SampleSource() = default;

    /// Reads everything once more. If the controller does not answer, the sample keeps the last values and says so.
    virtual Sample const& Read() = 0;

    /// Ends the reading after the running exchange. From any thread.
    virtual void Stop() = 0;
};

} // namespace harvlink::cli::watch
