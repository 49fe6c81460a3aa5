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
    bool const isMemory = status.StatusCode == static_cast<int>(ErrorStatusCodes::OutOfMemory);
    try {
        StatusInfo named = isMemory ? status : NamingRule(status, Rule::NoExceptions); // a name would take memory
        engine.NoteLossOfStartUp(named);
        return named;
    } catch (std::bad_alloc const&) {
        return status;
    }
}

} // namespace harvlink
