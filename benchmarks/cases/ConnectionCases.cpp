#include <filesystem>
#include <thread>

#include <sys/resource.h>

#include "cases/Cases.h"
#include "support/AllocationCounter.h"
#include "support/BareClient.h"
#include "support/Responder.h"

namespace harvlink::bench {
namespace {

// Probe, RS022, tool file and its acknowledgement, two motion slots, clear, system file and its acknowledgement, axes.
constexpr int openingDatagrams = 10;

Row Figure(std::string const& name, std::string const& unit, double value, std::string const& comparison,
           double target) {
    return {.name = name,
            .unit = unit,
            .harvlink = value,
            .gated = value,
            .comparison = comparison,
            .target = target,
            .note = ""};
}

void Opening(Report& report) {
    PinTo(0);
    std::string const address = BenchAddress(30);
    Responder responder({address}, 0);
    std::uint64_t const before = responder.Counters().datagrams;
    Open(address);
    auto const datagrams = static_cast<double>(responder.Counters().datagrams - before);
    report.Add(Figure("opening a connection, datagrams", "", datagrams, "==", openingDatagrams));

    constexpr int repetitions = 500;
    Paired const seconds = Pair(
        [&] {
            return Time([&] {
                for (int i = 0; i < repetitions; ++i) {
                    BareClient bare(address);
                    for (int exchange = 0; exchange < openingDatagrams; ++exchange) {
                        bare.ReadByteVariable();
                    }
                }
            });
        },
        [&] {
            return Time([&] {
                for (int i = 0; i < repetitions; ++i) {
                    Open(address);
                }
            });
        });
    report.Add({.name = "opening a connection, time against as many bare exchanges",
                .unit = "us",
                .floor = seconds.floor / repetitions * 1e6,
                .harvlink = seconds.harvlink / repetitions * 1e6,
                .gated = seconds.ratio,
                .comparison = "<=",
                .target = 1.25,
                .note = "ratio"});
}

void Idle(Report& report) {
    Unpin();
    std::string const address = BenchAddress(31);
    Responder const responder({address}, -1);
    Open(address);
    int const threads = CountThreads();
    std::size_t const before = CurrentHeapUse().bytes;
    Connection const connection = Open(address);
    report.Add(
        Figure("idle connection, memory", "bytes", static_cast<double>(CurrentHeapUse().bytes - before), "<=", 8192));
    report.Add(Figure("idle connection, threads", "", CountThreads() - threads, "==", 0));
    long const switches = VoluntarySwitches();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    report.Add(Figure("idle connection, wake-ups in a second", "",
                      static_cast<double>(VoluntarySwitches() - switches - 1), "<=", 0));
    std::size_t const notStarted = CurrentHeapUse().bytes;
    Require(connection->MotionManager->MotionStart());
    report.Add(Figure("started motion, more memory", "bytes", static_cast<double>(CurrentHeapUse().bytes - notStarted),
                      "<=", 20480));
    report.Add(Figure("started motion, threads", "", CountThreads() - threads, "==", 1));
}

void SilentController(Report& report) {
    Unpin();
    constexpr unsigned timeout = 50;
    constexpr unsigned retries = 2;
    std::string const address = BenchAddress(32); // nobody is there
    StatusInfo status;
    double const cpuBefore = ThreadCpuSeconds();
    double const seconds = Time([&] { (void)Connect(address, status, timeout, retries, false); });
    double const cpu = ThreadCpuSeconds() - cpuBefore;
    report.Add(Figure("silent controller, beyond (1 + retries) x time-out", "ms",
                      seconds * 1e3 - timeout * (1.0 + retries), "<=", 0.5));
    report.Add(Figure("silent controller, processor time", "ms", cpu * 1e3, "<=", 0.1));
}

void RaiseDescriptorLimit() {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

void ManyConnections(Report& report) {
    PinTo(0);
    RaiseDescriptorLimit();
    constexpr int controllers = 200;
    std::vector<std::string> addresses;
    for (int i = 0; i < controllers; ++i) {
        addresses.push_back(BenchAddress(1000 + i));
    }
    Responder const responder(addresses, 0);
    std::vector<Connection> connections;
    Curve growth{.name = "connections", .points = {}};
    for (int count : {1, 10, 100, 1000}) {
        while (connections.size() < static_cast<std::size_t>(count)) {
            connections.push_back(Open(addresses[connections.size() % addresses.size()]));
        }
        growth.points.emplace_back(count, Time([&] {
                                       for (Connection const& connection : connections) {
                                           ReadByteVariable(*connection);
                                       }
                                   }));
    }
    report.Add(growth);
    report.Add(
        Figure("1,000 connections in a process, that answer", "", static_cast<double>(connections.size()), "==", 1000));

    constexpr int turns = 100;
    auto const rate = [&](std::size_t count) {
        return Time([&] {
            for (int turn = 0; turn < turns; ++turn) {
                for (std::size_t i = 0; i < controllers; ++i) {
                    ReadByteVariable(*connections[i % count]);
                }
            }
        });
    };
    Paired const seconds = Pair([&] { return rate(1); }, [&] { return rate(controllers); });
    report.Add({.name = "200 controllers in turn, rate against one connection",
                .unit = "1/s",
                .floor = turns * controllers / seconds.floor,
                .harvlink = turns * controllers / seconds.harvlink,
                .gated = 1.0 / seconds.ratio,
                .comparison = ">=",
                .target = 0.92,
                .note = "ratio"});
}

void LibrarySize(Report& report) {
    // As a package ships it: the size without symbols that only a debugger reads.
    std::string const stripped = std::filesystem::temp_directory_path() / "harvlink_stripped.so";
    std::string const command = "strip -o " + stripped + " " HARVLINK_LIBRARY_FILE;
    if (std::system(command.c_str()) == 0) {
        report.Add(Figure("stripped shared library", "bytes", static_cast<double>(std::filesystem::file_size(stripped)),
                          "<=", 600e3));
        std::filesystem::remove(stripped);
    }
}

} // namespace

void ConnectionCases(Report& report) {
    Opening(report);
    Idle(report);
    SilentController(report);
    ManyConnections(report);
    LibrarySize(report);
}

} // namespace harvlink::bench
