#include "soak/FixedReading.h"

#include <array>

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

constexpr std::size_t VersionWidth = 24;
constexpr std::size_t ModelWidth = 16;

void AddPositions(std::vector<FixedReading>& readings, ControlGroupInterface& groups, bool isExtended) {
    std::vector<CoordinateType> types{CoordinateType::Pulse, CoordinateType::BaseCoordinate};
    if (isExtended) {
        types.push_back(CoordinateType::RobotCoordinate);
    }
    for (auto const group : {ControlGroupId::R1, ControlGroupId::B1, ControlGroupId::S1}) {
        for (auto const type : types) {
            readings.push_back({fmt::format("position of {} in {}", static_cast<int>(group), static_cast<int>(type)),
                                Family::ControlGroup, [&groups, group, type](WireImage& image) {
                                    PositionData position;
                                    auto status = groups.ReadPositionData(group, type, 1, 0, position);
                                    image = ImageOfPosition(position);
                                    return status;
                                }});
        }
    }
}

void AddGroups(std::vector<FixedReading>& readings, ControlGroupInterface& groups) {
    for (auto const group : {ControlGroupId::R1, ControlGroupId::B1, ControlGroupId::S1}) {
        readings.push_back({fmt::format("axes of {}", static_cast<int>(group)), Family::ControlGroup,
                            [&groups, group](WireImage& image) {
                                std::array<char, 8> axes{};
                                auto status = groups.ReadAxisConfiguration(group, axes);
                                image = ImageOf(axes);
                                return status;
                            }});
        readings.push_back({fmt::format("position error of {}", static_cast<int>(group)), Family::ControlGroup,
                            [&groups, group](WireImage& image) {
                                PositionErrorData error;
                                auto status = groups.ReadPositionError(group, error);
                                image = ImageOf(error.axes);
                                return status;
                            }});
    }
}

void AddIdentity(std::vector<FixedReading>& readings, ControllerStateInterface& state) {
    for (auto const id : {SystemInfoId::Robot1, SystemInfoId::Station1, SystemInfoId::Application1}) {
        readings.push_back({fmt::format("system information {}", static_cast<int>(id)), Family::Status,
                            [&state, id](WireImage& image) {
                                SystemInfoData data;
                                auto status = state.ReadSystemInformation(id, data);
                                image.clear();
                                AppendText(image, data.softwareVersion, VersionWidth);
                                AppendText(image, data.modelName, ModelWidth);
                                return status;
                            }});
    }
}

void AddParameters(std::vector<FixedReading>& readings, ControllerStateInterface& state) {
    constexpr int slotParameter = 33;
    for (int const number : {slotParameter, slotParameter + 1, slotParameter + 2}) {
        readings.push_back({fmt::format("motion slot {}", number), Family::Status, [&state, number](WireImage& image) {
                                int value = 0;
                                auto status = state.ReadSystemParam(SystemParameterType::MotionSlot, number, value);
                                image = ImageOf(value);
                                return status;
                            }});
    }
}

} // namespace

std::vector<FixedReading> FixedReadings(SharedConnection& connection) {
    std::vector<FixedReading> readings;
    AddPositions(readings, *connection.robot->ControlGroup, connection.isExtended);
    AddGroups(readings, *connection.robot->ControlGroup);
    AddIdentity(readings, *connection.robot->Status);
    if (connection.isExtended) {
        AddParameters(readings, *connection.robot->Status);
    }
    return readings;
}

} // namespace harvlink::soak
