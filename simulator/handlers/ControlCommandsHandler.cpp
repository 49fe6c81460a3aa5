#include <array>

#include "harvlink/ControlCommandsInterface.h"
#include "simulator/handlers/Acknowledgement.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/jobs/JobEngine.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

constexpr std::uint16_t HoldInstance = 1;

class ControlCommandsHandler final : public CommandHandler {
public:
    ControlCommandsHandler(ControllerModel& model, JobEngine& jobs) : model_(model), jobs_(jobs) {}

    std::span<CommandNumber const> Commands() const override {
        using enum CommandNumber;
        static constexpr std::array Own{HoldOrServo, CycleModeSwitch, PendantMessage, JobStart};
        return Own;
    }

    void Handle(Request const& request, Reply& reply) override {
        if (!reply.RefuseIf(Execute(request))) {
            reply.Set(Done);
        }
    }

private:
    Refusal Execute(Request const& request) {
        switch (request.Command()) {
        case CommandNumber::HoldOrServo:
            return Switch(request);
        case CommandNumber::CycleModeSwitch:
            return SwitchCycle(request.As<std::uint32_t>());
        case CommandNumber::PendantMessage:
            model_.pendantText.assign(reinterpret_cast<char const*>(request.payload.data()), request.payload.size());
            return Refusal::None;
        default:
            return request.As<std::uint32_t>() == 1 ? jobs_.Start() : Refusal::DataOutOfRange;
        }
    }

    Refusal Switch(Request const& request) {
        auto const wanted = request.As<SignalStatus>();
        if (wanted != SignalStatus::On && wanted != SignalStatus::Off) {
            return Refusal::DataOutOfRange;
        }
        bool const on = wanted == SignalStatus::On;
        return request.subHeader.instance == HoldInstance ? model_.CommandHold(on) : model_.CommandServo(on);
    }

    Refusal SwitchCycle(std::uint32_t number) {
        if (number < 1 || number > 3) {
            return Refusal::DataOutOfRange;
        }
        return model_.CommandCycle(static_cast<CycleMode>(number - 1));
    }

    ControllerModel& model_;
    JobEngine& jobs_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeControlCommandsHandler(ControllerModel& model, JobEngine& jobs) {
    return std::make_unique<ControlCommandsHandler>(model, jobs);
}

} // namespace harvlink::simulator
