#include <cstdlib>

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

std::int64_t ByteOf(std::size_t controller, std::uint32_t index) {
    return static_cast<std::int64_t>((controller * 37 + index * 11) % 251);
}

struct Mix {
    double rate;
    bool mayFlip; ///< then a value can be wrong without anybody who could know
    unsigned lanes;
};

class FleetFaults : public testing::TestWithParam<Mix> {};

TEST_P(FleetFaults, CrossNoAnswersAndDelayNobodyElse) {
    Mix const mix = GetParam();
    FleetRig rig(fleetSize, [&](std::size_t number) {
        ControllerOptions options;
        options.timeScale = 0.0;
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
    });
    for (std::size_t i = 0; i < fleetSize; ++i) {
        rig.controllers[i]->With([&](simulator::ControllerModel& model) {
            for (std::uint32_t index = 0; index < bytesRead; ++index) {
                model.variables.bytes[index] = static_cast<std::uint8_t>(ByteOf(i, index));
            }
        });
        FleetControllerOptions options = rig.OptionsOf(i, i < faultySize ? 20 : 2000);
        options.lanes = mix.lanes;
        ASSERT_EQ(
            rig.fleet
                .Add(FleetRig::NameOf(i), options,
                     {{.period = 20ms, .items = {FleetItem::Variable(FleetItemKind::ByteVariable, 0, bytesRead)}}})
                .StatusCode,
            0);
    }
    ASSERT_EQ(rig.fleet.Start().StatusCode, 0);
    std::size_t good = 0;
    std::size_t faulty = 0;
    std::vector<FleetSample> samples(256);
    double const seconds = SoakSeconds() > 0.0 ? SoakSeconds() : 2.0;
    auto const end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (std::chrono::steady_clock::now() < end) {
        std::size_t const count = rig.fleet.Take(samples, 50ms);
        for (FleetSample const& sample : std::span(samples).first(count)) {
            std::size_t const number = std::stoul(sample.controller.substr(1));
            bool const isFaulty = number < faultySize;
            if (sample.quality == FleetQuality::Good && !(isFaulty && mix.mayFlip)) {
                ASSERT_EQ(std::get<std::int64_t>(sample.value), ByteOf(number, sample.item.index));
            }
            (isFaulty ? faulty : good) += sample.quality == FleetQuality::Good ? 1 : 0;
        }
    }
    EXPECT_GT(faulty, bytesRead); // they go on as well as they can
    for (std::size_t i = faultySize; i < fleetSize; ++i) {
        auto const seen = rig.Of(i);
        EXPECT_EQ(seen.state, FleetState::Online);
        EXPECT_EQ(seen.timeouts, 0U);
        // A busy machine, and a sanitizer, may leave no more than 5 of 100; a soak has the machine for itself.
        double const due = seconds / 0.02;
        EXPECT_GE(static_cast<double>(seen.groups[0].rounds), SoakSeconds() > 0.0 ? 0.95 * due - 50.0 : 5.0);
    }
}

INSTANTIATE_TEST_SUITE_P(Mixes, FleetFaults,
                         testing::Values(Mix{0.02, false, 1}, Mix{0.05, true, 1}, Mix{0.02, false, 4}));

} // namespace
} // namespace harvlink::test
