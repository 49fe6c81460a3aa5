#include "controller/JobImplementation.h"

#include <ostream>

#include "controller/JobRequests.h"
#include "wire/Guarded.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr std::size_t maxNameLength = 32;
constexpr int invalidLine = 20992;

} // namespace

StatusInfo JobImplementation::SetActiveJob(std::string const& name, unsigned line) {
    return Guarded(*networkManager, [&]() -> StatusInfo {
        // The extension counts, on purpose: a name of 29 characters and ".JBI" is too long.
        if (name.size() > maxNameLength) {
            return StatusInformation(ErrorStatusCodes::InvalidJobNameLength);
        }
        StatusInfo status = line > maxLineNumber ? StatusInformation(invalidLine, "Invalid line number.")
                                                 : CarryOut(*networkManager, JobSelectRequest(name, line));
        ApplyJobTable(status);
        return status;
    });
}

StatusInfo JobImplementation::GetExecutingJobInformation(TesselTaskNumber task, JobData& data) {
    return Guarded(*networkManager, data, [&] { return CarryOut(*networkManager, ExecutingJobRequest(task), data); });
}

StatusInfo JobImplementation::GetJobStack(TesselTaskNumber task, std::vector<std::string>& jobs) {
    if (!HelperFunction::CheckUAPICompatible(networkManager->controllerVersion)) {
        return Guarded(*networkManager,
                       [] { return StatusInformation(ErrorStatusCodes::UnsupportedOnThisController); });
    }
    return Guarded(*networkManager, jobs, [&] { return CarryOut(*networkManager, JobStackRequest(task), jobs); });
}

std::ostream& operator<<(std::ostream& stream, JobData const& data) {
    return stream << "Name: " << data.name << "\nLine: " << data.line << "\nStep Number: " << data.stepNumber
                  << "\nSpeed Override: " << data.speedOverride << '%';
}

} // namespace harvlink
