#include <algorithm>
#include <array>
#include <cmath>

#include "soak/ValueKind.h"

namespace harvlink::soak {

namespace {

constexpr std::size_t WordsBeforeAxes = 5;
constexpr std::size_t AxisCount = 8;
constexpr double BaseUnits = 1000.0; ///< per millimetre, for all axes of a base
constexpr std::size_t ShortImage = sizeof(std::int32_t) * (1 + AxisCount); ///< type and axes

std::int32_t RandomAxis(Random& random) {
    return static_cast<std::int32_t>(random() % 2'000'000'001) - 1'000'000'000;
}

WireImage RandomPosition(Random& random, int highestTool) {
    constexpr std::array types{CoordinateType::Pulse, CoordinateType::BaseCoordinate, CoordinateType::RobotCoordinate,
                               CoordinateType::UserCoordinate};
    auto const type = types.at(random() % types.size());
    auto image = ImageOf(static_cast<std::int32_t>(type));
    Append(image, static_cast<std::int32_t>(random() % 64)); // figure
    Append(image, static_cast<std::int32_t>(random() % (static_cast<unsigned>(highestTool) + 1)));
    Append(image, static_cast<std::int32_t>(random() % 63 + 1)); // user coordinate
    Append(image, static_cast<std::int32_t>(random() % 32)); // figure, second part
    for (std::size_t i = 0; i < AxisCount; ++i) {
        Append(image, RandomAxis(random));
    }
    return image;
}

ValueKind RobotPositions(RobotPositionVariableInterface& variables, int highestTool) {
    return {.name = "P",
            .count = VariableCount,
            .size = sizeof(std::int32_t) * (WordsBeforeAxes + AxisCount),
            .random = [highestTool](Random& random) { return RandomPosition(random, highestTool); },
            .write =
                [&variables](unsigned index, WireImage const& image) {
                    return variables.Write({PositionOf(image), static_cast<std::uint16_t>(index)});
                },
            .read =
                [&variables](unsigned index, WireImage& image) {
                    RobotPositionVariableData variable;
                    auto status = variables.Read(static_cast<std::uint16_t>(index), variable);
                    image = ImageOfPosition(variable.positionData);
                    return status;
                }};
}

/// Base and station positions have a type and axes, all in the same unit.
WireImage ShortImageOf(PositionData const& position, double units) {
    auto image = ImageOf(static_cast<std::int32_t>(position.coordinateType));
    for (auto const axis : position.axes) {
        Append(image, static_cast<std::int32_t>(std::llround(axis * units)));
    }
    return image;
}

PositionData FromShortImage(WireImage const& image, double units) {
    PositionData position{.coordinateType = static_cast<CoordinateType>(ValueAt<std::int32_t>(image))};
    for (std::size_t i = 0; i < AxisCount; ++i) {
        position.axes[i] = ValueAt<std::int32_t>(image, (i + 1) * sizeof(std::int32_t)) / units;
    }
    return position;
}

template <typename Record, CoordinateType type>
ValueKind ShortPositions(std::string const& name, VariableInterface<Record>& variables, double units) {
    return {.name = name,
            .count = VariableCount,
            .size = ShortImage,
            .random =
                [](Random& random) {
                    auto image = ImageOf(static_cast<std::int32_t>(type));
                    for (std::size_t i = 0; i < AxisCount; ++i) {
                        Append(image, RandomAxis(random));
                    }
                    return image;
                },
            .write =
                [&variables, units](unsigned index, WireImage const& image) {
                    return variables.Write({FromShortImage(image, units), static_cast<std::uint16_t>(index)});
                },
            .read =
                [&variables, units](unsigned index, WireImage& image) {
                    Record variable;
                    auto status = variables.Read(static_cast<std::uint16_t>(index), variable);
                    image = ShortImageOf(variable.positionData, units);
                    return status;
                }};
}

} // namespace

std::vector<ValueKind> PositionKinds(QuorvanController& robot, int highestTool) {
    auto& variables = *robot.Variables;
    return {RobotPositions(*variables.robotPositionVariable, highestTool),
            ShortPositions<BaseAxisPositionVariableData, CoordinateType::BaseCoordinate>(
                "BP", *variables.basePositionVariable, BaseUnits),
            ShortPositions<StationPositionVariableData, CoordinateType::Pulse>("EX", *variables.stationPositionVariable,
                                                                               1.0)};
}

} // namespace harvlink::soak
