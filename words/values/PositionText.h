#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "harvlink/ControlGroupId.h"
#include "harvlink/PositionData.h"
#include "words/text/Json.h"

namespace harvlink::words {

inline constexpr char const* PositionHelp =
    "A position is COORDINATE:AXES[,tool=N][,figure=WORDS].\n"
    "  COORDINATE  pulse, joint, base, robot, tool, user:N or master-tool\n"
    "  AXES        6 to 8 numbers, fewer for bases and stations: pulses, degrees (joint),\n"
    "              or X,Y,Z in mm and Rx,Ry,Rz,Re,Rw in degrees\n"
    "  WORDS       front or back, upper or lower, flip or noflip, and for angles above 180\n"
    "              degrees s180, l180, u180, r180, b180, t180, e180, w180; joined by '+'\n"
    "Such as base:480,0,600,180,0,0,tool=1,figure=front+upper+noflip";

struct Coordinate {
    CoordinateType type = CoordinateType::Pulse;
    int userNumber = 0;

    bool operator==(Coordinate const&) const = default;
};

/// A control group by its name: R1 to R8, B1 to B8, S1 to S24.
ControlGroupId ParseGroup(std::string_view text);
std::string GroupName(ControlGroupId group);

/// The least number of axes that a position of this group must have: a robot needs all six.
std::size_t LeastAxes(ControlGroupId group);

Coordinate ParseCoordinate(std::string_view text);
std::string CoordinateName(Coordinate coordinate);

/// Whether positions are X, Y, Z and rotations, not the single axes of the machine.
bool IsCartesian(CoordinateType type);

Figure ParseFigure(std::string_view text);
std::string FigureText(Figure const& figure);

/// Reads what FormatPosition writes. Throws InputError.
PositionData ParsePosition(std::string_view text, std::size_t leastAxes = 6);
std::string FormatPosition(PositionData const& position);

/// A position as fields: coordinate, tool, figure, units and the axes by name.
Json PositionJson(PositionData const& position);

} // namespace harvlink::words
