#include <array>
#include <cstdio>
#include <optional>

#include "controller/StatusMessages.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/model/FixedText.h"
#include "simulator/model/Generation.h"
#include "wire/SystemInfoMessage.h"
#include "wire/SystemParameterMessage.h"

namespace harvlink::simulator {

namespace {

using Counter = OperatingTimes::Counter;

constexpr std::uint16_t FirstApplication = 101;
constexpr std::uint16_t ApplicationPlaces = 8;
constexpr std::string_view CountingSince = "2019/06/03 08:00";

constexpr std::uint32_t Bit(unsigned position, bool value) {
    return value ? 1U << position : 0U;
}

std::uint32_t FirstWord(ControllerModel const& model) {
    auto const& state = model.state;
    return Bit(0, state.cycle == CycleMode::Step) | Bit(1, state.cycle == CycleMode::Cycle) |
           Bit(2, state.cycle == CycleMode::Automatic) | Bit(3, model.IsRunning()) | Bit(5, state.mode == Mode::Teach) |
           Bit(6, state.mode == Mode::Play) | Bit(7, state.mode == Mode::Remote);
}

std::uint32_t SecondWord(ControllerModel const& model) {
    auto const& state = model.state;
    return Bit(1, state.pendantHold) | Bit(2, state.externalHold) | Bit(3, state.commandHold) |
           Bit(4, model.alarms.IsActive()) | Bit(5, state.error) | Bit(6, state.servoOn);
}

/// "009876:54'32"; hours beyond the field's six digits start again at 0.
std::array<char, 12> ElapsedText(std::uint64_t seconds) {
    std::array<char, 32> text{};
    auto const hours = static_cast<unsigned>(seconds / 3600 % 1'000'000);
    std::snprintf(text.data(), text.size(), "%06u:%02u'%02u", hours, static_cast<unsigned>(seconds / 60 % 60),
                  static_cast<unsigned>(seconds % 60));
    std::array<char, 12> field{};
    FillText(field, text.data());
    return field;
}

class ControllerStateHandler final : public CommandHandler {
public:
    explicit ControllerStateHandler(ControllerModel& model) : model_(model) {}

    std::span<CommandNumber const> Commands() const override {
        using enum CommandNumber;
        static constexpr std::array Own{StatusRead, OperatingTimeRead, SystemInformationRead, SystemParameterRead};
        return Own;
    }

    void Handle(Request const& request, Reply& reply) override {
        switch (request.Command()) {
        case CommandNumber::StatusRead:
            ReadStatus(request, reply);
            break;
        case CommandNumber::OperatingTimeRead:
            ReadTime(request.subHeader.instance, reply);
            break;
        case CommandNumber::SystemInformationRead:
            ReadSystemInformation(request.subHeader.instance, reply);
            break;
        default:
            ReadParameter(request.As<SytemParamMsgOut>(), reply);
            break;
        }
    }

private:
    bool HasGroup(int number) const { return model_.groups.Find(static_cast<ControlGroupId>(number)) != nullptr; }

    void ReadStatus(Request const& request, Reply& reply) const {
        if (request.subHeader.service == ServiceReadOne) {
            reply.Set(CheckControlModeReturnData{FirstWord(model_)});
        } else {
            reply.Set(StatusInformationReturnData{FirstWord(model_), SecondWord(model_)});
        }
    }

    void ReadTime(std::uint16_t instance, Reply& reply) {
        Counter counter{};
        if (reply.RefuseIf(FindCounter(instance, counter))) {
            return;
        }
        model_.UpdateTimes();
        TimeReturnMsg message;
        FillText(message.startTime, CountingSince);
        message.elapsedTime = ElapsedText(model_.times.Seconds(counter));
        reply.Set(message);
    }

    /// Each hundred is one kind of time: 10 is the total, robots start at 11, stations at 21.
    Refusal FindCounter(std::uint16_t instance, Counter& counter) const {
        if (instance == 1) {
            counter = Counter::ControlPower;
            return Refusal::None;
        }
        if (instance > 300 && instance <= 300 + ApplicationPlaces) {
            counter = Counter::Application;
            return instance == 301 ? Refusal::None : Refusal::ApplicationUnregistered;
        }
        if (instance >= 300) {
            return Refusal::InvalidInstance;
        }
        constexpr std::array ByHundred{Counter::Servo, Counter::Playback, Counter::Moving};
        counter = ByHundred.at(instance / 100);
        return CheckTimeOwner(instance % 100);
    }

    Refusal CheckTimeOwner(int place) const {
        bool const isRobot = place >= 11 && place <= 18;
        bool const isStation = place >= 21 && place <= 44;
        if (isRobot || isStation) {
            return HasGroup(isRobot ? place - 10 : place) ? Refusal::None : Refusal::RequestFailed;
        }
        return place == 10 ? Refusal::None : Refusal::InvalidInstance;
    }

    void ReadSystemInformation(std::uint16_t id, Reply& reply) const {
        auto const modelName = ModelName(id);
        if (!modelName) {
            reply.Refuse(Refusal::TypeUnregistered);
            return;
        }
        auto const& texts = TextsOf(model_.state.generation);
        SystemInfoReturnMsg message;
        FillText(message.softwareVersion, texts.softwareVersion);
        FillText(message.modelName, *modelName);
        FillText(message.parameterVersion, texts.parameterVersion);
        reply.Set(message);
    }

    /// Id 11 always exists, because a client recognises the generation by it.
    std::optional<std::string_view> ModelName(int id) const {
        if (id == 11 || (id >= 12 && id <= 18 && HasGroup(id - 10))) {
            return "HV012-1440-A00";
        }
        if (id >= 21 && id <= 44 && HasGroup(id)) {
            return "STATION-2";
        }
        if (id == FirstApplication) {
            return "GENERAL";
        }
        return std::nullopt;
    }

    void ReadParameter(SytemParamMsgOut const& asked, Reply& reply) const {
        std::int32_t value = 0;
        if (!reply.RefuseIf(model_.parameters.Read(asked.type, asked.group, asked.number, value))) {
            reply.Set(value);
        }
    }

    ControllerModel& model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeControllerStateHandler(ControllerModel& model) {
    return std::make_unique<ControllerStateHandler>(model);
}

} // namespace harvlink::simulator
