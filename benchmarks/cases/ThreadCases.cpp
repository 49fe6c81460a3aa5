#include <algorithm>
#include <atomic>
#include <barrier>
#include <functional>
#include <mutex>
#include <thread>

#include "cases/Cases.h"
#include "support/BareClient.h"
#include "support/Responder.h"

namespace harvlink::bench {
namespace {

using namespace std::chrono_literals;

constexpr int rounds = 7; // long ones, so that every thread gets many turns

struct Served {
    double rate = 0.0;
    double leastToMost = 0.0;
};

/// Lets a number of threads do an operation as often as they can for a while.
Served RunThreads(int count, std::function<void(int)> const& operation) {
    std::vector<std::uint64_t> served(static_cast<std::size_t>(count));
    std::atomic<bool> stop = false;
    std::barrier start(count + 1);
    double seconds = 0.0;
    {
        std::vector<std::jthread> threads;
        threads.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                std::uint64_t done = 0;
                for (; !stop.load(std::memory_order_relaxed); ++done) {
                    operation(i);
                }
                served[static_cast<std::size_t>(i)] = done;
            });
        }
        start.arrive_and_wait();
        seconds = Time([&] {
            std::this_thread::sleep_for(500ms);
            stop = true;
        });
    }
    auto const [least, most] = std::ranges::minmax(served);
    double total = 0.0;
    for (std::uint64_t const done : served) {
        total += static_cast<double>(done);
    }
    return {total / seconds, static_cast<double>(least) / static_cast<double>(most)};
}

void ThreadsOnOneConnection(Report& report) {
    constexpr int threads = 8;
    PinTo(0);
    std::string const address = BenchAddress(40);
    Responder const responder({address}, 0);
    BareClient bare(address);
    std::mutex first;
    std::mutex second;
    Connection const connection = Open(address);
    std::vector<double> fairness;
    Paired const rate = Pair(
        [&] {
            return RunThreads(threads,
                              [&](int) {
                                  std::scoped_lock const lock(first, second);
                                  bare.ReadByteVariable();
                              })
                .rate;
        },
        [&] {
            Served const served =
                RunThreads(threads, [&](int i) { ReadByteVariable(*connection, static_cast<std::uint8_t>(i)); });
            fairness.push_back(served.leastToMost);
            return served.rate;
        },
        rounds);
    AddRatio(report,
             {.name = "8 threads on one connection, rate",
              .unit = "1/s",
              .comparison = ">=",
              .target = 0.95,
              .note = "ratio"},
             rate);
    report.Add({.name = "8 threads on one connection, least to most served",
                .unit = "",
                .harvlink = Median(fairness),
                .gated = Median(fairness),
                .comparison = ">=",
                .target = 0.8,
                .note = ""});
}

void ThreadForEachController(Report& report) {
    constexpr int controllers = 200;
    PinTo(0);
    std::vector<std::string> addresses;
    std::vector<Connection> connections;
    std::vector<std::unique_ptr<BareClient>> bare;
    addresses.reserve(controllers);
    for (int i = 0; i < controllers; ++i) {
        addresses.push_back(BenchAddress(2000 + i));
    }
    Responder const responder(addresses, 0);
    for (std::string const& address : addresses) {
        connections.push_back(Open(address));
        bare.push_back(std::make_unique<BareClient>(address));
    }
    Paired const rate = Pair(
        [&] {
            return RunThreads(controllers, [&](int i) { bare[static_cast<std::size_t>(i)]->ReadByteVariable(); }).rate;
        },
        [&] {
            return RunThreads(controllers, [&](int i) { ReadByteVariable(*connections[static_cast<std::size_t>(i)]); })
                .rate;
        },
        rounds);
    AddRatio(report,
             {.name = "200 controllers, a thread each, rate",
              .unit = "1/s",
              .comparison = ">=",
              .target = 0.85,
              .note = "ratio"},
             rate);
}

} // namespace

void ThreadCases(Report& report) {
    ThreadsOnOneConnection(report);
    ThreadForEachController(report);
}

} // namespace harvlink::bench
