#pragma once

#include "harvlink/VariablesInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class VariablesImplementation final : public VariablesInterface {
public:
    VariablesImplementation(NetworkManager* networkManager, int rs22State, int numberOfToolFiles);
    ~VariablesImplementation() override;
};

} // namespace harvlink
