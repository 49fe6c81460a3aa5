#include <exception>
#include <memory>

#include "connection/QuorvanControllerImplementation.h"
#include "harvlink/QuorvanController.h"

namespace harvlink {

QuorvanController* OpenConnection(std::string const& ipAddress, StatusInfo& status, unsigned timeoutMilliseconds,
                                  unsigned retries, bool logging, std::string_view headerVersion) {
    if (headerVersion != HeaderVersion) {
        status = StatusInformation(ErrorStatusCodes::VersionMismatch,
                                   "The header version and the library version do not match.");
        return nullptr;
    }
    try {
        auto controller =
            std::make_unique<QuorvanControllerImplementation>(ipAddress, timeoutMilliseconds, retries, logging, status);
        return status.StatusCode == 0 ? controller.release() : nullptr;
    } catch (std::exception const&) {
        status = StatusInformation(ErrorStatusCodes::SocketOpenError);
        return nullptr;
    }
}

void CloseConnection(QuorvanController* controller) {
    delete controller;
}

} // namespace harvlink
