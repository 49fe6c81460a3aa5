#pragma once

#include "harvlink/VariablesInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class RobotPositionVariableImplementation final : public RobotPositionVariableInterface {
public:
    RobotPositionVariableImplementation(NetworkManager* manager, int rs22, int toolFiles)
        : networkManager(manager), rs22State(rs22), numberOfToolFiles(toolFiles) {}

    StatusInfo Read(unsigned short index, RobotPositionVariableData& variable) override;
    StatusInfo Write(RobotPositionVariableData const& variable) override;

private:
    StatusInfo CheckWritable(PositionData const& position) const;

    NetworkManager* networkManager;
    int rs22State;
    int numberOfToolFiles;
};

class BasePositionVariableImplementation final : public BaseAxisPositionVariableInterface {
public:
    BasePositionVariableImplementation(NetworkManager* manager, int rs22) : networkManager(manager), rs22State(rs22) {}

    StatusInfo Read(unsigned short index, BaseAxisPositionVariableData& variable) override;
    StatusInfo Write(BaseAxisPositionVariableData const& variable) override;

private:
    NetworkManager* networkManager;
    int rs22State;
};

class StationPositionVariableImplementation final : public StationPositionVariableInterface {
public:
    StationPositionVariableImplementation(NetworkManager* manager, int rs22)
        : networkManager(manager), rs22State(rs22) {}

    StatusInfo Read(unsigned short index, StationPositionVariableData& variable) override;
    StatusInfo Write(StationPositionVariableData const& variable) override;

private:
    NetworkManager* networkManager;
    int rs22State;
};

} // namespace harvlink
