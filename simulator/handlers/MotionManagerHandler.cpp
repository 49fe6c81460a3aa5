#include <array>

#include "motion/MotionMessages.h"
#include "simulator/handlers/Acknowledgement.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/motion/MotionEngine.h"
#include "simulator/motion/MotionRefusal.h"

namespace harvlink::simulator {

namespace {

using enum CommandNumber;

class MotionManagerHandler final : public CommandHandler {
public:
    explicit MotionManagerHandler(MotionEngine& motion) : motion_(motion) {}

    std::span<CommandNumber const> Commands() const override { return commands_; }

    void Handle(Request const& request, Reply& reply) override {
        if (request.Command() == MotionTargetProgress) {
            ReadProgress(request.As<TargetControlGroup>(), reply);
        } else if (!reply.RefuseIf(Write(request))) {
            reply.Set(Written);
        }
    }

private:
    static constexpr std::array commands_{MotionStart,         MotionStop,           MotionClearTargets,
                                          MotionSendTarget,    MotionTargetProgress, CommandNumber::MotionSetCoord,
                                          MotionSetTool,       MotionSetSpeed,       MotionSetAccelRatio,
                                          MotionSetDecelRatio, MotionSetConfig};

    void ReadProgress(TargetControlGroup slot, Reply& reply) {
        if (motion_.Settings(slot) == nullptr) {
            reply.Refuse(MotionRefusal::NoSuchGroup);
        } else {
            reply.Set(motion_.Progress(slot));
        }
    }

    Refusal Write(Request const& request) {
        switch (request.Command()) {
        case MotionStart:
            return motion_.Start();
        case MotionStop:
            motion_.Stop();
            return Refusal::None;
        case MotionClearTargets:
            return motion_.Clear(request.As<MotionClearGroupTargets>().group);
        case MotionSendTarget:
            return motion_.SendTargets(request.As<MotionTargetSend>());
        default:
            return WriteSetting(request);
        }
    }

    /// Every setting begins with its motion slot.
    Refusal WriteSetting(Request const& request) {
        TargetSettings* const settings = motion_.Settings(request.As<TargetControlGroup>());
        if (settings == nullptr) {
            return MotionRefusal::NoSuchGroup;
        }
        switch (request.Command()) {
        case CommandNumber::MotionSetCoord:
            return settings->SetCoordinates(request.As<harvlink::MotionSetCoord>(), motion_.Cell());
        case MotionSetTool:
            return settings->SetTool(request.As<SetToolMsg>().toolNumber, motion_.Cell());
        case MotionSetSpeed:
            return settings->SetSpeed(request.As<SetSpeedMsg>().speed);
        case MotionSetAccelRatio:
            return settings->SetAccelerationRatio(request.As<SetAccelRatioMsg>().ratio);
        case MotionSetDecelRatio:
            return settings->SetDecelerationRatio(request.As<SetDecelRatioMsg>().ratio);
        default:
            settings->figure = request.As<RobotConfigMsg>().figure;
            return Refusal::None;
        }
    }

    MotionEngine& motion_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeMotionManagerHandler(MotionEngine& motion) {
    return std::make_unique<MotionManagerHandler>(motion);
}

} // namespace harvlink::simulator
