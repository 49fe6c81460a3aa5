#pragma once

#include <concepts>

#include "harvlink/StatusInfo.h"

/// @file
/// The border that no exception of an operation crosses where Rule::NoExceptions is enforced. An operation that calls
/// another one of its interface, or one that a user may have replaced, has its own all the same.

namespace harvlink {

class NetworkManager;

/// The status of the exception that is being handled, which counts. Where exceptions may pass, this one goes on instead.
StatusInfo StatusOrRethrow(NetworkManager& engine);

/// An operation that keeps its output as it is when it fails, or has none.
template <std::invocable Operation>
StatusInfo Guarded(NetworkManager& engine, Operation const& operation) {
    try {
        return operation();
    } catch (...) {
        return StatusOrRethrow(engine);
    }
}

/// An operation that clears its output when it fails. Clearing must not take memory.
template <typename Output, std::invocable Operation>
StatusInfo Guarded(NetworkManager& engine, Output& output, Operation const& operation) {
    try {
        return operation();
    } catch (...) {
        StatusInfo status = StatusOrRethrow(engine);
        output = Output{};
        return status;
    }
}

} // namespace harvlink
