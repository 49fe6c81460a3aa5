#include <atomic>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "FleetRig.h"
#include "fleet/FleetEngine.h"
#include "system/Poller.h"
#include "system/WakeUp.h"

// A fleet and the system under it: its waits, its descriptors, a process that is stopped, readers beside the engine.

namespace harvlink::test {
namespace {

FleetItem const text = FleetItem::Variable(FleetItemKind::StringVariable, 0);

template <typename Poller>
class Pollers : public testing::Test {};
using AllPollers = testing::Types<PollPoller
#if defined(__linux__)
                                  ,
                                  EpollPoller
#endif
                                  >;
TYPED_TEST_SUITE(Pollers, AllPollers);

TYPED_TEST(Pollers, NameWhatIsReadable) {
    TypeParam poller;
    ASSERT_TRUE(poller.IsOpen());
    std::array<WakeUp, 3> sources;
    for (std::uint32_t i = 0; i < sources.size(); ++i) {
        ASSERT_TRUE(poller.Watch(sources.at(i).Descriptor(), 10 + i));
    }
    EXPECT_TRUE(poller.Wait(0).empty());
    sources[1].Set();
    sources[2].Set();
    auto const ready = poller.Wait(10'000'000'000);
    std::array<WakeUp, 8> const more;
    for (auto const& source : more) { // while the others are gone through
        ASSERT_TRUE(poller.Watch(source.Descriptor(), 99));
    }
    std::vector<std::uint32_t> tokens(ready.begin(), ready.end());
    std::ranges::sort(tokens);
    EXPECT_EQ(tokens, (std::vector<std::uint32_t>{11, 12}));
    sources[1].Clear();
    poller.Forget(sources[2].Descriptor());
    EXPECT_TRUE(poller.Wait(1'000'000).empty());
    sources[0].Set();
    ASSERT_EQ(poller.Wait(0).size(), 1U);
    EXPECT_EQ(poller.Wait(0)[0], 10U);
}

/// What was late because nobody ran is nobody's silence, and the rounds that were missed are not made up for.
TEST(FleetSystem, IsNotSilentByItsOwnPause) {
    FleetRig rig(5);
    ASSERT_EQ(rig.Watch({{.period = 20ms, .items = {FleetItem::State()}}}, 1000).StatusCode, 0);
    for (std::size_t i = 0; i < 5; ++i) {
        ASSERT_TRUE(rig.AwaitState(i, FleetState::Online) || rig.Of(i).state == FleetState::Online);
    }
    auto const before = rig.Of(0).groups[0].rounds;
    auto const start = std::chrono::steady_clock::now();
    std::string const process = std::to_string(::getpid());
    std::string const pause = "(kill -STOP " + process + "; sleep 2; kill -CONT " + process + ") >/dev/null 2>&1 &";
    ASSERT_EQ(std::system(pause.c_str()), 0);
    ASSERT_TRUE(rig.Await([&](FleetSample const&) { return rig.fleet.Statistics().pauses >= 1; }));
    auto const woken = rig.Of(0).groups[0].rounds;
    ASSERT_TRUE(rig.Await([&](FleetSample const&) { return rig.Of(0).groups[0].rounds >= woken + 10; }));
    std::chrono::duration<double> const awake = std::chrono::steady_clock::now() - start - 2s;
    EXPECT_LE(static_cast<double>(rig.Of(0).groups[0].rounds - before), awake.count() / 0.02 + 15.0);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(rig.Of(i).timeouts, 0U);
        EXPECT_EQ(rig.Of(i).startUps, 1U) << "nobody went silent";
    }
}

std::atomic<std::int64_t> wallShift = 0;

std::int64_t ShiftedWallNow() {
    return fleet::FleetEngine::WallNow() + wallShift;
}

/// Rounds go on as they did when the clock of the computer is set, forth and back; the times of samples follow it at once.
TEST(FleetSystem, DoesNotMindThatTheClockIsSet) {
    constexpr std::int64_t hour = 3'600'000'000'000;
    FleetRig const rig(1);
    fleet::SampleQueue samples(1024);
    fleet::EventQueue events(16);
    fleet::FleetEngine engine(samples, events, ShiftedWallNow);
    auto const record = std::make_shared<fleet::ControllerRecord>(
        1, "c0", rig.OptionsOf(0, 2000), Endpoint{ParseAddress(rig.controllers[0]->Address()).value_or(0), 0},
        std::vector<FleetGroup>{{.period = 20ms, .items = {FleetItem::State()}}});
    engine.Replace(nullptr, record);
    auto const start = std::chrono::steady_clock::now();
    ASSERT_TRUE(engine.Start());
    std::vector<std::int64_t> times;
    auto const takeMore = [&](std::size_t count) {
        auto const wanted = times.size() + count;
        auto const end = std::chrono::steady_clock::now() + 10s;
        while (times.size() < wanted && std::chrono::steady_clock::now() < end) {
            (void)samples.Take(1, 100ms, [&](fleet::RawSample const& sample) {
                times.push_back(sample.stamp.answerTime);
                return true;
            });
        }
        return times.size() >= wanted;
    };
    for (std::int64_t const shift : {std::int64_t{0}, hour, -hour}) {
        wallShift = shift;
        std::size_t const jump = times.size() + 1; // the one before may have been under way
        ASSERT_TRUE(takeMore(10)) << shift;
        EXPECT_TRUE(std::is_sorted(times.begin() + static_cast<std::ptrdiff_t>(jump), times.end())) << shift;
        EXPECT_LT(std::abs(times.back() - ShiftedWallNow()), hour / 60) << shift;
    }
    engine.Stop();
    std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_LE(static_cast<double>(record->groups[0].rounds.Get()), elapsed.count() / 0.02 + 2.0);
    EXPECT_EQ(record->timeouts.Get(), 0U);
    EXPECT_EQ(record->startUps.Get(), 1U);
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HARVLINK_SANITIZER_NEEDS_DESCRIPTORS
#endif
#endif

TEST(FleetSystem, SaysWhichControllersHaveNoDescriptor) {
#ifdef HARVLINK_SANITIZER_NEEDS_DESCRIPTORS
    GTEST_SKIP() << "the sanitizer opens descriptors for its own checks";
#endif
    constexpr std::size_t controllers = 12;
    constexpr rlim_t room = 6;
    FleetRig rig(controllers);
    // What is free below the highest number that is in use would not be refused.
    std::vector<int> fillers{::dup(STDIN_FILENO)};
    while (fillers.back() >= 0 && fillers.size() < 200) {
        fillers.push_back(::dup(STDIN_FILENO));
    }
    rlim_t const highest = static_cast<rlim_t>(*std::ranges::max_element(fillers));
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &former), 0);
    rlimit const few{highest + 1 + room, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    StatusInfo const started = rig.Watch({{.period = 10ms, .items = {FleetItem::State()}}});
    std::size_t refused = 0;
    std::size_t running = 0;
    bool const isTold = rig.Await([&](FleetSample const&) {
        refused = running = 0;
        for (std::size_t i = 0; i < controllers; ++i) {
            auto const seen = rig.Of(i);
            refused += seen.state == FleetState::Refused ? 1 : 0;
            running += seen.state == FleetState::Online && seen.groups[0].rounds > 20 ? 1 : 0;
        }
        return running > 0 && refused > 0 && running + refused == controllers;
    });
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &former), 0);
    std::ranges::for_each(fillers, ::close);
    EXPECT_EQ(started.StatusCode, 0);
    EXPECT_TRUE(isTold) << refused << " refused, " << running << " running";
    EXPECT_TRUE(rig.AwaitEvent([](FleetEvent const& event) {
        return event.after == static_cast<int>(FleetState::Refused) &&
               event.code == static_cast<std::int32_t>(ErrorStatusCodes::SocketOpenError);
    }));
    for (std::size_t i = 0; i < controllers; ++i) { // and when there are some again, all run
        EXPECT_TRUE(rig.Await([&](FleetSample const&) { return rig.Of(i).state == FleetState::Online; })) << i;
    }
}

