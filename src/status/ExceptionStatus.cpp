#include "status/ExceptionStatus.h"

#include <exception>
#include <new>

namespace harvlink {

StatusInfo StatusOfException() noexcept {
    try {
        try {
            throw;
        } catch (std::bad_alloc const&) {
            return StatusInformation(ErrorStatusCodes::OutOfMemory); // its text fits into the string itself
        } catch (std::exception const& exception) {
            StatusInfo status = StatusInformation(ErrorStatusCodes::SystemFailure);
            status.Message.append(" (").append(exception.what()).append(")");
            return status;
        } catch (...) {
            return StatusInformation(ErrorStatusCodes::SystemFailure);
        }
    } catch (...) {
        return StatusInformation(ErrorStatusCodes::OutOfMemory);
    }
}

} // namespace harvlink
