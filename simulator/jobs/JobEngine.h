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

/// The alarms that a running job raises. The sub-code is the line.
enum class JobAlarm : std::uint32_t {
    JobNotFound = 4450, ///< the called job doesn't exist or is not a valid job
    CallTooDeep = 4451,
    NoSuchVariable = 4452,
    NoSuchSignal = 4453,
};

/// Runs the selected job, in the language of JobParser.h, on variables and signals of the model.
///
/// Every line takes InstructionTime of the controller's clock. TIMER takes its own time; labels and comments take none.
/// A line has its effect at the end of its time. Hold, an alarm, loss of servo power and leaving remote mode stop the
/// job at once; the next start continues within the same line. After END the selected job is at its first line: it
/// stops there in cycle mode and runs again in automatic mode. In step mode each start executes one line, with the
/// labels and comments before it.
class JobEngine final : public JobActivity {
public:
    static constexpr Clock::Duration InstructionTime = std::chrono::milliseconds(20);
    static constexpr std::size_t MaxDepth =
        12; ///< of the call stack, the selected job included; a stack reply has room for as many names
    static constexpr std::size_t MaxPerTick = 1000; ///< lines; a job on a faster clock falls behind

    /// Registers as the job activity of the model. Model and source must outlive the engine.
    JobEngine(ControllerModel& model, JobSource const& source);

    /// The current line of the innermost job: the one that is executed, or that a start would begin with.
    struct Place {
        std::string_view name; ///< empty if no job was selected
        std::uint32_t line = 0;
        std::uint32_t step = 0;
    };

    /// Selects the job that a start runs, from `line` on.
    Refusal Select(std::string_view name, std::uint32_t line);

    /// Starts or continues the selected job. Refused unless the controller is ready to move and nothing is running.
    Refusal Start();

    bool IsRunning() const override { return isRunning_; }

    bool IsExecuting(std::string_view job) const override;

    Place Current() const;

    /// The call stack. Level 0 is the selected job, level Depth() - 1 the innermost one.
    std::size_t Depth() const { return stack_.size(); }
    std::string_view NameAt(std::size_t depth) const { return stack_.at(depth).name; }

    void OnStateChange() override;

    /// Whether Tick has anything to do.
    bool NeedsTicks() const { return isRunning_; }

    /// Advances to `now`, the time of the model's clock.
    void Tick(Clock::Duration now);

private:
    using Program = std::shared_ptr<JobProgram const>;

    struct StackEntry {
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
    std::vector<StackEntry> stack_;
    std::map<std::string, Program> programs_; ///< the jobs parsed since the last start or change of a file
    std::uint64_t programsRevision_ = 0; ///< JobSource::Revision when they were parsed
    bool isRunning_ = false;
    Clock::Duration due_{0}; ///< when the current line ends; for a running job
    Clock::Duration remaining_{0}; ///< time left of the current line; for a stopped job
};

} // namespace harvlink::simulator
