#pragma once

namespace harvlink::cli {

/// Before the first use of a socket or a name. The end of the process stops it.
void NeedSockets();

} // namespace harvlink::cli
