#include <array>

#include "motion/MotionMessages.h"
#include "simulator/handlers/Acknowledgement.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/model/FixedText.h"

namespace harvlink::simulator {

namespace {

/// The alarm numbers that a program may raise. All others belong to the controller.
constexpr std::uint16_t FirstUserAlarm = 8000;
constexpr std::uint16_t LastUserAlarm = 8999;

class FaultHandler final : public CommandHandler {
public:
    explicit FaultHandler(ControllerModel& model) : model_(model) {}

    std::span<CommandNumber const> Commands() const override {
        using enum CommandNumber;
        static constexpr std::array Own{AlarmDataRead, AlarmHistoryRead, AlarmReset, CommandNumber::SetAlarm};
        return Own;
    }

    void Handle(Request const& request, Reply& reply) override {
        switch (request.Command()) {
        case CommandNumber::AlarmDataRead:
            reply.Set(model_.alarms.Active(request.subHeader.instance));
            break;
        case CommandNumber::AlarmHistoryRead:
            ReadHistory(request.subHeader.instance, reply);
            break;
        case CommandNumber::AlarmReset:
            Reset(request, reply);
            break;
        default:
            Raise(request.As<SetAlarmMsg>(), reply);
            break;
        }
    }

private:
    /// The thousands of the instance are the category, the rest is the position from 1.
    void ReadHistory(std::uint16_t instance, Reply& reply) const {
        auto const position = static_cast<std::size_t>(instance % 1000);
        if (position < 1 || position > Alarms::HistoryLength) {
            reply.Refuse(Refusal::InvalidInstance);
            return;
        }
        auto const category = static_cast<AlarmCategory>(instance - instance % 1000);
        reply.Set(model_.alarms.History(category, position));
    }

    void Reset(Request const& request, Reply& reply) {
        if (request.As<std::uint32_t>() != 1) {
            reply.Refuse(Refusal::DataOutOfRange);
            return;
        }
        if (request.subHeader.instance == 1) {
            model_.ResetAlarms();
        } else {
            model_.SetError(false);
        }
        reply.Set(Done);
    }

    void Raise(SetAlarmMsg const& alarm, Reply& reply) {
        if (alarm.alarmNumber < FirstUserAlarm || alarm.alarmNumber > LastUserAlarm) {
            reply.Refuse(Refusal::DataOutOfRange);
            return;
        }
        model_.RaiseAlarm(alarm.alarmNumber, alarm.subCode, FieldText(alarm.text));
        reply.Set(Done);
    }

    ControllerModel& model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeFaultHandler(ControllerModel& model) {
    return std::make_unique<FaultHandler>(model);
}

} // namespace harvlink::simulator
