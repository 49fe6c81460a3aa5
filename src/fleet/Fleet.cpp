#include "harvlink/Fleet.h"

#include <algorithm>
#include <mutex>

#include "fleet/FleetCheck.h"
#include "fleet/FleetEngine.h"
#include "fleet/FleetPlan.h"
#include "fleet/PublicSample.h"
#include "fleet/Registry.h"
#include "status/ExceptionStatus.h"
#include "wire/HostName.h"

namespace harvlink {
namespace {

using fleet::ControllerRecord;
using fleet::Registry;

constexpr std::uint32_t mostSamples = 1U << 24U;
constexpr std::uint32_t mostEvents = 1U << 20U;
constexpr std::uint32_t ownDescriptors = 4; ///< what waits and what wakes

StatusInfo Unknown(std::string const& name) {
    return StatusInformation(ErrorStatusCodes::UnknownFleetController, "The fleet has no controller \"" + name + "\".");
}

/// Checks all, and finds the address of a name: here, so that the engine never waits for that.
StatusInfo Check(std::string const& name, FleetControllerOptions const& options, std::vector<FleetGroup> const& groups,
                 std::string& address) {
    StatusInfo status = fleet::CheckController(name, options, groups);
    if (status.StatusCode == 0) {
        address = options.address;
        status = ResolveHost(address, (1 + options.retries) * std::chrono::milliseconds(options.timeout));
    }
    return status;
}

/// Runs an operation that no exception leaves.
template <typename Operation>
auto Unthrown(Operation const& operation) -> decltype(operation()) {
    try {
        return operation();
    } catch (...) {
        if constexpr (std::is_same_v<decltype(operation()), StatusInfo>) {
            return StatusOfException();
        } else {
            return {};
        }
    }
}

} // namespace

class Fleet::Implementation {
public:
    explicit Implementation(FleetOptions const& options)
        : samples(std::min(options.queueCapacity, mostSamples)),
          events(std::min(options.eventCapacity, mostEvents)),
          engine(samples, events) {}

    enum class Place : std::uint8_t { New, Existing };

    StatusInfo Put(Place place, std::string const& name, FleetControllerOptions const& options,
                   std::vector<FleetGroup> const& groups) {
        std::string address;
        StatusInfo status = Check(name, options, groups, address);
        if (status.StatusCode != 0) {
            return status;
        }
        std::scoped_lock const lock(changing);
        auto const old = registry.Find(name);
        if (place == Place::New && old) {
            return fleet::InvalidController(name, "the name is taken");
        }
        if (place == Place::Existing && !old) {
            return Unknown(name);
        }
        Endpoint const host{ParseAddress(address).value_or(0), 0};
        auto const other = registry.FindAddress(host.address);
        if (other && other != old) {
            return fleet::InvalidController(name, "its address is that of \"" + other->name + "\"");
        }
        Replace(old, std::make_shared<ControllerRecord>(registry.NewId(), name, options, host, groups));
        return StatusInformation(ErrorStatusCodes::Ok);
    }

    void Replace(Registry::Record const& old, Registry::Record const& fresh) {
        registry.Replace(old, fresh);
        if (engine.IsRunning()) {
            engine.Replace(old, fresh);
        }
    }

    StatusInfo Start() {
        if (engine.IsRunning()) {
            return StatusInformation(ErrorStatusCodes::Ok);
        }
        for (auto const& record : registry.All()) {
            engine.Replace(nullptr, record);
        }
        return engine.Start() ? StatusInformation(ErrorStatusCodes::Ok)
                              : StatusInformation(ErrorStatusCodes::SystemFailure);
    }

