#include "status/ExceptionStatus.h"

#include <new>

namespace harvlink {

StatusInfo StatusOfException() noexcept {
    try {
        try {
            throw;
        } catch (std::bad_alloc const&) {
            return StatusInformation(ErrorStatusCodes::OutOfMemory); // its text fits into the string itself
        } catch (...) {
            return StatusInformation(ErrorStatusCodes::SystemFailure);
        }
    } catch (...) {
        return StatusInformation(ErrorStatusCodes::OutOfMemory);
    }
}

} // namespace harvlink