TEST(FleetSystem, GivesReadersBesideItWholeValues) {
    FleetRig rig(4);
    ASSERT_EQ(rig.Watch({{.period = 1ms, .items = {text, FleetItem::Alarms()}}}).StatusCode, 0);
    std::atomic<bool> isOver = false;
    std::atomic<int> torn = 0;
    std::atomic<int> seen = 0;
    auto const look = [&] {
        while (!isOver) {
            for (FleetSample const& sample : rig.fleet.Latest()) {
                auto const* const value = std::get_if<std::string>(&sample.value);
                seen += value != nullptr && !value->empty() && value->front() != '\0' ? 1 : 0;
                torn += value != nullptr && std::ranges::count(*value, value->front()) != std::ssize(*value) ? 1 : 0;
                torn += sample.answerTime < sample.requestTime ? 1 : 0;
            }
        }
    };
    {
        std::jthread const first(look);
        std::jthread const second(look);
        for (int i = 0; i < 300; ++i) {
            for (auto* const controller : rig.controllers) {
                controller->With([&](simulator::ControllerModel& model) {
                    model.variables.strings[0] = std::string(16, static_cast<char>('A' + i % 26)).c_str();
                });
            }
            EXPECT_TRUE(rig.Await([](FleetSample const& sample) { return sample.quality == FleetQuality::Good; }));
        }
        isOver = true;
    }
    EXPECT_EQ(torn, 0);
    EXPECT_GT(seen, 0);
}

/// An empty datagram is a damaged answer like any other that is too short.
TEST(FleetSystem, CountsEmptyDatagramsAsMalformed) {
    std::string const address = NextLoopbackAddress();
    int const socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in own{.sin_family = AF_INET, .sin_port = htons(10040), .sin_addr = {}, .sin_zero = {}};
    ::inet_pton(AF_INET, address.c_str(), &own.sin_addr);
    ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&own), sizeof(own)), 0);
    Fleet fleet;
    ASSERT_EQ(fleet.Add("empty", {.address = address, .timeout = 20, .retries = 0}, {{.items = {text}}}).StatusCode, 0);
    ASSERT_EQ(fleet.Start().StatusCode, 0);
    std::uint64_t counted = 0;
    for (int i = 0; i < 200 && counted == 0; ++i) {
        std::array<std::byte, 600> request{};
        sockaddr_in from{};
        socklen_t size = sizeof(from);
        (void)::recvfrom(socket, request.data(), request.size(), 0, reinterpret_cast<sockaddr*>(&from), &size);
        (void)::sendto(socket, "", 0, 0, reinterpret_cast<sockaddr*>(&from), size);
        counted = fleet.Statistics().controllers.at(0).malformedAnswers;
    }
    ::close(socket);
    EXPECT_GT(counted, 0U);
}

} // namespace
} // namespace harvlink::test
