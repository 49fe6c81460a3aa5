#pragma once

#include <cstdint>
#include <vector>

#include "simulator/arm/ArmFigure.h"
#include "simulator/arm/Frame.h"
#include "simulator/arm/GroupAxes.h"
#include "simulator/model/ControlGroups.h"
#include "simulator/model/TaughtFrames.h"

namespace harvlink::simulator {

/// The axis positions of all groups, in the order of the controller's groups: present or planned ones.
using GroupPositions = std::vector<AxisValues>;

/// The coordinate system of a pose. Base coordinates are fixed; robot coordinates move with the base axes that carry
/// the robot; user coordinates are frames in base coordinates.
struct CoordinateSystem {
    enum class Kind { Base, Robot, User };
    Kind kind = Kind::Base;
    std::int64_t user = 0; ///< user coordinate number, from 1

    static constexpr CoordinateSystem User(std::int64_t number) { return {Kind::User, number}; }
};

/// A robot's position in a coordinate system: the pose of its tool, the angles of its 7th and 8th axis, its posture.
struct CartesianPosition {
    Pose pose{};
    std::array<double, 2> externalAngles{};
    ArmFigure figure{};

    WireAxes ToWire() const; ///< 0.001 mm and 0.0001 degree
};

/// The arms, axes and frames of a controller, and the conversions between them. Has no positions of its own; the caller
/// passes them.
class Workcell {
public:
    Workcell(ControlGroups const& groups, TaughtFrames const& frames);

    GroupAxes const& Axes(ControlGroup const& group) const { return axes_[Index(group)]; }
    std::size_t Index(ControlGroup const& group) const;

    /// All arms at home, all other axes at 0.
    GroupPositions Home() const;

    bool HasTool(std::int64_t number) const;
    bool HasUser(std::int64_t number) const; ///< whether the user coordinate is taught

    /// The tool tip in flange coordinates; the flange itself if the tool doesn't exist.
    Frame Tool(std::int64_t number) const;

    /// The coordinate system in robot coordinates. It must exist.
    Frame SystemFromRobot(ControlGroup const& robot, CoordinateSystem const& system,
                          GroupPositions const& positions) const;

    CartesianPosition PositionOf(ControlGroup const& robot, AxisValues const& values, CoordinateSystem const& system,
                                 std::int64_t tool, GroupPositions const& positions) const;

private:
    ControlGroups const& groups_;
    TaughtFrames const& frames_;
    std::vector<GroupAxes> axes_;
};

} // namespace harvlink::simulator
