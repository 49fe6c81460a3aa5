#pragma once

#include "harvlink/StatusInfo.h"

namespace harvlink {

/// The status of the exception that is being handled: OutOfMemory or SystemFailure. Only within a handler. It asks for no
/// memory that it could not do without.
StatusInfo StatusOfException() noexcept;

} // namespace harvlink
