#include "simulator/arm/Workcell.h"

#include <algorithm>
#include <iterator>

#include "simulator/arm/ForwardKinematics.h"

namespace harvlink::simulator {

WireAxes CartesianPosition::ToWire() const {
    return CartesianScaling.ToWire(
        {pose[0], pose[1], pose[2], pose[3], pose[4], pose[5], externalAngles[0], externalAngles[1]});
}

Workcell::Workcell(ControlGroups const& groups, TaughtFrames const& frames) : groups_(groups), frames_(frames) {
    axes_.reserve(groups.All().size());
    std::ranges::transform(groups.All(), std::back_inserter(axes_), AxesOf);
}

std::size_t Workcell::Index(ControlGroup const& group) const {
    return static_cast<std::size_t>(&group - groups_.All().data());
}

GroupPositions Workcell::Home() const {
    GroupPositions positions(axes_.size());
    for (std::size_t i = 0; i < axes_.size(); ++i) {
        if (axes_[i].isArm) {
            positions[i] = WithArmAngles(positions[i], HomeAngles);
        }
    }
    return positions;
}

bool Workcell::HasTool(std::int64_t number) const {
    return number >= 0 && number < static_cast<std::int64_t>(frames_.tools.size());
}

bool Workcell::HasUser(std::int64_t number) const {
    return number >= 1 && number < static_cast<std::int64_t>(frames_.users.size()) &&
           frames_.users[static_cast<std::size_t>(number)].isDefined;
}

Frame Workcell::Tool(std::int64_t number) const {
    return HasTool(number) ? FrameOfPose(frames_.tools[static_cast<std::size_t>(number)].pose) : Frame{};
}

Frame Workcell::SystemFromRobot(ControlGroup const& robot, CoordinateSystem const& system,
                                GroupPositions const& positions) const {
    if (system.kind == CoordinateSystem::Kind::Robot) {
        return {};
    }
    // Base n carries robot n. Its first three axes move along X, Y and Z.
    auto const* const base = groups_.Find(static_cast<ControlGroupId>(static_cast<std::int32_t>(robot.id) + 10));
    AxisValues const travel = base == nullptr ? AxisValues{} : positions[Index(*base)];
    Frame const baseFromRobot = Translation(-travel[0], -travel[1], -travel[2]);
    if (system.kind == CoordinateSystem::Kind::User && HasUser(system.user)) {
        return baseFromRobot * FrameOfPose(frames_.users[static_cast<std::size_t>(system.user)].pose);
    }
    return baseFromRobot;
}

CartesianPosition Workcell::PositionOf(ControlGroup const& robot, AxisValues const& values,
                                       CoordinateSystem const& system, std::int64_t tool,
                                       GroupPositions const& positions) const {
    ArmAngles const angles = ArmAnglesOf(values);
    Frame const tip = FlangeOf(StandardArm, angles) * Tool(tool);
    return {.pose = PoseOfFrame(SystemFromRobot(robot, system, positions).Inverse() * tip),
            .externalAngles = {values[6], values[7]},
            .figure = FigureOf(StandardArm, angles)};
}

} // namespace harvlink::simulator
