#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include <nlohmann/json.hpp>

#include "soak/FaultJournal.h"
#include "soak/Options.h"
#include "soak/ProcessFigures.h"
#include "soak/Results.h"
#include "soak/SharedConnection.h"
#include "soak/SimulatorProcess.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// The whole run: controllers in their own processes, two connections that stay open and are shared by several workers,
/// and rounds of load. Between rounds all workers pause, and the resources in use are measured.
class Soak {
public:
    explicit Soak(Options const& options);

    /// False if anything failed. Throws std::runtime_error if the load can't be started.
    bool Run();

    /// The figures of the finished run.
    nlohmann::json Report() const { return report_; }

private:
    /// In the order of the controllers.
    enum Which : std::uint8_t { Older, OlderVisited, Newer, NewerVisited };

    struct Controller {
        std::string generation;
        std::string address;
        std::string faults;
    };

    void StartControllers();
    void OpenConnections();
    void MakeWorkers();
    void RunRounds();
    void RunRound(SteadyClock::duration duration);
    void Watch(SteadyClock::time_point end);
    void PrintProgress();
    std::vector<ProcessFigures> Measure() const;
    void CompareFigures(std::vector<ProcessFigures> const& now);
    nlohmann::json StopControllers();
    void WriteReport(nlohmann::json const& traffic);
    std::filesystem::path TrafficFile(std::size_t controller) const;
    std::filesystem::path FaultFile(std::size_t controller) const;

    Options options_;
    Results results_;
    std::filesystem::path folder_;
    std::vector<Controller> controllers_;
    std::vector<std::unique_ptr<SimulatorProcess>> simulators_;
    std::vector<std::unique_ptr<FaultJournal>> journals_; ///< by controller
    SharedConnection older_;
    SharedConnection newer_;
    std::vector<std::unique_ptr<Worker>> workers_;
    SteadyClock::time_point start_;
    SteadyClock::time_point nextProgress_;
    std::vector<ProcessFigures> before_;
    std::vector<ProcessFigures> after_;
    nlohmann::json report_;
};

} // namespace harvlink::soak
