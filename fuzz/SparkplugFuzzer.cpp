#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "gateway/sparkplug/Commands.h"
#include "gateway/sparkplug/Device.h"
#include "gateway/sparkplug/HostState.h"
#include "gateway/sparkplug/Ids.h"
#include "recording/model/Kinds.h"

/// What comes from a broker, and what comes back from a store: any bytes at all.

namespace {

namespace gateway = harvlink::gateway;
namespace sparkplug = harvlink::gateway::sparkplug;

void Expect(bool condition) {
    if (!condition) {
        std::abort();
    }
}

sparkplug::Device const& TheDevice() {
    static sparkplug::Device const device = [] {
        auto controller = std::make_shared<gateway::Controller>();
        controller->name = "press1";
        harvlink::recording::RecordedReading reading;
        reading.name = "state";
        reading.kind = harvlink::recording::kind::State;
        SetItems(reading);
        controller->readings.push_back(reading);
        return sparkplug::Device(controller, 1);
    }();
    return device;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, std::size_t size) {
    std::string_view const bytes(reinterpret_cast<char const*>(data), size);
    auto const commands = sparkplug::ParseCommands(bytes);
    Expect(commands.refused.size() <= sparkplug::Commands::MostRefused);
    sparkplug::ParseHostState(bytes);
    Expect(size == 0 || sparkplug::ProblemOfId(sparkplug::DeviceIdOf(bytes.substr(0, 300))).empty());
    std::string const repaired = sparkplug::RepairedUtf8(bytes);
    Expect(sparkplug::RepairedUtf8(repaired) == repaired);

    sparkplug::proto::Payload stored;
    if (stored.ParseFromArray(data, static_cast<int>(size))) {
        sparkplug::proto::Payload payload;
        std::size_t const leftOut = AddHistorical(payload, TheDevice(), stored);
        Expect(leftOut + static_cast<std::size_t>(payload.metrics_size()) ==
               static_cast<std::size_t>(stored.metrics_size()));
        Expect(std::all_of(payload.metrics().begin(), payload.metrics().end(),
                           [](auto const& metric) { return metric.is_historical() && !metric.has_name(); }));
    }
    return 0;
}