    std::mutex changing; ///< held by what adds, changes, removes, starts and stops
    Registry registry;
    fleet::SampleQueue samples;
    fleet::EventQueue events;
    fleet::FleetEngine engine;
};

Fleet::Fleet(FleetOptions const& options) : implementation(std::make_unique<Implementation>(options)) {}

Fleet::~Fleet() = default;

StatusInfo Fleet::Add(std::string const& name, FleetControllerOptions const& options,
                      std::vector<FleetGroup> const& groups) {
    return Unthrown([&] { return implementation->Put(Implementation::Place::New, name, options, groups); });
}

StatusInfo Fleet::Change(std::string const& name, FleetControllerOptions const& options,
                         std::vector<FleetGroup> const& groups) {
    return Unthrown([&] { return implementation->Put(Implementation::Place::Existing, name, options, groups); });
}

StatusInfo Fleet::Remove(std::string const& name) {
    return Unthrown([&]() -> StatusInfo {
        std::scoped_lock const lock(implementation->changing);
        auto const old = implementation->registry.Find(name);
        if (!old) {
            return Unknown(name);
        }
        implementation->Replace(old, nullptr);
        return StatusInformation(ErrorStatusCodes::Ok);
    });
}

FleetPlan Fleet::Plan() const {
    return Unthrown([&] {
        FleetPlan plan;
        plan.descriptors = ownDescriptors;
        for (auto const& record : implementation->registry.All()) {
            plan.controllers.push_back(fleet::PlanOf(*record));
            plan.exchangesPerSecond += plan.controllers.back().exchangesPerSecond;
            plan.descriptors += record->options.lanes;
        }
        return plan;
    });
}

StatusInfo Fleet::Start() {
    return Unthrown([&] {
        std::scoped_lock const lock(implementation->changing);
        return implementation->Start();
    });
}

void Fleet::Stop() {
    std::scoped_lock const lock(implementation->changing);
    implementation->engine.Stop();
}

std::size_t Fleet::Take(std::span<FleetSample> samples, std::chrono::milliseconds wait) {
    std::size_t taken = 0;
    try {
        (void)implementation->samples.Take(samples.size(), wait, [&](fleet::RawSample const& raw) {
            auto const record = implementation->registry.Find(raw.controller);
            if (record) {
                fleet::ToPublic(*record, raw.item, raw.stamp, raw.Record(), samples[taken]);
                ++taken;
            }
            return record != nullptr;
        });
    } catch (...) { // memory has ended: what is whole is returned
    }
    return taken;
}

std::size_t Fleet::TakeEvents(std::span<FleetEvent> events, std::chrono::milliseconds wait) {
    std::size_t taken = 0;
    try {
        (void)implementation->events.Take(events.size(), wait, [&](fleet::RawEvent const& raw) {
            auto const record = implementation->registry.Find(raw.controller);
            if (record) {
                fleet::ToPublic(*record, raw, events[taken]);
                ++taken;
            }
            return record != nullptr;
        });
    } catch (...) { // as above
    }
    return taken;
}

std::vector<FleetSample> Fleet::Latest() const {
    return Unthrown([&] {
        std::vector<FleetSample> samples;
        for (auto const& record : implementation->registry.All()) {
            fleet::AppendLatest(*record, samples);
        }
        return samples;
    });
}

std::vector<FleetSample> Fleet::Latest(std::string const& name) const {
    return Unthrown([&] {
        std::vector<FleetSample> samples;
        if (auto const record = implementation->registry.Find(name)) {
            fleet::AppendLatest(*record, samples);
        }
        return samples;
    });
}

FleetStatistics Fleet::Statistics() const {
    return Unthrown([&] {
        FleetStatistics seen;
        seen.samples = implementation->samples.Samples();
        seen.droppedSamples = implementation->samples.Dropped();
        seen.droppedEvents = implementation->events.Dropped();
        seen.systemCalls = implementation->engine.SystemCalls();
        seen.pauses = implementation->engine.Pauses();
        for (auto const& record : implementation->registry.All()) {
            seen.controllers.push_back(fleet::StatisticsOf(*record));
        }
        return seen;
    });
}

} // namespace harvlink
