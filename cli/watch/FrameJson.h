#pragma once

#include "cli/output/Output.h"
#include "cli/watch/Frame.h"

namespace harvlink::cli::watch {

/// A frame for programs. What could not be read is null, and "problems" tells why; nothing is older than the frame.
Json FrameJson(Frame const& frame);

} // namespace harvlink::cli::watch
