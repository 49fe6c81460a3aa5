#include <algorithm>
#include <array>

#include "controller/JobMessages.h"
#include "simulator/handlers/Acknowledgement.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/jobs/JobEngine.h"
#include "simulator/model/FixedText.h"
#include "simulator/model/JobName.h"

namespace harvlink::simulator {

namespace {

/// Task 0 runs the selected job. The other tasks exist but are always idle.
constexpr std::uint32_t TaskCount = 8;
constexpr std::uint32_t FullSpeed = 10000; ///< hundredths of a per cent
constexpr Refusal NoSuchTask{65535};

class JobHandler final : public CommandHandler {
public:
    explicit JobHandler(JobEngine& jobs) : jobs_(jobs) {}

    std::span<CommandNumber const> Commands() const override {
        static constexpr std::array Own{CommandNumber::ExecutingJobRead, CommandNumber::JobSelect,
                                        CommandNumber::JobStackRead};
        return Own;
    }

    void Handle(Request const& request, Reply& reply) override {
        switch (request.Command()) {
        case CommandNumber::ExecutingJobRead:
            ReadExecutingJob(request.subHeader.instance, reply);
            break;
        case CommandNumber::JobSelect:
            Select(request.As<JobMsg>(), reply);
            break;
        default:
            ReadStack(request.As<TaskDataMsg>().task, reply);
        }
    }

private:
    void ReadExecutingJob(std::uint32_t instance, Reply& reply) const {
        if (instance < 1 || instance > TaskCount) {
            reply.Refuse(Refusal::InvalidInstance);
            return;
        }
        JobMsg message;
        if (instance == 1) {
            auto const place = jobs_.Current();
            FillText(message.jobName, place.name);
            message.line = place.line;
            message.stepNumber = place.step;
        }
        message.speedOverride = FullSpeed;
        reply.Set(message);
    }

    void Select(JobMsg const& message, Reply& reply) {
        auto const name = FieldText(message.jobName);
        if (!IsJobName(UpperCase(name))) {
            reply.Refuse(Refusal::NoSuchJob);
        } else if (!reply.RefuseIf(jobs_.Select(name, message.line))) {
            reply.Set(Written);
        }
    }

    void ReadStack(std::uint32_t task, Reply& reply) const {
        if (task >= TaskCount) {
            reply.Refuse(NoSuchTask);
            return;
        }
        JobStructs::JobStackReturnData stack;
        auto const count = task == 0 ? std::min(jobs_.Depth(), stack.jobNames.size()) : 0;
        for (std::size_t i = 0; i < count; ++i) {
            FillText(stack.jobNames[i], jobs_.NameAt(i));
        }
        stack.jobCount = static_cast<std::int8_t>(count);
        reply.Set(stack);
    }

    JobEngine& jobs_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeJobHandler(JobEngine& jobs) {
    return std::make_unique<JobHandler>(jobs);
}

} // namespace harvlink::simulator
