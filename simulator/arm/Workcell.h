#pragma once

#include <cstdint>
#include <vector>

#include "simulator/arm/ArmFigure.h"
#include "simulator/arm/Frame.h"
#include "simulator/arm/GroupAxes.h"
#include "simulator/model/ControlGroups.h"
#include "simulator/model/Frames.h"

namespace harvlink::simulator {

/// Where the axes of all groups are at one moment, in the order of the controller's groups: now, or at the end of what is
/// planned.
using Stance = std::vector<AxisValues>;

/// What a pose refers to. Base coordinates stand still; the robot's own travel with the base axes that carry it; user
/// coordinates are frames in base coordinates.
struct CoordinateSystem {
    enum class Kind { Base, Robot, User };
    Kind kind = Kind::Base;
    std::int64_t user = 0; ///< user coordinate number, from 1

    static constexpr CoordinateSystem User(std::int64_t number) { return {Kind::User, number}; }
};

/// A robot's position in a coordinate system: the pose of its tool, the turns of its 7th and 8th axis, the posture.
struct CartesianPosition {
    Pose pose{};
    std::array<double, 2> externalAngles{};
    ArmFigure figure{};

    WireAxes ToWire() const; ///< 0.001 mm and 0.0001 degree
};

/// The arms, axes and frames of a controller, and the way between them. Keeps no position: they are handed in.
class Workcell {
public:
    Workcell(ControlGroups const& groups, Frames const& frames);

    GroupAxes const& Axes(ControlGroup const& group) const { return axes_[Index(group)]; }
    std::size_t Index(ControlGroup const& group) const;

    /// All arms at home, all other axes at 0.
    Stance Home() const;

    bool HasTool(std::int64_t number) const;
    bool HasUser(std::int64_t number) const; ///< whether the user coordinate is taught

    /// From the flange to the tool's tip; the flange itself for a number that doesn't exist.
    Frame Tool(std::int64_t number) const;

    /// The coordinate system, which exists, as seen from a robot.
    Frame SystemFromRobot(ControlGroup const& robot, CoordinateSystem const& system, Stance const& stance) const;

    CartesianPosition PositionOf(ControlGroup const& robot, AxisValues const& values, CoordinateSystem const& system,
                                 std::int64_t tool, Stance const& stance) const;

private:
    ControlGroups const& groups_;
    Frames const& frames_;
    std::vector<GroupAxes> axes_;
};

} // namespace harvlink::simulator
