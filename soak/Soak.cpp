#include "soak/Soak.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stop_token>
#include <thread>

#include <fmt/format.h>
#include <unistd.h>

#include "soak/FilesWorker.h"
#include "soak/KinematicsWorker.h"
#include "soak/MachineWorker.h"
#include "soak/MotionWorker.h"
#include "soak/ValuesWorker.h"

namespace harvlink::soak {

namespace {

using namespace std::chrono_literals;

constexpr auto HangTime = 120s;
constexpr int HangExit = 3;
constexpr std::size_t WarmUpRounds = 2;

std::vector<ValueKind> AllKinds(SharedConnection& connection, Options const& options) {
    auto kinds = NumberKinds(*connection.robot);
    for (auto& kind : PositionKinds(*connection.robot, options.HighestTool())) {
        kinds.push_back(std::move(kind));
    }
    for (auto& kind : SignalKinds(*connection.robot, connection.isExtended)) {
        kinds.push_back(std::move(kind));
    }
    return kinds;
}

nlohmann::json ToJson(std::vector<ProcessFigures> const& figures) {
    auto list = nlohmann::json::array();
    for (auto const& item : figures) {
        nlohmann::json entry{{"process", item.name},
                             {"residentKiB", item.residentKiB},
                             {"descriptors", item.descriptors},
                             {"threads", item.threads}};
        if (item.heapKiB != 0) {
            entry["heapKiB"] = item.heapKiB;
        }
        list.push_back(entry);
    }
    return list;
}

} // namespace

Soak::Soak(Options const& options)
    : options_(options), folder_(std::filesystem::absolute(options.report).parent_path() / "work") {
    auto const& at = options_.addresses;
    controllers_ = {{"FS", at.older, options_.faults},
                    {"FS", at.olderVisited, options_.faults},
                    {"YA", at.newer, options_.faults},
                    {"YA", at.newerVisited, options_.faults}};
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    options_.simulator = std::filesystem::absolute(options_.simulator);
    // The library logs into the working directory.
    std::filesystem::current_path(folder_);
}

bool Soak::Run() {
    StartControllers();
    OpenConnections();
    MakeWorkers();
    RunRounds();
    workers_.clear();
    older_.robot.reset();
    newer_.robot.reset();
    auto const traffic = StopControllers();
    WriteReport(traffic);
    return results_.FailureCount() == 0;
}

std::filesystem::path Soak::TrafficFile(std::size_t controller) const {
    return folder_ / fmt::format("traffic-{}.json", controller);
}

std::filesystem::path Soak::FaultFile(std::size_t controller) const {
    return folder_ / fmt::format("faults-{}.json", controller);
}

void Soak::StartControllers() {
    constexpr auto timeScale = "10"; // so that jobs and moves end between two checks
    auto const scene = folder_ / "scene.toml";
    std::ofstream(scene) << fmt::format("[controller]\ntools = {}\n", options_.HighestTool() + 1);
    for (std::size_t i = 0; i < controllers_.size(); ++i) {
        auto const& controller = controllers_[i];
        auto command = options_.simulatorPrefix;
        auto const words =
            std::to_array<std::string>({options_.simulator, "--scene", scene, "--generation", controller.generation,
                                        "--address", controller.address, "--groups", "R1,B1,S1", "--time-scale",
                                        timeScale, "--report", TrafficFile(i), "--fault-log", FaultFile(i)});
        command.insert(command.end(), words.begin(), words.end());
        if (!controller.faults.empty()) {
            command.insert(command.end(),
                           {"--faults", fmt::format("seed={},{}", options_.seed + i, controller.faults)});
        }
        simulators_.push_back(std::make_unique<SimulatorProcess>(
            fmt::format("harvlink-sim {} {}", controller.generation, controller.address), command));
        journals_.push_back(std::make_unique<FaultJournal>(FaultFile(i)));
    }
}

void Soak::OpenConnections() {
    older_.address = options_.addresses.older;
    newer_.address = options_.addresses.newer;
    newer_.isExtended = true;
    older_.journal = journals_[Older].get();
    newer_.journal = journals_[Newer].get();
    for (auto* const connection : {&older_, &newer_}) {
        connection->robot = OpenWithRetries(*connection, options_, results_);
    }
}

void Soak::MakeWorkers() {
    std::uint64_t seed = 0;
    for (auto* const connection : {&older_, &newer_}) {
        std::string const suffix = connection->isExtended ? " of the newer" : " of the older";
        workers_.push_back(std::make_unique<ValuesWorker>("values" + suffix, options_, results_, ++seed,
                                                          Worker::Journals{connection->journal},
                                                          AllKinds(*connection, options_)));
        workers_.push_back(
            std::make_unique<MachineWorker>("machine" + suffix, options_, results_, ++seed, *connection));
    }
    workers_.push_back(std::make_unique<KinematicsWorker>("kinematics", options_, results_, ++seed, newer_));
    workers_.push_back(std::make_unique<FilesWorker>("files", options_, results_, ++seed,
                                                     std::vector<SharedConnection*>{&older_, &newer_}, folder_));
    workers_.push_back(std::make_unique<MotionWorker>("motion", options_, results_, ++seed, *journals_[OlderVisited],
                                                      *journals_[NewerVisited]));
}

void Soak::RunRounds() {
    constexpr double most = 60.0;
    double const roundsOfShortRun = options_.badNetwork ? 3.0 : 6.0; // each ends with its slowest step
    auto const total = std::chrono::duration<double>(options_.minutes * 60.0);
    auto const rounds = std::max(roundsOfShortRun, std::ceil(total.count() / most));
    auto const duration = std::chrono::duration_cast<SteadyClock::duration>(total / rounds);
    start_ = SteadyClock::now();
    nextProgress_ = start_ + std::chrono::minutes(1);
    for (std::size_t round = 1; round <= static_cast<std::size_t>(rounds); ++round) {
        RunRound(duration);
        auto const figures = Measure();
        if (round == WarmUpRounds) {
            before_ = figures;
        } else if (round > WarmUpRounds) {
            CompareFigures(figures);
        }
    }
    PrintProgress();
}

void Soak::RunRound(SteadyClock::duration duration) {
    std::vector<std::jthread> threads;
    for (auto const& worker : workers_) {
        threads.emplace_back([&worker](std::stop_token const& stop) { worker->Run(stop); });
    }
    Watch(SteadyClock::now() + duration);
    for (auto& thread : threads) {
        thread.request_stop();
    }
    // The watch ends the program if a thread doesn't end.
    std::jthread const watch([](std::stop_token const& stop) {
        for (auto const end = SteadyClock::now() + 2 * HangTime; !stop.stop_requested();) {
            std::this_thread::sleep_for(50ms);
            if (SteadyClock::now() > end) {
                fmt::print(stderr, "FAILED: a worker did not end\n");
                std::_Exit(HangExit);
            }
        }
    });
    threads.clear();
}

/// Prints the progress until the end of the round. Ends the program if a worker hangs.
void Soak::Watch(SteadyClock::time_point end) {
    while (SteadyClock::now() < end) {
        std::this_thread::sleep_until(std::min(end, SteadyClock::now() + 500ms));
        for (auto const& worker : workers_) {
            if (SteadyClock::now() - worker->LastProgress() > HangTime) {
                fmt::print(stderr, "FAILED: {} hangs\n", worker->Name());
                std::_Exit(HangExit);
            }
        }
        if (SteadyClock::now() >= nextProgress_) {
            nextProgress_ += std::chrono::minutes(1);
            PrintProgress();
        }
    }
}

void Soak::PrintProgress() {
    auto const minutes = std::chrono::duration<double, std::ratio<60>>(SteadyClock::now() - start_).count();
    fmt::print("{:5.1f} min: {} operations, {} without an answer, {} damaged, {} file bytes compared, {} failures\n",
               minutes, results_.Operations(), results_.Count(FaultEffect::NoAnswer),
               results_.Count(FaultEffect::DamagedAnswer), results_.FileBytes(), results_.FailureCount());
    std::fflush(stdout);
}

std::vector<ProcessFigures> Soak::Measure() const {
    auto own = OwnFigures();
    for (auto const& worker : workers_) {
        own.heapKiB -= std::min(own.heapKiB, worker->KeptBytes() / 1024);
    }
    std::vector<ProcessFigures> figures{own};
    for (auto const& simulator : simulators_) {
        figures.push_back(simulator->Figures());
    }
    return figures;
}

void Soak::CompareFigures(std::vector<ProcessFigures> const& now) {
    after_ = now;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (auto const growth = Growth(before_[i], now[i]); !growth.empty()) {
            results_.Fail(growth);
        }
    }
}

