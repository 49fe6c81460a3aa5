#include "binding/Binding.h"

#include <cstdlib>
#include <exception>
#include <new>

namespace harvlink::Binding {
namespace {

StatusInfo OutOfMemory() {
    return StatusInformation(ErrorStatusCodes::OutOfMemory); // takes no memory itself
}

} // namespace

StatusInfo StatusOrRethrow(ControllerHandle handle) {
    if (!handle->isStrict) {
        throw;
    }
    try {
        try {
            throw;
        } catch (std::exception const& exception) {
            bool const isMemory = dynamic_cast<std::bad_alloc const*>(&exception) != nullptr;
            return isMemory ? OutOfMemory() : StatusInformation(ErrorStatusCodes::SystemFailure, exception.what());
        }
    } catch (...) {
        return OutOfMemory();
    }
}

IStatusInfo ReturnedTexts::Checked(IStatusInfo status) const {
    if (isMissing && handle->isStrict && status.StatusCode == 0) {
        std::free(status.Message);
        status = InteropHelper::ToPlain(OutOfMemory());
    }
    return status;
}

} // namespace harvlink::Binding
