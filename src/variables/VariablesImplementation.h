#pragma once

#include "harvlink/VariablesInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class VariablesImplementation final : public VariablesInterface {
public:
    VariablesImplementation(NetworkManager* networkManager, int rs22State, int numberOfToolFiles);
    ~VariablesImplementation() override;

private:
    VariablesImplementation() = default; // delegated to, so that the destructor runs if memory ends halfway
};

} // namespace harvlink
