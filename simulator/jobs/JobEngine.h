#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/base/Clock.h"
#include "simulator/jobs/JobProgram.h"
#include "simulator/model/Activity.h"
#include "simulator/model/JobSource.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

class ControllerModel;

/// Alarms that a running job raises; the sub-code is the line.
enum class JobAlarm : std::uint32_t {
    JobNotFound = 4450, ///< the job called doesn't exist or is no job
    CallTooDeep = 4451,
    NoSuchVariable = 4452,
    NoSuchSignal = 4453,
};

/// Runs the selected job, in the language of JobParser.h, on variables and signals of the model.
///
/// Every line takes InstructionTime of the controller's clock, but TIMER its own time, labels and comments none; what it
/// does, it does at the end of this. Hold, an alarm, the loss of servo power and leaving remote mode stop the job at once;
/// the next start goes on within the line where it stood. After END of the selected job the next line is its first: the
/// job stops there in cycle mode, and goes on in automatic mode. In step mode each start carries out one line, labels and
/// comments before it included.
class JobEngine final : public JobActivity {
public:
    static constexpr Clock::Duration InstructionTime = std::chrono::milliseconds(20);
    static constexpr std::size_t MaxDepth = 12; ///< of calls, the selected job included: as many as a stack reply names
    static constexpr std::size_t MaxPerTick = 1000; ///< lines; a clock that runs faster than this is not followed

    /// Becomes the job activity of the model. Both outlive it.
    JobEngine(ControllerModel& model, JobSource const& source);

    /// Where the innermost job stands: the line that it carries out or would start with.
    struct Place {
        std::string_view name; ///< empty if no job was selected
        std::uint32_t line = 0;
        std::uint32_t step = 0;
    };

    /// Makes a job of the store the one that a start runs, from `line` on.
    Refusal Select(std::string_view name, std::uint32_t line);

    /// Starts or continues the selected job, in remote mode with servo power, without alarm and hold, if nothing runs.
    Refusal Start();

    bool IsRunning() const override { return isRunning_; }

    bool IsExecuting(std::string_view job) const override;

    Place Current() const;

    /// The call stack, from 0, the selected job, to Depth() - 1, where Current is.
    std::size_t Depth() const { return stack_.size(); }
    std::string_view NameAt(std::size_t depth) const { return stack_.at(depth).name; }

    void OnStateChange() override;

    /// Whether Tick has anything to do.
    bool NeedsTicks() const { return isRunning_; }

    /// Advances to `now`, the time of the model's clock.
    void Tick(Clock::Duration now);

private:
    using Program = std::shared_ptr<JobProgram const>;

    struct Frame {
        std::string name;
        Program program;
        std::uint32_t line = 0;

        Instruction const& Current() const { return program->lines[line]; }
    };

    Refusal Load(std::string const& name, Program& program);
    Refusal Reload();

    void Execute(Instruction const& instruction);
    void ExecuteWait(Instruction const& instruction);
    void ExecuteJump(Instruction const& instruction);
    void ExecuteAssignment(Instruction const& instruction);
    void Call(std::string const& name);
    void Return();
    void GoTo(std::uint32_t line);
    void GoOn() { GoTo(stack_.back().line + 1); }
    void Stop();
    void Raise(JobAlarm alarm, std::string_view name);
    void RaiseMissing(Operand const& operand);

    ControllerModel& model_;
    JobSource const& source_;
    std::vector<Frame> stack_;
    std::map<std::string, Program> programs_; ///< those met since the last start or change of the store
    std::uint64_t programsRevision_ = 0; ///< of the store, when they were parsed
    bool isRunning_ = false;
    Clock::Duration due_{0}; ///< when the current line is done; of a job that runs
    Clock::Duration remaining_{0}; ///< of the current line; of a job that stands
};

} // namespace harvlink::simulator
