#include "status/GetStatusInfo.h"

namespace harvlink::HelperFunction {

void GetStatusInfo(StatusInfo& status, StatusTable<std::int32_t> const& table, unsigned offset) {
    if (status.StatusCode == 0) {
        return;
    }
    if (auto const text = table.Find(status.StatusCode)) {
        status.Message = *text;
        status.StatusCode = static_cast<std::int32_t>(static_cast<std::uint32_t>(status.StatusCode) - offset);
    }
}

} // namespace harvlink::HelperFunction
