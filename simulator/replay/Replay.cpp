#include "simulator/replay/Replay.h"

#include <fmt/format.h>

#include "recording/capture/CaptureFormat.h"
#include "recording/model/TimeText.h"
#include "simulator/replay/CaptureReplay.h"
#include "simulator/replay/RecordingReplay.h"

namespace harvlink::simulator {

bool Replay::IsOfConnecting(Request const& request) {
    if (request.port == Port::File) {
        auto const service = static_cast<FileServices>(request.subHeader.service);
        return service == FileServices::SaveFile || service == FileServices::ListFile;
    }
    return request.Command() == CommandNumber::SystemParameterRead ||
           request.Command() == CommandNumber::AxisConfigurationRead ||
           request.Command() == CommandNumber::SystemInformationRead;
}

recording::Microseconds Replay::StartTime(std::string const& at, recording::Microseconds begin,
                                          recording::Microseconds end) {
    recording::Microseconds const time = at.empty() ? begin : recording::ParseTime(at, begin, end);
    if (time < begin || time > end) {
        throw recording::RecordingError(fmt::format("{} is not in the recording, which is from {} to {}",
                                                    recording::FormatTime(time), recording::FormatTime(begin),
                                                    recording::FormatTime(end)));
    }
    return time;
}

std::unique_ptr<Replay> OpenReplay(std::filesystem::path const& path, ReplayOptions const& options) {
    if (recording::IsCapture(path)) {
        return std::make_unique<CaptureReplay>(path, options);
    }
    return std::make_unique<RecordingReplay>(path, options);
}

} // namespace harvlink::simulator
