#include <cstdlib>
#include <forward_list>
#include <mutex>

#include "binding/Binding.h"

using namespace harvlink::InteropHelper;

namespace harvlink::Binding {

ControllerHandle NewHandle(QuorvanController* controller, bool isStrict) {
    static std::mutex mutex;
    // Outlives every destructor of the program.
    // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): of this function alone, under its lock
    static auto& cells = *new std::forward_list<ControllerCell>;
    std::lock_guard const lock(mutex);
    cells.push_front({controller, isStrict});
    return &cells.front();
}

} // namespace harvlink::Binding

inline namespace harvlink_c {

ControllerHandle open_connection(char const* ipAddress, IStatusInfo* status, unsigned timeoutMilliseconds,
                                 unsigned retries) {
    harvlink::StatusInfo result;
    harvlink::QuorvanController* const controller = harvlink::OpenConnection(
        ConvertChar8ToString(ipAddress), result, timeoutMilliseconds, retries, true, harvlink::HeaderVersion);
    auto* const handle = harvlink::Binding::NewHandle(controller, false);
    *status = ToPlain(result);
    return handle;
}

void close_connection(ControllerHandle handle) {
    harvlink::CloseConnection(handle->controller);
}

void harvlink_free(void* text) {
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): of the plain C interface
}

} // namespace harvlink_c
