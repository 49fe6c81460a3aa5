/// What a recording costs: processor time of storing against a bare prepared insert of the same rows, size, export, info.
/// Prints one line of JSON for each case. Usage: harvlink_recording_bench [SCALE], 1 for the full lengths.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include <sys/resource.h>

#include "recording/read/CsvExport.h"
#include "recording/store/Schema.h"
#include "recording/write/SampleStore.h"

namespace {

using namespace harvlink::recording; // NOLINT(google-build-using-namespace): a program of one page

constexpr Microseconds Second = 1'000'000;
constexpr Microseconds Start = 1'790'000'000 * Second;
constexpr int AxesOfReading = 10;

double ProcessorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    auto const seconds = [](timeval const& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// A position in thousandths of a millimetre that moves a little each round.
double Position(int round, int item) {
    constexpr int Range = 2'000'000;
    return static_cast<double>((round * 37 + item * 1013) % Range) / 1000.0;
}

struct Load {
    int controllers = 1;
    int items = 100;
    int rounds = 0;
    Microseconds period = 1000;
    bool halfChange = false; ///< an item changes in every second round only
};

std::vector<std::uint32_t> AddReadings(SampleStore& store, Load const& load) {
    std::vector<std::uint32_t> readings;
    for (int controller = 0; controller < load.controllers; ++controller) {
        auto const id = store.AddController({"cell" + std::to_string(controller), "127.0.0.1"});
        for (int first = 0; first < load.items; first += AxesOfReading) {
            RecordedReading reading;
            reading.controller = id;
            reading.name = "position " + std::to_string(first);
            reading.kind = "position";
            for (int axis = 0; axis < AxesOfReading; ++axis) {
                reading.items.push_back({"axis" + std::to_string(axis), "mm", RecordedType::Real, 1000});
            }
            readings.push_back(store.AddReading(reading));
        }
    }
    return readings;
}

/// Returns the processor time.
double Store(std::filesystem::path const& path, Load const& load) {
    SampleStore store(path);
    auto const readings = AddReadings(store, load);
    auto const perCommit = std::max<Microseconds>(Second / 2 / load.period, 1);
    RecordedSample sample;
    sample.values.resize(AxesOfReading);
    double const before = ProcessorSeconds();
    store.Begin();
    for (int round = 0; round < load.rounds; ++round) {
        for (std::size_t i = 0; i < readings.size(); ++i) {
            int const step = load.halfChange ? (round + static_cast<int>(i)) / 2 : round;
            for (int axis = 0; axis < AxesOfReading; ++axis) {
                sample.values[static_cast<std::size_t>(axis)] =
                    Position(step, static_cast<int>(i) * AxesOfReading + axis);
            }
            auto const time = Start + round * load.period + static_cast<Microseconds>(i % 10) * 50;
            sample.reading = readings[i];
            sample.moment = {.request = time, .answer = time + 40, .monotonic = time + 40};
            store.Put(sample);
        }
        if ((round + 1) % perCommit == 0) {
            store.Commit();
            store.Begin();
        }
    }
    store.Commit();
    store.Close();
    return ProcessorSeconds() - before;
}

/// The same values with nothing around them.
double BareInsert(std::filesystem::path const& path, Load const& load) {
    Database database(path, Database::Access::Write);
    database.Number("PRAGMA journal_mode = WAL");
    database.Run("PRAGMA synchronous = NORMAL");
    PrepareSchema(database);
    int const width = FrameWidthFor(static_cast<std::size_t>(load.items));
    constexpr int Head = 9;
    std::string sql = "INSERT INTO " + FrameTable(width) + " VALUES(?";
    for (int column = 1; column < Head + 2 * width; ++column) {
        sql += ",?";
    }
    Statement insert(database, sql + ")");
    auto const perCommit = Second / 2 / load.period;
    double const before = ProcessorSeconds();
    database.Run("BEGIN");
    for (int round = 0; round < load.rounds; ++round) {
        for (int column = 1; column < Head; ++column) {
            insert.Bind(column, column == 2 || column == 3 ? Start + round * load.period : std::int64_t{0});
        }
        for (int item = 0; item < load.items; ++item) {
            insert.Bind(Head + item, static_cast<std::int64_t>(Position(round, item) * 1000.0));
        }
        for (int reading = 1; reading < load.items / AxesOfReading; ++reading) {
            insert.Bind(Head + width + reading * AxesOfReading, (std::int64_t{reading} * 50 << RoundTripBits) | 40);
        }
        insert.Run();
        if ((round + 1) % perCommit == 0) {
            database.Run("COMMIT");
            database.Run("BEGIN");
        }
    }
    database.Run("COMMIT");
    return ProcessorSeconds() - before;
}

/// Takes everything and keeps nothing.
class Nowhere : public std::streambuf {
protected:
    std::streamsize xsputn(char const* /*text*/, std::streamsize size) override { return size; }
    int overflow(int character) override { return character; }
};

double SecondsOf(auto const& work) {
    auto const begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

struct Result {
    std::string name;
    std::string unit;
    double value = 0;
    char const* comparison = "<=";
    double target = 0;
    std::string floor = "null"; ///< what a bare insert needs
    std::string gated = "null"; ///< what is held against the target, if it is not the value itself
};

void Show(Result const& result) {
    std::cout << R"({"case": ")" << result.name << R"(", "unit": ")" << result.unit << R"(", "value": )" << result.value
              << R"(, "comparison": ")" << result.comparison << R"(", "target": )" << result.target << R"(, "floor": )"
              << result.floor << R"(, "gated": )" << result.gated << "}" << std::endl;
}

void RunStoring(std::filesystem::path const& folder, int seconds) {
    Load const fast{.rounds = seconds * 1000};
    double const stored = 100 * Store(folder / "fast", fast) / seconds;
    double const bare = 100 * BareInsert(folder / "bare", fast) / seconds;
    std::string const core = "% of a core";
    Show({.name = "recording 100 items at 1 kHz", .unit = core, .value = stored, .target = 3});
    Show({.name = "the same against a bare insert",
          .unit = core,
          .value = stored,
          .target = 1.5,
          .floor = std::to_string(bare),
          .gated = std::to_string(stored / bare)});
    Load const wide{.controllers = 1000, .items = 20, .rounds = seconds, .period = Second};
    double const share = 100 * Store(folder / "wide", wide) / seconds;
    Show({.name = "recording 1,000 controllers x 20 items at 1 Hz", .unit = core, .value = share, .target = 5});
}

void RunReading(std::filesystem::path const& folder, double scale) {
    constexpr int RoundsOfHour = 360'000;
    constexpr double Megabyte = 1048576;
    Load hour{.rounds = std::max(static_cast<int>(RoundsOfHour * scale), 2000), .period = 10'000, .halfChange = true};
    auto const path = folder / "hour";
    Store(path, hour);
    double const bytes = static_cast<double>(std::filesystem::file_size(path)) * RoundsOfHour / hour.rounds;
    Show({.name = "an hour of 100 items at 100 Hz, half of them change",
          .unit = "MB",
          .value = bytes / Megabyte,
          .target = 250});
    Nowhere nowhere;
    std::ostream out(&nowhere);
    std::uint64_t rows = 0;
    double const exported = SecondsOf([&] {
        Recording recording(path);
        rows = ExportCsv(recording, {}, out);
    });
    Show({.name = "recording export",
          .unit = "M rows/s",
          .value = static_cast<double>(rows) / exported / 1e6,
          .comparison = ">=",
          .target = 1});
    constexpr double Gigabyte = 1024 * Megabyte;
    hour.rounds = static_cast<int>(hour.rounds * Gigabyte / bytes * 1.01);
    std::filesystem::remove(path);
    Store(path, hour);
    auto const size = static_cast<int>(static_cast<double>(std::filesystem::file_size(path)) / Megabyte);
    double const info = SecondsOf([&] { Recording(path).Info(); });
    Show({.name = "recording info of " + std::to_string(size) + " MB",
          .unit = "ms",
          .value = info * 1000,
          .target = 50});
}

} // namespace

int main(int argc, char** argv) {
    auto const folder = std::filesystem::temp_directory_path() / "harvlink-recording-bench";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    double const scale = argc > 1 ? std::strtod(argv[1], nullptr) : 1.0;
    constexpr double FullLength = 60;
    RunStoring(folder, std::max(static_cast<int>(FullLength * scale), 2));
    RunReading(folder, scale);
    std::filesystem::remove_all(folder);
    return 0;
}
