#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::ControllerOf;
using harvlink::Binding::Guarded;
using harvlink::Binding::ReturnedTexts;

namespace {

/// Jobs behind the twelfth are left out.
IJobStack ToPlainStack(std::vector<std::string> const& jobs, ReturnedTexts& texts) {
    auto const place = [&](std::size_t i) { return texts.Copy(i < jobs.size() ? std::string_view(jobs[i]) : "none"); };
    return {place(0), place(1), place(2), place(3), place(4),  place(5),
            place(6), place(7), place(8), place(9), place(10), place(11)};
}

} // namespace

inline namespace harvlink_c {

IStatusInfo job_interface_set_active_job(ControllerHandle handle, char const* name, unsigned line) {
    return Guarded(handle, [&] { return ControllerOf(handle).Job->SetActiveJob(ConvertChar8ToString(name), line); });
}

IStatusInfo job_interface_get_executing_job_information(ControllerHandle handle, TesselTaskNumber task,
                                                        IJobData* data) {
    harvlink::JobData read;
    harvlink::StatusInfo const status =
        ControllerOf(handle).Job->GetExecutingJobInformation(static_cast<harvlink::TesselTaskNumber>(task), read);
    ReturnedTexts texts(handle);
    *data = {texts.Copy(read.name), read.line, read.stepNumber, read.speedOverride};
    return texts.Checked(ToPlain(status));
}

IStatusInfo job_interface_get_job_stack(ControllerHandle handle, TesselTaskNumber task, IJobStack* jobs) {
    *jobs = {};
    std::vector<std::string> read;
    harvlink::StatusInfo const status =
        ControllerOf(handle).Job->GetJobStack(static_cast<harvlink::TesselTaskNumber>(task), read);
    ReturnedTexts texts(handle);
    *jobs = ToPlainStack(read, texts);
    return texts.Checked(ToPlain(status));
}

} // namespace harvlink_c
