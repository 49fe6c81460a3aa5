#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>

#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::As;
using harvlink::Binding::ControllerOf;
using harvlink::Binding::Guarded;
using harvlink::Binding::ReturnedTexts;

namespace {

/// Of the first version. A record that grew is filled as far as the caller's reaches.
constexpr std::size_t smallestState = offsetof(HarvlinkTrajectoryState, failureMessage) + sizeof(char*);

harvlink::MotionManagerInterface& TrajectoryOf(ControllerHandle handle) {
    return *ControllerOf(handle).MotionManager;
}

std::optional<harvlink::Motion> Optional(Motion const* motion) {
    return motion == nullptr ? std::nullopt : std::optional(As<harvlink::Motion>(motion));
}

std::int64_t Milliseconds(std::chrono::system_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

HarvlinkTrajectoryState ToPlainState(harvlink::TrajectoryState const& state, std::uint32_t size, ReturnedTexts& texts) {
    return {.size = size,
            .monitor = static_cast<TrajectoryMonitorState>(state.monitor),
            .queued = state.queued,
            .sent = state.sent,
            .refused = state.refused,
            .withdrawn = state.withdrawn,
            .heldBackSince = Milliseconds(state.heldBackSince),
            .failedStep = state.lastFailure.stepNumber,
            .failedGroup = static_cast<ControlGroupId>(state.lastFailure.group),
            .failureCode = state.lastFailure.status.StatusCode,
            .failureMessage = texts.Copy(state.lastFailure.status.Message)};
}

} // namespace

inline namespace harvlink_c {

IStatusInfo harvlink_motion_add(ControllerHandle handle, std::uint64_t* stepNumber, Motion const* first,
                                Motion const* second, Motion const* third, Motion const* fourth) {
    // By reference, so that it can be a circular motion; the others are copied.
    auto const& firstMotion = As<harvlink::Motion>(first);
    return ToPlain(TrajectoryOf(handle).AddPointToTrajectory(*stepNumber, firstMotion, Optional(second),
                                                             Optional(third), Optional(fourth)));
}

IStatusInfo harvlink_motion_get_state(ControllerHandle handle, HarvlinkTrajectoryState* state) {
    if (state->size < smallestState) {
        return Guarded(handle, [] {
            return harvlink::StatusInformation(harvlink::ErrorStatusCodes::InvalidConnectOptions,
                                               "Set the member size of HarvlinkTrajectoryState to its size.");
        });
    }
    harvlink::TrajectoryState current;
    harvlink::StatusInfo const status = TrajectoryOf(handle).GetTrajectoryState(current);
    ReturnedTexts texts(handle);
    HarvlinkTrajectoryState const plain = ToPlainState(current, state->size, texts);
    std::memcpy(state, &plain, std::min<std::size_t>(state->size, sizeof(plain)));
    return texts.Checked(ToPlain(status));
}

IStatusInfo harvlink_motion_wait_for_target(ControllerHandle handle, std::uint64_t stepNumber,
                                            std::uint32_t timeoutMilliseconds, double tolerance) {
    return ToPlain(TrajectoryOf(handle).WaitForTarget(stepNumber, timeoutMilliseconds, tolerance));
}

IStatusInfo harvlink_motion_wait_until_sent(ControllerHandle handle, std::uint64_t stepNumber,
                                            std::uint32_t timeoutMilliseconds) {
    return ToPlain(TrajectoryOf(handle).WaitUntilSent(stepNumber, timeoutMilliseconds));
}

} // namespace harvlink_c