/// Stops all controllers and adds up their reports.
nlohmann::json Soak::StopControllers() {
    nlohmann::json total{{"requests", 0}, {"faults", nlohmann::json::object()}};
    for (std::size_t i = 0; i < simulators_.size(); ++i) {
        if (!simulators_[i]->Stop()) {
            results_.Fail(fmt::format("harvlink-sim on {} did not end normally", controllers_[i].address));
            continue;
        }
        auto const report = nlohmann::json::parse(std::ifstream(TrafficFile(i)));
        auto const& controller = report.at("controllers").at(0);
        total["requests"] = total["requests"].get<std::uint64_t>() + controller.at("requests").get<std::uint64_t>();
        for (auto const& [name, count] : controller.at("faults").items()) {
            total["faults"][name] = total["faults"].value(name, std::uint64_t{0}) + count.get<std::uint64_t>();
        }
    }
    return total;
}

void Soak::WriteReport(nlohmann::json const& traffic) {
    nlohmann::json operations;
    for (std::size_t i = 0; i < Families; ++i) {
        auto const family = static_cast<Family>(i);
        operations[std::string(NameOf(family))] = results_.Operations(family);
    }
    nlohmann::json survived;
    for (std::size_t i = 0; i < FaultEffects; ++i) {
        auto const kind = static_cast<FaultEffect>(i);
        survived[std::string(NameOf(kind))] = results_.Count(kind);
    }
    auto const minutes = std::chrono::duration<double, std::ratio<60>>(SteadyClock::now() - start_).count();
    report_ = {{"minutesAsked", options_.minutes},
               {"minutes", std::round(minutes * 10.0) / 10.0},
               {"seed", options_.seed},
               {"workers", workers_.size()},
               {"network", options_.badNetwork ? "bad" : "good"},
               {"exchanges", traffic.at("requests")},
               {"operations", results_.Operations()},
               {"operationsByInterface", operations},
               {"faultsInjected", traffic.at("faults")},
               {"faultsSurvived", survived},
               {"fileBytesCompared", results_.FileBytes()},
               {"before", ToJson(before_)},
               {"after", ToJson(after_)},
               {"failures", results_.Failures()}};
}

} // namespace harvlink::soak
