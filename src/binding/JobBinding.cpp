#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::ControllerOf;

namespace {

/// Jobs behind the twelfth are left out.
IJobStack ToPlainStack(std::vector<std::string> const& jobs) {
    auto const place = [&jobs](std::size_t i) { return ConvertStringToChar8(i < jobs.size() ? jobs[i] : "none"); };
    return {place(0), place(1), place(2), place(3), place(4),  place(5),
            place(6), place(7), place(8), place(9), place(10), place(11)};
}

} // namespace

IStatusInfo job_interface_set_active_job(ControllerHandle handle, char const* name, unsigned line) {
    return ToPlain(ControllerOf(handle).Job->SetActiveJob(ConvertChar8ToString(name), line));
}

IStatusInfo job_interface_get_executing_job_information(ControllerHandle handle, TesselTaskNumber task,
                                                        IJobData* data) {
    harvlink::JobData read;
    harvlink::StatusInfo const status =
        ControllerOf(handle).Job->GetExecutingJobInformation(static_cast<harvlink::TesselTaskNumber>(task), read);
    *data = {ConvertStringToChar8(read.name), read.line, read.stepNumber, read.speedOverride};
    return ToPlain(status);
}

IStatusInfo job_interface_get_job_stack(ControllerHandle handle, TesselTaskNumber task, IJobStack* jobs) {
    *jobs = {};
    std::vector<std::string> read;
    harvlink::StatusInfo const status =
        ControllerOf(handle).Job->GetJobStack(static_cast<harvlink::TesselTaskNumber>(task), read);
    *jobs = ToPlainStack(read);
    return ToPlain(status);
}
