#include <array>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string_view>

#include "harvlink/Fleet.h"

namespace harvlink {
namespace {

/// By FleetItemKind. Those of variables are the letters of the pendant.
constexpr std::array<std::string_view, 20> names{
    "state", "job", "alarms", "position", "torque", "position error", "B",        "I",          "D",        "R",
    "S",     "P",   "BP",     "EX",       "signal", "signal group",   "register", "time count", "software", "progress"};

std::string_view CoordinateName(CoordinateType type) {
    switch (type) {
    case CoordinateType::Pulse:
        return "pulse";
    case CoordinateType::BaseCoordinate:
        return "base";
    case CoordinateType::RobotCoordinate:
        return "robot";
    case CoordinateType::UserCoordinate:
        return "user";
    default:
        return "unknown coordinates";
    }
}

bool IsVariable(FleetItemKind kind) {
    return kind >= FleetItemKind::ByteVariable && kind <= FleetItemKind::StationPositionVariable;
}

void WritePlace(std::ostream& out, FleetItem const& item) {
    switch (item.kind) {
    case FleetItemKind::State:
    case FleetItemKind::Alarms:
        return;
    case FleetItemKind::Position:
        out << ' ' << item.group << ' ' << CoordinateName(item.coordinate);
        return;
    case FleetItemKind::Torque:
    case FleetItemKind::PositionError:
        out << ' ' << item.group;
        return;
    default:
        out << ' ' << item.index;
    }
}

} // namespace

std::ostream& operator<<(std::ostream& stream, FleetItem const& item) {
    std::ostringstream out; // the caller's format is not this one's
    auto const kind = static_cast<std::size_t>(item.kind);
    if (kind >= names.size()) {
        return stream << "item of unknown kind " << static_cast<std::int32_t>(item.kind);
    }
    out << names[kind];
    if (IsVariable(item.kind)) {
        out << std::setw(3) << std::setfill('0') << item.index;
    } else {
        WritePlace(out, item);
    }
    if (item.axis >= 0) {
        out << " axis " << item.axis;
    }
    if (item.count != 1) {
        out << " x " << item.count;
    }
    return stream << out.str();
}

} // namespace harvlink
