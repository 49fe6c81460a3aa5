#include <vector>

#include "cases/Cases.h"
#include "support/AllocationCounter.h"
#include "support/BareClient.h"
#include "support/Responder.h"

namespace harvlink::bench {
namespace {

constexpr int exchangesPerRound = 8000;

double AllocationsOf(auto operation) {
    constexpr int repetitions = 100;
    std::size_t const before = CurrentHeapUse().allocations;
    for (int i = 0; i < repetitions; ++i) {
        operation();
    }
    return static_cast<double>(CurrentHeapUse().allocations - before) / repetitions;
}

/// Rounds of the library beside those of the bare socket.
struct Compared {
    std::vector<Series> floors;
    std::vector<Series> ours;

    void Add(Report& report, std::string const& name, double Series::*figure, double scale, std::string const& unit,
             std::string const& comparison, double target) const {
        std::vector<double> floorFigures;
        std::vector<double> ourFigures;
        std::vector<double> ratios;
        for (std::size_t i = 0; i < floors.size(); ++i) {
            floorFigures.push_back(floors[i].*figure * scale);
            ourFigures.push_back(ours[i].*figure * scale);
            ratios.push_back(ourFigures.back() / floorFigures.back());
        }
        report.Add({.name = name,
                    .unit = unit,
                    .floor = Median(floorFigures),
                    .harvlink = Median(ourFigures),
                    .gated = Median(ratios),
                    .comparison = comparison,
                    .target = target,
                    .note = "ratio"});
    }
};

/// All take turns, so that the designed and the strict way have the same floor.
void ScalarRead(Report& report, std::string const& address) {
    BareClient bare(address);
    Connection const connection = Open(address);
    Connection const strictConnection = OpenStrictly(address);
    Compared designed;
    Compared strict;
    for (int round = 0; round < Rounds; ++round) {
        designed.floors.push_back(Run(exchangesPerRound, [&] { bare.ReadByteVariable(); }));
        designed.ours.push_back(Run(exchangesPerRound, [&] { ReadByteVariable(*connection); }));
        strict.ours.push_back(Run(exchangesPerRound, [&] { ReadByteVariable(*strictConnection); }));
    }
    strict.floors = designed.floors;
    designed.Add(report, "scalar read, p50", &Series::p50, 1e6, "us", "<=", 1.05);
    designed.Add(report, "scalar read, p99", &Series::p99, 1e6, "us", "<=", 1.10);
    designed.Add(report, "scalar read, rate", &Series::rate, 1.0, "1/s", ">=", 0.94);
    designed.Add(report, "scalar read, processor time", &Series::cpu, 1e6, "us", "<=", 1.07);
    strict.Add(report, "strict: scalar read, p50", &Series::p50, 1e6, "us", "<=", 1.08);
    strict.Add(report, "strict: scalar read, p99", &Series::p99, 1e6, "us", "<=", 1.15);
}

void Allocations(Report& report, std::string const& address) {
    Connection const connection = Open(address);
    report.Add({.name = "allocations, exchange that succeeds",
                .unit = "",
                .harvlink = AllocationsOf([&] { ReadByteVariable(*connection); }),
                .gated = AllocationsOf([&] { ReadByteVariable(*connection); }),
                .comparison = "<=",
                .target = 0.0,
                .note = ""});
    Connection const strict = OpenStrictly(address);
    double const strictRead = AllocationsOf([&] { ReadByteVariable(*strict); });
    report.Add({.name = "strict: allocations, exchange that succeeds",
                .unit = "",
                .harvlink = strictRead,
                .gated = strictRead,
                .comparison = "<=",
                .target = 0.0,
                .note = ""});
    double const text = AllocationsOf([&] {
        StringVariableData variable;
        Require(connection->Variables->stringVariable->Read(0, variable));
    });
    report.Add({.name = "allocations, string read",
                .unit = "",
                .harvlink = text,
                .gated = text,
                .comparison = "<=",
                .target = 1.0,
                .note = ""});
    double const error = AllocationsOf([&] {
        ByteVariableData variable;
        (void)connection->Variables->byteVariable->Read(4000, variable);
    });
    report.Add({.name = "allocations, error text",
                .unit = "",
                .harvlink = error,
                .gated = error,
                .comparison = "<=",
                .target = 2.0,
                .note = ""});
}

} // namespace

void ExchangeCases(Report& report) {
    PinTo(0);
    std::string const address = BenchAddress(0);
    Responder const responder({address}, 0);
    ScalarRead(report, address);
    Allocations(report, address);
}

void RunExchanges(int count, bool isStrict) {
    std::string const address = BenchAddress(1);
    Responder const responder({address}, -1);
    Connection const connection = isStrict ? OpenStrictly(address) : Open(address);
    for (int i = 0; i < count; ++i) {
        ReadByteVariable(*connection);
    }
}

} // namespace harvlink::bench
