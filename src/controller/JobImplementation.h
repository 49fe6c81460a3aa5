#pragma once

#include <cstdint>

#include "harvlink/JobInterface.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class JobImplementation final : public JobInterface {
public:
    explicit JobImplementation(NetworkManager* manager) : networkManager(manager) {}

    StatusInfo SetActiveJob(std::string const& name, unsigned line) override;
    StatusInfo GetExecutingJobInformation(TesselTaskNumber task, JobData& data) override;
    StatusInfo GetJobStack(TesselTaskNumber task, std::vector<std::string>& jobs) override;

private:
    NetworkManager* networkManager;
    static constexpr std::uint32_t maxLineNumber = 9999;
};

} // namespace harvlink
