#pragma once

namespace harvlink::words {}

namespace harvlink::cli {

// The text forms are this program's own vocabulary; they are used without a prefix.
using namespace words; // NOLINT(google-build-using-namespace): see above

} // namespace harvlink::cli
