#include "cli/trajectory/TrajectoryFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "words/text/Csv.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::cli {

namespace {

using AxisNames = std::array<std::string_view, 8>;

constexpr AxisNames CartesianColumns{"x", "y", "z", "rx", "ry", "rz", "re", "rw"};
constexpr AxisNames PulseColumns{"s", "l", "u", "r", "b", "t", "e", "w"};
constexpr std::array<std::string_view, 8> SettingColumns{"speed", "move",   "group",        "coordinate",
                                                         "tool",  "figure", "acceleration", "deceleration"};

constexpr std::array<Named<MoveInterpolationType>, 3> MoveNames{{{"joint", MoveInterpolationType::Joint},
                                                                 {"line", MoveInterpolationType::Line},
                                                                 {"circle", MoveInterpolationType::Circle}}};

// The largest values that fit the controller's 32 bits, in 0.001 mm, 0.0001 degree and pulses.
constexpr double LargestWireValue = 2147483647.0;

void Require(bool condition, ErrorStatusCodes code) {
    if (!condition) {
        throw InputError(StatusInformation(code).Message);
    }
}

bool IsRatio(double ratio) {
    return ratio == RatioNotSpecified || (ratio >= 20.0 && ratio <= 100.0);
}

void CheckAxes(std::array<double, 8> const& axes, CoordinateType type) {
    for (std::size_t axis = 0; axis < axes.size(); ++axis) {
        double const factor = type == CoordinateType::Pulse ? 1.0 : axis < 3 ? 1000.0 : 10000.0;
        if (!(std::abs(axes.at(axis)) * factor <= LargestWireValue)) {
            throw InputError(fmt::format("axis value {} is out of range", axes.at(axis)));
        }
    }
}

/// The columns of one file, by which its rows are read.
class TrajectoryColumns {
public:
    TrajectoryColumns(std::string const& file, CsvRow const& header) {
        for (std::size_t i = 0; i < header.cells.size(); ++i) {
            std::string const name = LowerCase(header.cells[i]);
            bool const isNew = columns_.emplace(name, i).second;
            if (!isNew || !IsKnown(name)) {
                Fail(file, header, fmt::format("column '{}' is {}", name, isNew ? "unknown" : "given twice"));
            }
            isPulse_ |= Contains(PulseColumns, Stem(name));
            isCartesian_ |= Contains(CartesianColumns, Stem(name));
        }
        if (isPulse_ == isCartesian_) {
            Fail(file, header, "the columns must be x, y, z, rx, ry, rz or s, l, u, r, b, t, but not both");
        }
        if (!columns_.contains("speed")) {
            Fail(file, header, "the column speed is missing");
        }
        columnCount_ = header.cells.size();
    }

