#pragma once

#include <vector>

#include "soak/FixedReading.h"
#include "soak/SharedConnection.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Commands one controller: servo power, hold, cycle, pendant, jobs that run and jobs that raise an alarm. Reads its
/// state and its description. No other worker changes this state.
class MachineWorker final : public Worker {
public:
    MachineWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                  SharedConnection& connection);

private:
    void Step() override;
    void Recover() override;
    void LoadJobs();
    bool LoadJob(std::string_view name, std::string_view text);

    /// Repeats a command until the state is as expected. If only replies can be lost, one command must be enough.
    void Command(std::string const& what, std::function<StatusInfo()> const& send,
                 Family family = Family::ControlCommands);
    bool ExpectState(std::string const& what);
    Answer AskState();
    Answer CompareState(ControllerStateData& got);

    void SwitchServo(bool on);
    void SwitchHold();
    void SwitchCycle();
    void ShowText();
    void ReadTimes();
    void CheckReading(FixedReading& reading);

    void RunGoodJob();
    bool SelectAndStart(std::string_view name);
    bool IsSelected(std::string_view name);
    void ResetJobVariables();
    bool AwaitJob();
    void CheckJobVariables();
    void CheckJobPlace();
    void CheckJobStack();
    void RaiseAlarm();
    void CheckActiveAlarms(bool isExpected);
    void CheckHistory();
    Answer CompareAlarm(AlarmData const& got, bool isExpected) const;

    SharedConnection& connection_;
    QuorvanController& robot_;
    std::vector<FixedReading> readings_;
    ControllerStateData state_; ///< the expected state
    std::int64_t playbackSeconds_ = 0;
    bool hasJobs_ = false;
};

} // namespace harvlink::soak
