#include "wire/Guarded.h"

#include <new>

#include "status/ExceptionStatus.h"
#include "wire/NetworkManager.h"

namespace harvlink {

StatusInfo StatusOrRethrow(NetworkManager& engine) {
    if (!engine.Refuses(Rule::NoExceptions)) {
        throw;
    }
    StatusInfo status = StatusOfException();
    if (status.StatusCode == static_cast<int>(ErrorStatusCodes::OutOfMemory)) {
        return status; // naming the rule would take memory
    }
    try {
        return NamingRule(status, Rule::NoExceptions);
    } catch (std::bad_alloc const&) {
        return status;
    }
}

} // namespace harvlink
