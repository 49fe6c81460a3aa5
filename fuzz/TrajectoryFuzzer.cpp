#include "Input.h"
#include "cli/trajectory/TrajectoryFile.h"
#include "motion/MotionStep.h"
#include "words/text/InputError.h"

// Trajectory files of the command line tool. The library accepts every point that the tool accepts.

namespace harvlink::fuzz {

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    try {
        auto const points = cli::ParseTrajectory("path.csv", Input(data, size).TakeText());
        Require(!points.empty(), "a trajectory has a point");
        for (auto const& point : points) {
            cli::CheckMotion(point);
            MotionStep step;
            StatusInfo status;
            Require(step.SetTarget(point, TargetControlGroup{}, status), "the library accepts the point");
            Require(step.groups.count() == 1, "a point moves its group");
        }
    } catch (words::InputError const& error) {
        Require(std::string_view(error.what()).starts_with("path.csv:"), "an error names the file");
    }
    return 0;
}

} // namespace harvlink::fuzz
