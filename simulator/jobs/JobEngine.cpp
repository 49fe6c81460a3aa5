#include "simulator/jobs/JobEngine.h"

#include <algorithm>
#include <utility>

#include "simulator/jobs/JobParser.h"
#include "simulator/jobs/OperandAccess.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/model/JobName.h"

namespace harvlink::simulator {

namespace {

constexpr std::size_t MaxPrograms = 64;

Clock::Duration TimeOf(Instruction const& instruction) {
    switch (instruction.opcode) {
    case Opcode::Comment:
    case Opcode::Label:
        return Clock::Duration{0};
    case Opcode::Timer:
        return std::chrono::duration_cast<Clock::Duration>(std::chrono::duration<double>(instruction.value));
    default:
        return JobEngine::InstructionTime;
    }
}

bool Compare(double left, Comparison comparison, double right) {
    switch (comparison) {
    case Comparison::Equal:
        return left == right;
    case Comparison::NotEqual:
        return left != right;
    case Comparison::Less:
        return left < right;
    case Comparison::LessOrEqual:
        return left <= right;
    case Comparison::Greater:
        return left > right;
    case Comparison::GreaterOrEqual:
        return left >= right;
    }
    return false;
}

bool IsSignal(Operand const& operand) {
    return operand.kind == OperandKind::Input || operand.kind == OperandKind::Output;
}

} // namespace

JobEngine::JobEngine(ControllerModel& model, JobSource const& source) : model_(model), source_(source) {
    model_.SetJobActivity(*this);
}

Refusal JobEngine::Load(std::string const& name, Program& program) {
    auto const revision = source_.Revision();
    if (programsRevision_ != revision || programs_.size() >= MaxPrograms) {
        programs_.clear();
        programsRevision_ = revision;
    }
    if (auto const known = programs_.find(name); known != programs_.end()) {
        program = known->second;
        return Refusal::None;
    }
    auto const text = source_.JobText(name);
    if (text == nullptr) {
        return Refusal::NoSuchJob;
    }
    auto parsed = ParseJob(*text);
    if (parsed.refusal == Refusal::None && parsed.program.name != name) {
        parsed.refusal = JobRefusal::NameRecord;
    }
    if (parsed.refusal == Refusal::None) {
        program = std::make_shared<JobProgram const>(std::move(parsed.program));
        programs_[name] = program;
    }
    return parsed.refusal;
}

Refusal JobEngine::Select(std::string_view name, std::uint32_t line) {
    if (isRunning_) {
        return Refusal::RobotIsOperating;
    }
    StackEntry entry{.name = UpperCase(name), .program = nullptr, .line = line};
    programs_.clear();
    if (auto const refusal = Load(entry.name, entry.program); refusal != Refusal::None) {
        return refusal;
    }
    if (line >= entry.program->lines.size()) {
        return Refusal::DataOverRange;
    }
    remaining_ = TimeOf(entry.Current());
    stack_.clear();
    stack_.push_back(std::move(entry));
    return Refusal::None;
}

/// Parses the jobs on the stack again, because their files may have changed while the job was stopped.
Refusal JobEngine::Reload() {
    programs_.clear();
    for (auto& entry : stack_) {
        Program program;
        if (auto const refusal = Load(entry.name, program); refusal != Refusal::None) {
            return refusal;
        }
        bool const isCaller = &entry != &stack_.back();
        if (entry.line >= program->lines.size() || (isCaller && program->lines[entry.line].opcode != Opcode::Call)) {
            return Refusal::DataOverRange;
        }
        entry.program = std::move(program);
    }
    return Refusal::None;
}

Refusal JobEngine::Start() {
    if (model_.IsRunning()) {
        return Refusal::RobotIsOperating;
    }
    auto refusal = model_.CheckReadyToMove();
    if (refusal != Refusal::None) {
        return refusal;
    }
    if (stack_.empty()) {
        return Refusal::NoExecutionJob;
    }
    refusal = Reload();
    if (refusal == Refusal::None) {
        isRunning_ = true;
        due_ = model_.clock.Now() + remaining_;
    }
    return refusal;
}

bool JobEngine::IsExecuting(std::string_view job) const {
    return isRunning_ && std::ranges::find(stack_, job, &StackEntry::name) != stack_.end();
}

JobEngine::Place JobEngine::Current() const {
    if (stack_.empty()) {
        return {};
    }
    auto const& entry = stack_.back();
    return {.name = entry.name, .line = entry.line, .step = entry.Current().step};
}

void JobEngine::OnStateChange() {
    if (isRunning_ && model_.CheckReadyToMove() != Refusal::None) {
        isRunning_ = false;
        remaining_ = std::max(due_ - model_.clock.Now(), Clock::Duration{0});
    }
}

void JobEngine::Stop() {
    isRunning_ = false;
    remaining_ = TimeOf(stack_.back().Current());
}

/// Limited, and what it could not do is not made up for: a loop that takes no time would hold up all controllers.
void JobEngine::Tick(Clock::Duration now) {
    for (std::size_t i = 0; isRunning_ && due_ <= now && i < MaxPerTick; ++i) {
        Execute(stack_.back().Current());
    }
    due_ = std::max(due_, now);
}

void JobEngine::Execute(Instruction const& instruction) {
    // Keeps the program alive while one of its instructions is executed, even if that changes the stack.
    auto const program = stack_.back().program;
    bool const endsStep = model_.state.cycle == CycleMode::Step && TimeOf(instruction) > Clock::Duration{0};
    auto const line = &instruction;
    switch (instruction.opcode) {
    case Opcode::End:
        Return();
        break;
    case Opcode::Call:
        Call(program->callees[instruction.target]);
        break;
    case Opcode::Jump:
        ExecuteJump(instruction);
        break;
    case Opcode::Wait:
        ExecuteWait(instruction);
        break;
    case Opcode::DigitalOut:
    case Opcode::Set:
    case Opcode::Increment:
    case Opcode::Decrement:
        ExecuteAssignment(instruction);
        break;
    default:
        GoOn();
    }
    bool const isWaiting = instruction.opcode == Opcode::Wait && &stack_.back().Current() == line;
    if (isRunning_ && endsStep && !isWaiting) {
        Stop();
    }
}

void JobEngine::GoTo(std::uint32_t line) {
    stack_.back().line = line;
    due_ += TimeOf(stack_.back().Current());
}

void JobEngine::ExecuteJump(Instruction const& instruction) {
    if (instruction.operand.kind == OperandKind::None) {
        GoTo(instruction.target);
        return;
    }
    auto const value = ReadOperand(model_, instruction.operand);
    if (!value) {
        RaiseMissing(instruction.operand);
    } else if (Compare(*value, instruction.comparison, instruction.value)) {
        GoTo(instruction.target);
    } else {
        GoOn();
    }
}

void JobEngine::ExecuteWait(Instruction const& instruction) {
    auto const value = ReadOperand(model_, instruction.operand);
    if (!value) {
        RaiseMissing(instruction.operand);
    } else if (Compare(*value, instruction.comparison, instruction.value)) {
        GoOn();
    } else {
        due_ += InstructionTime;
    }
}

void JobEngine::ExecuteAssignment(Instruction const& instruction) {
    auto const old = ReadOperand(model_, instruction.operand);
    if (!old) {
        RaiseMissing(instruction.operand);
        return;
    }
    auto value = instruction.value;
    if (instruction.opcode == Opcode::Increment) {
        value = *old + 1.0;
    } else if (instruction.opcode == Opcode::Decrement) {
        value = *old - 1.0;
    }
    WriteOperand(model_, instruction.operand, value);
    GoOn();
}

void JobEngine::Call(std::string const& name) {
    if (stack_.size() >= MaxDepth) {
        Raise(JobAlarm::CallTooDeep, "JOB CALLS TOO DEEP");
        return;
    }
    StackEntry entry{.name = name, .program = nullptr, .line = 0};
    if (Load(name, entry.program) != Refusal::None) {
        Raise(JobAlarm::JobNotFound, "NO JOB " + name);
        return;
    }
    stack_.push_back(std::move(entry));
    GoTo(0);
}

void JobEngine::Return() {
    if (stack_.size() > 1) {
        stack_.pop_back();
        GoOn();
        return;
    }
    GoTo(0);
    if (model_.state.cycle != CycleMode::Automatic) {
        Stop();
    }
}

void JobEngine::Raise(JobAlarm alarm, std::string_view name) {
    Stop();
    model_.RaiseAlarm(static_cast<std::uint32_t>(alarm), stack_.back().line, name);
}

void JobEngine::RaiseMissing(Operand const& operand) {
    auto const number = std::to_string(operand.number);
    if (IsSignal(operand)) {
        Raise(JobAlarm::NoSuchSignal, "NO SIGNAL " + number);
    } else {
        Raise(JobAlarm::NoSuchVariable, "NO VARIABLE " + number);
    }
}

} // namespace harvlink::simulator