    CircularMotion ReadMotion(CsvRow const& row) const {
        if (row.cells.size() != columnCount_) {
            throw InputError(fmt::format("{} cells instead of {}", row.cells.size(), columnCount_));
        }
        CircularMotion motion;
        motion.controlGroup = ParseGroup(Cell(row, "group", "R1"));
        motion.moveType = ParseName(MoveNames, Cell(row, "move", "line"), "kind of move");
        motion.speed = ParseNumber<double>(Cell(row, "speed", ""), "speed");
        motion.accelerationRatio = Ratio(row, "acceleration");
        motion.decelerationRatio = Ratio(row, "deceleration");
        motion.position = ReadPosition(row, LeastAxes(motion.controlGroup));
        if (motion.moveType == MoveInterpolationType::Circle) {
            motion.auxiliaryAxes = ReadAxes(row, "via_", LeastAxes(motion.controlGroup));
            CheckAxes(motion.auxiliaryAxes, motion.position.coordinateType);
        }
        CheckMotion(motion);
        return motion;
    }

private:
    template <std::size_t Count>
    static bool Contains(std::array<std::string_view, Count> const& names, std::string_view name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    static std::string_view Stem(std::string_view name) { return name.starts_with("via_") ? name.substr(4) : name; }

    static bool IsKnown(std::string_view name) {
        return Contains(SettingColumns, name) || Contains(PulseColumns, Stem(name)) ||
               Contains(CartesianColumns, Stem(name));
    }

    [[noreturn]] static void Fail(std::string const& file, CsvRow const& header, std::string_view fault) {
        throw InputError(fmt::format("{}:{}: {}", file, header.line, fault));
    }

    std::string Cell(CsvRow const& row, std::string const& column, std::string_view otherwise) const {
        auto const found = columns_.find(column);
        bool const isGiven = found != columns_.end() && !row.cells[found->second].empty();
        return isGiven ? row.cells[found->second] : std::string(otherwise);
    }

    double Ratio(CsvRow const& row, std::string const& column) const {
        std::string const cell = Cell(row, column, "");
        return cell.empty() ? RatioNotSpecified : ParseNumber<double>(cell, "ratio");
    }

    std::array<double, 8> ReadAxes(CsvRow const& row, std::string const& prefix, std::size_t leastAxes) const {
        AxisNames const& names = isPulse_ ? PulseColumns : CartesianColumns;
        std::array<double, 8> axes{};
        for (std::size_t axis = 0; axis < axes.size(); ++axis) {
            std::string const column = prefix + std::string(names.at(axis));
            std::string const cell = Cell(row, column, axis < leastAxes ? "" : "0");
            axes.at(axis) = ParseNumber<double>(cell, "number in column " + column);
        }
        return axes;
    }

    PositionData ReadPosition(CsvRow const& row, std::size_t leastAxes) const {
        Coordinate const coordinate = ParseCoordinate(Cell(row, "coordinate", isPulse_ ? "pulse" : "base"));
        if ((coordinate.type == CoordinateType::Pulse) != isPulse_) {
            throw InputError(fmt::format("coordinate '{}' does not fit the columns", CoordinateName(coordinate)));
        }
        PositionData position{.coordinateType = coordinate.type, .userCoordinateNumber = coordinate.userNumber};
        position.toolNumber = ParseNumber<int>(Cell(row, "tool", "0"), "tool number");
        position.figure = ParseFigure(Cell(row, "figure", "front+upper+flip"));
        position.axes = ReadAxes(row, "", leastAxes);
        return position;
    }

    std::map<std::string, std::size_t> columns_;
    std::size_t columnCount_ = 0;
    bool isPulse_ = false;
    bool isCartesian_ = false;
};

} // namespace

bool HasTrajectoryHeader(std::string_view text) {
    try {
        std::vector<CsvRow> const rows = ParseCsv("", text);
        return !rows.empty() && (TrajectoryColumns("", rows.front()), true);
    } catch (InputError const&) {
        return false;
    }
}

void CheckMotion(Motion const& motion) {
    PositionData const& position = motion.position;
    Require(position.coordinateType != CoordinateType::JointAngle, ErrorStatusCodes::InvalidCoordinateType);
    // The library has no text for these two.
    if (!IsRatio(motion.accelerationRatio) || !IsRatio(motion.decelerationRatio)) {
        throw InputError("acceleration and deceleration must be from 20 to 100 per cent");
    }
    if (motion.moveType == MoveInterpolationType::Joint) {
        Require(motion.speed >= 0.01 && motion.speed <= 100.0, ErrorStatusCodes::JointSpeedOutOfRange);
    } else {
        Require(motion.speed >= 0.1 && motion.speed <= 1500.0, ErrorStatusCodes::SpeedOutOfRange);
    }
    if (position.coordinateType == CoordinateType::UserCoordinate &&
        (position.userCoordinateNumber < 1 || position.userCoordinateNumber > 63)) {
        throw InputError("the user coordinate number must be from 1 to 63");
    }
    if (position.toolNumber < 0 || position.toolNumber > 63) {
        throw InputError("the tool number must be from 0 to 63");
    }
    CheckAxes(position.axes, position.coordinateType);
}

Trajectory ParseTrajectory(std::string const& file, std::string_view text) {
    std::vector<CsvRow> rows = ParseCsv(file, text);
    if (rows.empty()) {
        throw InputError(fmt::format("{}:1: the header line is missing", file));
    }
    TrajectoryColumns const columns(file, rows.front());
    rows.erase(rows.begin());
    if (rows.empty()) {
        throw InputError(fmt::format("{}: the file has no points", file));
    }
    Trajectory trajectory;
    trajectory.reserve(rows.size());
    ForEachRow(file, rows, [&](CsvRow const& row) {
        trajectory.push_back({columns.ReadMotion(row), fmt::format("{}:{}", file, row.line)});
    });
    return trajectory;
}

} // namespace harvlink::cli
