#include <filesystem>
#include <memory>
#include <thread>

#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

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

    constexpr int repetitions = 200;
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
    AddTime(report, "opening a connection, time against as many bare exchanges", seconds, 1.25, "ratio", repetitions);
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

int CountDatagrams(int socket) {
    int count = 0;
    for (char byte = 0; ::recv(socket, &byte, 1, MSG_DONTWAIT) >= 0; ++count) {
    }
    return count;
}

/// Waits as long as the library does, with nothing around it.
void BareSilence(BareClient& client, unsigned periods, int timeout) {
    client.RequestByteVariable();
    for (unsigned i = 0; i < periods; ++i) {
        client.Wait(timeout);
    }
}

void SilentController(Report& report) {
    PinTo(0);
    constexpr unsigned timeout = 50;
    constexpr unsigned retries = 2;
    constexpr int attempts = 5;
    std::string const address = BenchAddress(32);
    Connection connection;
    {
        Responder const responder({address}, 0);
        connection = Open(address, timeout, retries);
    }
    int const socket = BindSocket(address, 10040); // takes everything and says nothing
    BareClient bare(address);
    std::vector<double> late;
    std::vector<double> bareLate;
    auto const cpu = [&](auto operation) {
        double const before = ThreadCpuSeconds();
        operation();
        return (ThreadCpuSeconds() - before) * 1e3;
    };
    Paired const milliseconds =
        Pair([&] { return cpu([&] { bareLate.push_back(Time([&] { BareSilence(bare, 1 + retries, timeout); })); }); },
             [&] {
                 return cpu([&] {
                     ByteVariableData variable;
                     late.push_back(Time([&] { (void)connection->Variables->byteVariable->Read(0, variable); }));
                 });
             },
             attempts);
    double const allowed = timeout * (1.0 + retries);
    report.Add({.name = "silent controller, beyond (1 + retries) x time-out",
                .unit = "ms",
                .floor = Median(bareLate) * 1e3 - allowed,
                .harvlink = Median(late) * 1e3 - allowed,
                .gated = Median(late) * 1e3 - allowed,
                .comparison = "<=",
                .target = 0.5,
                .note = "three waits"});
    report.Add({.name = "silent controller, processor time",
                .unit = "ms",
                .floor = milliseconds.floor,
                .harvlink = milliseconds.harvlink,
                .gated = milliseconds.harvlink,
                .comparison = "<=",
                .target = 0.1,
                .note = "three waits"});
    int const bareDatagrams = attempts;
    report.Add(
        Figure("silent controller, datagrams", "", 1.0 * (CountDatagrams(socket) - bareDatagrams) / attempts, "==", 1));
    ::close(socket);
}

void RaiseDescriptorLimit() {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

/// Connections to many controllers in turn, and as many bare clients.
struct Crowd {
    std::vector<Connection> connections;
    std::vector<std::unique_ptr<BareClient>> bareClients;

    void GrowTo(std::size_t count, std::vector<std::string> const& addresses) {
        while (connections.size() < count) {
            std::string const& address = addresses[connections.size() % addresses.size()];
            bareClients.push_back(std::make_unique<BareClient>(address));
            connections.push_back(Open(address));
        }
    }
};

void GrowthOfConnections(Report& report, std::vector<std::string> const& addresses, Crowd& crowd) {
    Points growth;
    Points bareGrowth;
    for (std::size_t const count : {1U, 10U, 100U, 1000U}) {
        crowd.GrowTo(count, addresses);
        bareGrowth.emplace_back(count, MedianTime(Rounds, [&] {
                                    for (auto const& client : crowd.bareClients) {
                                        client->ReadByteVariable();
                                    }
                                }));
        growth.emplace_back(count, MedianTime(Rounds, [&] {
                                for (Connection const& connection : crowd.connections) {
                                    ReadByteVariable(*connection);
                                }
                            }));
    }
    AddGrowth(report, "connections", growth, bareGrowth);
    report.Add(Figure("1,000 connections in a process, that answer", "", static_cast<double>(crowd.connections.size()),
                      "==", 1000));
}

void ControllersInTurn(Report& report, std::size_t controllers, Crowd const& crowd) {
    constexpr int turns = 30;
    auto const timeOf = [&](std::size_t count, auto const& read) {
        return Time([&] {
            for (int turn = 0; turn < turns; ++turn) {
                for (std::size_t i = 0; i < controllers; ++i) {
                    read(i % count);
                }
            }
        });
    };
    auto const ours = [&](std::size_t i) { ReadByteVariable(*crowd.connections[i]); };
    auto const bare = [&](std::size_t i) { crowd.bareClients[i]->ReadByteVariable(); };
    Paired const seconds = Pair([&] { return timeOf(1, ours); }, [&] { return timeOf(controllers, ours); });
    double const bareRatio =
        1.0 / Pair([&] { return timeOf(1, bare); }, [&] { return timeOf(controllers, bare); }).ratio;
    AddRate(report, "200 controllers in turn, rate against one connection", "1/s",
            turns * static_cast<int>(controllers), seconds, 0.92,
            "ratio; with bare sockets " + std::to_string(bareRatio).substr(0, 5));
}

void ManyConnections(Report& report) {
    PinTo(0);
    RaiseDescriptorLimit();
    constexpr int controllers = 200;
    std::vector<std::string> addresses;
    addresses.reserve(controllers);
    for (int i = 0; i < controllers; ++i) {
        addresses.push_back(BenchAddress(1000 + i));
    }
    Responder const responder(addresses, 0);
    Crowd crowd;
    GrowthOfConnections(report, addresses, crowd);
    ControllersInTurn(report, addresses.size(), crowd);
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
