#include <array>
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "FleetRig.h"

// A fleet among whose controllers some are faulty: none gives a wrong value, and the others do not notice.

namespace harvlink::test {
namespace {

using simulator::Fault;

/// script/soak fleet sets it: then the fleet is larger and the periods of the healthy ones are held to what they should be.
double SoakSeconds() {
    char const* const seconds = std::getenv("HARVLINK_FLEET_SOAK_SECONDS");
    return seconds == nullptr ? 0.0 : std::atof(seconds);
}

std::size_t const fleetSize = SoakSeconds() > 0.0 ? 100 : 20;
std::size_t const faultySize = fleetSize * 3 / 10;
constexpr std::uint32_t bytesRead = 30;
constexpr std::uint32_t fewRounds = 5;

std::int64_t ByteOf(std::size_t controller, std::uint32_t index) {
    return static_cast<std::int64_t>((controller * 37 + index * 11) % 251);
}

struct Mix {
    double rate;
    bool mayFlip; ///< then a value can be wrong without anybody who could know
    unsigned lanes;
};

/// What a run has seen, for the table of docs/reliability.md.
struct SoakFigures {
    std::size_t faultyValues = 0;
    std::size_t healthyValues = 0;
    double leastRounds = 1.0; ///< of the healthy ones: the share of those that were due
    std::array<std::uint64_t, simulator::FaultKinds> faults{};
};

/// Adds a line of JSON to the file that script/soak names.
void Report(SoakFigures const& seen, double seconds) {
    char const* const path = std::getenv("HARVLINK_FLEET_SOAK_REPORT");
    if (path == nullptr) {
        return;
    }
    std::ofstream file(path, std::ios::app);
    file << "{\"seconds\": " << seconds << ", \"controllers\": " << fleetSize << ", \"faulty\": " << faultySize
         << ", \"faultyValues\": " << seen.faultyValues << ", \"healthyValues\": " << seen.healthyValues
         << ", \"leastRounds\": " << seen.leastRounds << ", \"faultsInjected\": {";
    for (std::size_t fault = 0; fault < seen.faults.size(); ++fault) {
        file << (fault == 0 ? "\"" : ", \"") << NameOf(static_cast<Fault>(fault)) << "\": " << seen.faults.at(fault);
    }
    file << "}}\n";
}

class FleetFaults : public testing::TestWithParam<Mix> {};

ControllerOptions OptionsOf(Mix const& mix, std::size_t number) {
    ControllerOptions options;
    for (std::size_t fault = 0; fault < simulator::FaultKinds && number < faultySize; ++fault) {
        options.faults.rates.at(fault) = mix.rate;
    }
    if (!mix.mayFlip) {
        options.faults.Rate(Fault::FlipBits) = 0.0;
    }
    options.faults.seed = number + 1;
    options.faults.silence = 200ms;
    options.faults.delay = 30ms;
    return options;
}

StatusInfo Watch(FleetRig& rig, std::size_t number, unsigned lanes) {
    rig.controllers[number]->With([&](simulator::ControllerModel& model) {
        for (std::uint32_t index = 0; index < bytesRead; ++index) {
            model.variables.bytes[index] = static_cast<std::uint8_t>(ByteOf(number, index));
        }
    });
    FleetControllerOptions options = rig.OptionsOf(number, number < faultySize ? 20 : 2000);
    options.lanes = lanes;
    return rig.fleet.Add(FleetRig::NameOf(number), options,
                         {{.period = 20ms, .items = {FleetItem::Variable(FleetItemKind::ByteVariable, 0, bytesRead)}}});
}

bool EveryHealthyOneRuns(FleetRig const& rig) {
    auto const all = rig.fleet.Statistics().controllers;
    return std::ranges::all_of(std::span(all).subspan(faultySize),
                               [](auto const& one) { return one.groups[0].rounds >= fewRounds; });
}

/// Compares what comes with what there is. A busy machine takes longer for the little that is asked for below; a soak has
/// the machine for itself.
void Compare(FleetRig& rig, Mix const& mix, double seconds, SoakFigures& figures) {
    std::vector<FleetSample> samples(256);
    auto const start = std::chrono::steady_clock::now();
    auto const isOver = [&] {
        std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start;
        bool const isEnough = SoakSeconds() > 0.0 || (figures.faultyValues > bytesRead && EveryHealthyOneRuns(rig));
        return elapsed.count() > 40.0 + SoakSeconds() || (elapsed.count() > seconds && isEnough);
    };
    while (!isOver()) {
        std::size_t const count = rig.fleet.Take(samples, 50ms);
        for (FleetSample const& sample : std::span(samples).first(count)) {
            std::size_t const number = std::stoul(sample.controller.substr(1));
            bool const isFaulty = number < faultySize;
            bool const isGood = sample.quality == FleetQuality::Good;
            if (isGood && !(isFaulty && mix.mayFlip)) {
                ASSERT_EQ(std::get<std::int64_t>(sample.value), ByteOf(number, sample.item.index));
            }
            (isFaulty ? figures.faultyValues : figures.healthyValues) += isGood ? 1 : 0;
        }
    }
}

void CountFaults(FleetRig& rig, SoakFigures& figures) {
    for (std::size_t i = 0; i < faultySize; ++i) {
        rig.controllers[i]->WithFaults([&](simulator::FaultInjector const& faults) {
            for (std::size_t fault = 0; fault < simulator::FaultKinds; ++fault) {
                figures.faults.at(fault) += faults.Happened(static_cast<Fault>(fault));
            }
        });
    }
}

TEST_P(FleetFaults, CrossNoAnswersAndDelayNobodyElse) {
    Mix const mix = GetParam();
    FleetRig rig(fleetSize, [&](std::size_t number) { return OptionsOf(mix, number); });
    for (std::size_t i = 0; i < fleetSize; ++i) {
        ASSERT_EQ(Watch(rig, i, mix.lanes).StatusCode, 0);
    }
    ASSERT_EQ(rig.fleet.Start().StatusCode, 0);
    double const seconds = SoakSeconds() > 0.0 ? SoakSeconds() : 2.0;
    SoakFigures figures;
    Compare(rig, mix, seconds, figures);
    EXPECT_GT(figures.faultyValues, bytesRead); // they go on as well as they can
    std::uint64_t returns = 0;
    for (std::size_t i = 0; i < faultySize; ++i) {
        returns += rig.Of(i).startUps;
    }
    EXPECT_GT(returns, SoakSeconds() > 0.0 ? 3 * faultySize : 0) << "who was silent comes back";
    for (std::size_t i = faultySize; i < fleetSize; ++i) {
        auto const seen = rig.Of(i);
        EXPECT_EQ(seen.state, FleetState::Online);
        EXPECT_EQ(seen.timeouts, 0U);
        double const due = seconds / 0.02;
        auto const rounds = static_cast<double>(seen.groups[0].rounds);
        EXPECT_GE(rounds, SoakSeconds() > 0.0 ? 0.95 * due - 50.0 : double{fewRounds});
        figures.leastRounds = std::min(figures.leastRounds, rounds / due);
    }
    CountFaults(rig, figures);
    Report(figures, seconds);
}

INSTANTIATE_TEST_SUITE_P(Mixes, FleetFaults,
                         testing::Values(Mix{0.02, false, 1}, Mix{0.05, true, 1}, Mix{0.02, false, 4}));

} // namespace
} // namespace harvlink::test
