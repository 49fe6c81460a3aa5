#pragma once

#include <mutex>
#include <string>

#include "harvlink/harvlink.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// A connection that several workers use at the same time.
struct SharedConnection {
    std::string address;
    bool isExtended = false; ///< of a generation that has motion, conversion and job stack
    Connection robot;
    std::mutex transfers; ///< two files at a time would mix up on the controller
};

/// Opens a connection and makes sure that it has learnt all of its controller: a reply that is lost or cut while it opens
/// leaves it with fewer tools, groups or motion slots, or counting variables from the wrong end. Empty if that failed.
Connection OpenComplete(std::string const& address, bool isExtended, Options const& options, Results& results);

/// The same, until it succeeds. Throws std::runtime_error if it never does.
Connection OpenWithRetries(std::string const& address, bool isExtended, Options const& options, Results& results);

} // namespace harvlink::soak
