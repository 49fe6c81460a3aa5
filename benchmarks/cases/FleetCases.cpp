#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

#include "cases/Cases.h"
#include "support/AllocationCounter.h"
#include "support/BareFleet.h"
#include "support/Responder.h"

// One thread that watches many controllers, against the bare loop over the same sockets.

namespace harvlink::bench {
namespace {

using std::chrono::milliseconds;

constexpr int fleetRounds = 7;
constexpr int firstAddress = 4000;
constexpr double turn = 0.3; ///< seconds that a side runs

std::vector<std::string> FleetAddresses(int count, int first = firstAddress) {
    std::vector<std::string> addresses;
    addresses.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        addresses.push_back(BenchAddress(first + i));
    }
    return addresses;
}

FleetGroup Bytes(std::chrono::nanoseconds period, std::uint32_t count) {
    return {.period = period, .items = {FleetItem::Variable(FleetItemKind::ByteVariable, 0, count)}};
}

void Watch(Fleet& fleet, std::vector<std::string> const& addresses, FleetGroup const& group) {
    for (std::string const& address : addresses) {
        Require(fleet.Add(address, {.address = address}, {group}));
    }
    Require(fleet.Start());
}

double ExchangesOf(FleetStatistics const& seen) {
    double total = 0.0;
    for (auto const& controller : seen.controllers) {
        total += static_cast<double>(controller.exchanges);
    }
    return total;
}

std::size_t CountOnline(FleetStatistics const& seen) {
    return static_cast<std::size_t>(std::ranges::count_if(
        seen.controllers, [](auto const& controller) { return controller.state == FleetState::Online; }));
}

/// Seconds until so many are online.
double AwaitOnline(Fleet const& fleet, std::size_t count) {
    return Time([&] {
        while (CountOnline(fleet.Statistics()) < count) {
            std::this_thread::sleep_for(milliseconds(2));
        }
    });
}

/// What a fleet did in a while.
struct Spent {
    double exchanges = 0.0;
    double cpu = 0.0; ///< seconds
    double systemCalls = 0.0;
    double seconds = 0.0;
};

Spent Observe(Fleet const& fleet, double seconds) {
    auto const before = fleet.Statistics();
    double const cpu = ProcessCpuSeconds();
    double const time = Time([&] { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); });
    double const spent = ProcessCpuSeconds() - cpu;
    auto const after = fleet.Statistics();
    return {ExchangesOf(after) - ExchangesOf(before), spent,
            static_cast<double>(after.systemCalls - before.systemCalls), time};
}

/// Processor time of an exchange with so many controllers that are asked as fast as they answer.
Paired CostOfExchange(int controllers) {
    auto const addresses = FleetAddresses(controllers);
    Responder const responder(addresses, 1);
    BareFleet bare(addresses);
    return Pair(
        [&] {
            double const before = ThreadCpuSeconds();
            double const answered = bare.Run(turn);
            return (ThreadCpuSeconds() - before) / answered;
        },
        [&] {
            Fleet fleet;
            Watch(fleet, addresses, Bytes(milliseconds(1), 20));
            AwaitOnline(fleet, addresses.size());
            Spent const spent = Observe(fleet, turn);
            return spent.cpu / spent.exchanges;
        },
        fleetRounds);
}

void Costs(Report& report) {
    PinTo(0);
    Points ours;
    Points bare;
    for (int const count : {100, 200, 1000}) {
        Paired const cost = CostOfExchange(count);
        ours.emplace_back(count, cost.harvlink * count);
        bare.emplace_back(count, cost.floor * count);
        if (count != 100) {
            AddTime(report, "fleet of " + std::to_string(count) + ", processor time of an exchange", cost, 1.25);
        }
    }
    AddGrowth(report, "controllers of a fleet", {ours.front(), ours.back()}, {bare.front(), bare.back()});
}

