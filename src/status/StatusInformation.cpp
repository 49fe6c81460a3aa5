#include <ostream>

#include "harvlink/StatusInfo.h"
#include "status/AddedStatusTable.h"
#include "status/MainStatusTable.h"

namespace harvlink {
namespace {

std::string_view TextOf(int code) {
    if (code == 0) {
        return "OK";
    }
    constexpr std::string_view unknown = "Could not find an error description with that code.";
    return MainStatusTable.Find(code).value_or(AddedStatusTable.Find(code).value_or(unknown));
}

} // namespace

StatusInformation::StatusInformation(int code) : StatusInformation(code, TextOf(code)) {}

StatusInformation::StatusInformation(ErrorStatusCodes code) : StatusInformation(static_cast<int>(code)) {}

StatusInformation::StatusInformation(ErrorStatusCodes code, std::string_view message)
    : StatusInformation(static_cast<int>(code), message) {}

StatusInformation::StatusInformation(int code, std::string_view message) : StatusInfo{code, std::string(message)} {}

StatusInformation& StatusInformation::operator=(int code) {
    StatusCode = code;
    Message = TextOf(code);
    return *this;
}

void StatusInformation::GetError(std::string& message, int code) const {
    message = TextOf(code);
}

std::ostream& operator<<(std::ostream& stream, StatusInfo const& status) {
    // In plain decimal, whatever format the program has set on its stream: the lines of the log are made here too.
    return stream << "Code (" << std::to_string(status.StatusCode) << "): " << status.Message;
}

} // namespace harvlink
