#include <array>

#include "motion/MotionMessages.h"
#include "simulator/CommandHandler.h"
#include "simulator/handlers/Acknowledgement.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/motion/MotionRefusal.h"

namespace harvlink::simulator {

namespace {

using enum CommandNumber;

class MotionManagerHandler final : public CommandHandler {
public:
    explicit MotionManagerHandler(ControllerModel& model) : model_(model) {}

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
        if (model_.motion.Settings(slot) == nullptr) {
            reply.Refuse(MotionRefusal::NoSuchGroup);
        } else {
            reply.Set(model_.motion.Progress(slot));
        }
    }

    Refusal Write(Request const& request) {
        switch (request.Command()) {
        case MotionStart:
            return model_.motion.Start();
        case MotionStop:
            model_.motion.Stop();
            return Refusal::None;
        case MotionClearTargets:
            return model_.motion.Clear(request.As<MotionClearGroupTargets>().group);
        case MotionSendTarget:
            return model_.motion.SendTargets(request.As<MotionTargetSend>());
        default:
            return WriteSetting(request);
        }
    }

    /// Every setting begins with the motion slot that it is for.
    Refusal WriteSetting(Request const& request) {
        TargetSettings* const settings = model_.motion.Settings(request.As<TargetControlGroup>());
        if (settings == nullptr) {
            return MotionRefusal::NoSuchGroup;
        }
        switch (request.Command()) {
        case CommandNumber::MotionSetCoord:
            return settings->SetCoordinates(request.As<harvlink::MotionSetCoord>(), model_.motion.Cell());
        case MotionSetTool:
            return settings->SetTool(request.As<SetToolMsg>().toolNumber, model_.motion.Cell());
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

    ControllerModel& model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeMotionManagerHandler(ControllerModel& model) {
    return std::make_unique<MotionManagerHandler>(model);
}

} // namespace harvlink::simulator
