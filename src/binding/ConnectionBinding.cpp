#include "binding/Binding.h"

using namespace harvlink::InteropHelper;

ControllerHandle open_connection(char const* ipAddress, IStatusInfo* status, unsigned timeoutMilliseconds,
                                 unsigned retries) {
    harvlink::StatusInfo result;
    harvlink::QuorvanController* const controller = harvlink::OpenConnection(
        ConvertChar8ToString(ipAddress), result, timeoutMilliseconds, retries, true, harvlink::HeaderVersion);
    // Never released: a handle may be looked at after its connection was closed.
    auto* const handle = new ControllerCell{controller};
    *status = ToPlain(result);
    return handle;
}

void close_connection(ControllerHandle handle) {
    harvlink::CloseConnection(handle->controller);
}