void AddFigure(Report& report, std::string name, std::string unit, double figure, std::string comparison, double target,
               double floor = std::numeric_limits<double>::quiet_NaN()) {
    report.Add({.name = std::move(name),
                .unit = std::move(unit),
                .floor = floor,
                .harvlink = figure,
                .gated = figure,
                .comparison = std::move(comparison),
                .target = target,
                .note = ""});
}

void SteadyState(Report& report) {
    auto const addresses = FleetAddresses(200);
    Responder const responder(addresses, 1);
    Fleet fleet;
    Watch(fleet, addresses, Bytes(milliseconds(1), 20));
    AwaitOnline(fleet, addresses.size());
    std::this_thread::sleep_for(milliseconds(200));
    std::size_t const before = CurrentHeapUse().allocations;
    std::this_thread::sleep_for(milliseconds(300));
    auto const allocated = static_cast<double>(CurrentHeapUse().allocations - before);
    Spent const spent = Observe(fleet, turn);
    AddFigure(report, "fleet of 200, allocations in 0.3 s", "", allocated, "==", 0.0);
    AddFigure(report, "fleet of 200, system calls an exchange", "", spent.systemCalls / spent.exchanges, "<=", 2.2);
}

/// Against one strict connection each, asked in turn.
void ManyInFlight(Report& report) {
    auto const addresses = FleetAddresses(200);
    Responder const responder(addresses, 1, ArrivalTime::Read, milliseconds(1));
    std::vector<Connection> connections;
    connections.reserve(addresses.size());
    for (std::string const& address : addresses) {
        connections.push_back(OpenStrictly(address));
    }
    Paired const rate = Pair(
        [&] {
            return static_cast<double>(addresses.size()) / Time([&] {
                       for (auto const& connection : connections) {
                           ReadByteVariable(*connection);
                       }
                   });
        },
        [&] {
            Fleet fleet;
            Watch(fleet, addresses, Bytes(milliseconds(1), 20));
            AwaitOnline(fleet, addresses.size());
            Spent const spent = Observe(fleet, turn);
            return spent.exchanges / spent.seconds;
        },
        3);
    AddRatio(report,
             {.name = "fleet of 200, answers after 1 ms, exchanges",
              .unit = "1/s",
              .comparison = ">=",
              .target = 100.0,
              .note = "ratio to a blocking loop"},
             rate);
}

void FleetOpening(Report& report) {
    auto const addresses = FleetAddresses(1000);
    Responder const responder(addresses, 1, ArrivalTime::Read, milliseconds(1));
    Fleet fleet;
    double const seconds = Time([&] {
        Watch(fleet, addresses, Bytes(std::chrono::seconds(10), 1));
        AwaitOnline(fleet, addresses.size());
    });
    AddFigure(report, "fleet of 1000, opening, answers after 1 ms", "s", seconds, "<=", 2.0);
}

/// Share of a core of a loop that serves each event when it comes.
double BareShare(std::vector<std::string> const& addresses, int items, double seconds) {
    BareFleet bare(addresses);
    double const before = ThreadCpuSeconds();
    (void)bare.RunRounds(std::chrono::seconds(1), items, seconds);
    return (ThreadCpuSeconds() - before) / seconds;
}

