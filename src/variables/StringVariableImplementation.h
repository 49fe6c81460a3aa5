#pragma once

#include "harvlink/VariablesInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class StringVariableImplementation final : public StringVariableInterface {
public:
    StringVariableImplementation(NetworkManager* manager, int rs22) : networkManager(manager), rs22State(rs22) {}

    StatusInfo Read(unsigned short index, StringVariableData& variable) override;
    StatusInfo Write(StringVariableData const& variable) override;

private:
    NetworkManager* networkManager;
    int rs22State;
};

} // namespace harvlink
