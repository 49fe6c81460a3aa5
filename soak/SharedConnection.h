#pragma once

#include <mutex>
#include <string>

#include "harvlink/harvlink.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// A connection that several workers use at the same time.
struct SharedConnection {
    std::string address;
    bool isExtended = false; ///< the generation has motion, conversion and job stack
    Connection robot;
    FaultJournal* journal = nullptr;
    std::mutex transfers; ///< two transfers at a time would disturb each other
};

/// Opens a connection and checks that it has read everything about its controller. A reply that is damaged during the
/// opening can leave it with other tools, groups or motion slots, or with a wrong first index of variables, so there must be
/// none. Empty on failure.
Connection OpenComplete(std::string const& address, bool isExtended, Options const& options, FaultJournal& journal,
                        Results& results);

/// The same, repeated until it succeeds. Throws std::runtime_error if it never does.
Connection OpenWithRetries(SharedConnection const& connection, Options const& options, Results& results);

} // namespace harvlink::soak