void ThousandAtOneHertz(Report& report) {
    auto const addresses = FleetAddresses(1000);
    Responder const responder(addresses, 1);
    double const floor = BareShare(addresses, 20, 2.0);
    std::size_t const bytesBefore = CurrentHeapUse().bytes;
    Fleet fleet;
    Watch(fleet, addresses, Bytes(std::chrono::seconds(1), 20));
    AwaitOnline(fleet, addresses.size());
    std::this_thread::sleep_for(milliseconds(1500));
    Spent const spent = Observe(fleet, 2.0);
    auto const bytes = static_cast<double>(CurrentHeapUse().bytes - bytesBefore) / 1000.0;
    double overruns = 0.0;
    for (auto const& controller : fleet.Statistics().controllers) {
        overruns += static_cast<double>(controller.groups[0].overruns);
    }
    AddFigure(report, "fleet of 1000 with 20 items at 1 Hz, overruns", "", overruns, "==", 0.0);
    AddFigure(report, "fleet of 1000 with 20 items at 1 Hz, share of a core", "", spent.cpu / spent.seconds, "<=", 0.25,
              floor);
    AddFigure(report, "fleet of 1000 with 20 items at 1 Hz, system calls an exchange", "",
              spent.systemCalls / spent.exchanges, "<=", 2.2);
    // 4 KiB each and 64 bytes an item; the queue of samples, whose size the user chooses, is shared by all.
    AddFigure(report, "fleet of 1000 with 20 items, bytes a controller", "B", bytes, "<=", 4096.0 + 20.0 * 64.0);
}

/// How far the requests of a period of 100 ms are from where they should be, and how long the periods were.
struct Timing {
    double jitter = 0.0; ///< seconds, 99 %
    double period = 0.0; ///< seconds, 99 %
};

Timing TimingOf(std::vector<double> const& periods) {
    std::vector<double> jitter;
    std::ranges::transform(periods, std::back_inserter(jitter), [](double period) { return std::abs(period - 0.1); });
    return {Percentile(jitter, 99.0), Percentile(periods, 99.0)};
}

Timing TimeRounds(std::vector<std::string> const& addresses, std::size_t answering) {
    Fleet fleet;
    Watch(fleet, addresses, Bytes(milliseconds(100), 1));
    AwaitOnline(fleet, answering);
    std::this_thread::sleep_for(milliseconds(300));
    std::map<std::string, std::chrono::system_clock::time_point> last;
    std::vector<double> periods;
    std::vector<FleetSample> samples(256);
    (void)fleet.Take(samples, milliseconds(0));
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (std::chrono::steady_clock::now() < end) {
        std::size_t const count = fleet.Take(samples, milliseconds(100));
        for (FleetSample const& sample : std::span(samples).first(count)) {
            auto& before = last[sample.controller];
            if (before.time_since_epoch().count() != 0) {
                periods.push_back(std::chrono::duration<double>(sample.requestTime - before).count());
            }
            before = sample.requestTime;
        }
    }
    return TimingOf(periods);
}

void Periods(Report& report) {
    auto const all = FleetAddresses(200);
    auto const most = FleetAddresses(160);
    Timing bare;
    Timing whole;
    {
        Responder const responder(all, 1);
        bare = TimingOf(BareFleet(all).RunRounds(milliseconds(100), 1, 3.0));
        whole = TimeRounds(all, all.size());
    }
    // The ports of the others are bound by a process that does not answer, so nothing says that nobody is there.
    std::vector<int> silent;
    for (std::string const& address : FleetAddresses(40, firstAddress + 160)) {
        silent.push_back(BindSocket(address, 10040));
    }
    Responder const responder(most, 1);
    Timing const partly = TimeRounds(all, most.size());
    std::ranges::for_each(silent, ::close);
    AddFigure(report, "fleet of 200, jitter of a period of 100 ms, p99", "ms", whole.jitter * 1e3, "<=", 2.0,
              bare.jitter * 1e3);
    AddRatio(report,
             {.name = "fleet of 200, a fifth silent, periods of the others, p99",
              .unit = "ms",
              .comparison = "<=",
              .target = 1.1,
              .note = "ratio to none silent"},
             {whole.period * 1e3, partly.period * 1e3, partly.period / whole.period});
}

void AllowDescriptors() {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace

void FleetCases(Report& report) {
    AllowDescriptors();
    Costs(report);
    SteadyState(report);
    ManyInFlight(report);
    FleetOpening(report);
    ThousandAtOneHertz(report);
    Periods(report);
    Unpin();
}

} // namespace harvlink::bench
