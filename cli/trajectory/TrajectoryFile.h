#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "harvlink/MotionManagerInterface.h"

namespace harvlink::cli {

inline constexpr char const* TrajectoryHelp =
    "FILE.csv has a header line and one point on each line after it. The header line that names its columns, in any "
    "order:\n"
    "  speed                            required: per cent for joint, mm/s for line and circle\n"
    "  x,y,z,rx,ry,rz[,re,rw]           the point in mm and degrees, or\n"
    "  s,l,u,r,b,t[,e,w]                the point in pulses\n"
    "  move                             joint, line or circle (default line)\n"
    "  via_x, via_y, ... or via_s, ...  the point through which a circle passes\n"
    "  group, coordinate, tool, figure  as in positions (defaults R1, base or pulse, 0, front+upper+flip)\n"
    "  acceleration, deceleration       per cent, 20 to 100 (default: what the controller has)\n"
    "Lines that begin with # are ignored.";

/// Every point is a circular motion; the auxiliary point is used only if the move type is Circle.
struct TrajectoryPoint : CircularMotion {
    std::string place{}; ///< "square.csv:3"; empty if it does not come from a file
};

using Trajectory = std::vector<TrajectoryPoint>;

/// Reads a trajectory and checks each point as far as that can be done without a controller. Throws one InputError that
/// names every wrong line.
Trajectory ParseTrajectory(std::string const& file, std::string_view text);

/// Whether the first line of a text names the columns of a trajectory.
bool HasTrajectoryHeader(std::string_view text);

/// Throws InputError with the text of the status with which the library would refuse the point.
void CheckMotion(Motion const& motion);

} // namespace harvlink::cli
