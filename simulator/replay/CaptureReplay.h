#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "simulator/replay/CapturedTraffic.h"
#include "simulator/replay/Replay.h"

namespace harvlink::simulator {

/// Answers each request that a capture has, reading or writing, with the bytes that the controller sent at that time: those of the last
/// such request until then. A request that was not answered then is not answered now. Others are refused, but for what a client
/// asks for when it connects.
class CaptureReplay final : public Replay {
public:
    CaptureReplay(std::filesystem::path const& path, ReplayOptions const& options);

    bool Answer(Request const& request, Reply& reply) override;
    std::string SoftwareVersion() const override { return traffic_.SoftwareVersion(); }
    std::string Warning() const override { return warning_; }

private:
    CapturedTraffic traffic_;
    std::string warning_;
    RequestNamer namer_;
    std::optional<ReplayClock> clock_;
};

} // namespace harvlink::simulator
