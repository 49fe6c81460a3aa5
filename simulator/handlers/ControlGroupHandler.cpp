#include <array>
#include <cstdint>

#include "controller/ControlGroupMessages.h"
#include "position/AxisScaling.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/motion/MotionEngine.h"

namespace harvlink::simulator {

namespace {

using enum CommandNumber;

// The older position read selects base coordinates by an instance that is higher by this.
constexpr std::uint16_t BaseCoordinateOffset = 100;
constexpr std::uint16_t HighestUserSelector = TaughtFrames::HighestUser + 1;
constexpr Refusal UserCoordinateNotTaught{0x3350};

class ControlGroupHandler final : public CommandHandler {
public:
    ControlGroupHandler(ControllerModel const& model, MotionEngine const& motion) : model_(model), motion_(motion) {}

    std::span<CommandNumber const> Commands() const override { return commands_; }

    void Handle(Request const& request, Reply& reply) override {
        if (request.Command() == UAPIPositionRead) {
            ReadSelectedPosition(request.As<UAPIGetPositionSendData>(), reply);
            return;
        }
        std::uint16_t const instance = request.subHeader.instance;
        bool const inBaseCoordinates = request.Command() == RobotPositionRead && instance > BaseCoordinateOffset;
        auto const* const group = model_.groups.Find(
            static_cast<ControlGroupId>(inBaseCoordinates ? instance - BaseCoordinateOffset : instance));
        if (group == nullptr) {
            reply.Refuse(Refusal::InvalidInstance);
            return;
        }
        Read(request.Command(), *group, inBaseCoordinates, reply);
    }

private:
    static constexpr std::array commands_{AxisConfigurationRead, RobotPositionRead, PositionErrorRead, TorqueRead,
                                          UAPIPositionRead};

    void Read(CommandNumber command, ControlGroup const& group, bool inBaseCoordinates, Reply& reply) const {
        switch (command) {
        case AxisConfigurationRead:
            reply.Set(AxisLetters(group));
            break;
        case PositionErrorRead:
            reply.Set(motion_.PositionError(group));
            break;
        case TorqueRead:
            reply.Set(motion_.Torque(group));
            break;
        default:
            reply.Set(inBaseCoordinates ? BasePosition(group) : PulsePosition(group));
        }
    }

    AxisConfigurationDataMsg AxisLetters(ControlGroup const& group) const {
        AxisConfigurationDataMsg message;
        auto const& letters = motion_.Cell().Axes(group).letters;
        for (std::size_t i = 0; i < letters.size(); ++i) {
            message.axisNames[i] = static_cast<std::uint8_t>(letters[i]);
        }
        return message;
    }

    RobotPositionMsg PulsePosition(ControlGroup const& group) const {
        RobotPositionMsg message;
        message.toolNumber = static_cast<std::uint32_t>(motion_.ActiveTool(group));
        message.axes = motion_.Cell().Axes(group).ToPulses(motion_.PositionOf(group));
        return message;
    }

    /// A group without a pose always answers in pulses. Base axes answer in millimetres.
    RobotPositionMsg BasePosition(ControlGroup const& group) const {
        RobotPositionMsg message = PulsePosition(group);
        auto const& axes = motion_.Cell().Axes(group);
        if (axes.isArm) {
            auto const position = CartesianOf(group, {}, motion_.ActiveTool(group));
            message.figure = position.figure.Word();
            message.axes = position.ToWire();
        } else if (axes.isLinear) {
            message.axes = CartesianScaling.ToWire(motion_.PositionOf(group));
        } else {
            return message;
        }
        message.coordinateType = static_cast<std::uint32_t>(CoordinateType::BaseCoordinate);
        return message;
    }

    void ReadSelectedPosition(UAPIGetPositionSendData const& request, Reply& reply) const {
        auto const* const group = model_.groups.Find(request.group);
        if (group == nullptr) {
            reply.Refuse(Refusal::InvalidInstance);
        } else if (!reply.RefuseIf(CheckSelection(request))) {
            reply.Set(SelectedPosition(*group, request.coordinateSelector, request.toolNumber));
        }
    }

    Refusal CheckSelection(UAPIGetPositionSendData const& request) const {
        if (!motion_.Cell().HasTool(request.toolNumber)) {
            return Refusal::ToolNumberError;
        }
        if (request.coordinateSelector > HighestUserSelector) {
            return Refusal::UserNumberError;
        }
        bool const isUser = request.coordinateSelector > 1;
        return isUser && !motion_.Cell().HasUser(request.coordinateSelector - 1) ? UserCoordinateNotTaught
                                                                                 : Refusal::None;
    }

    UAPIPositionData SelectedPosition(ControlGroup const& group, std::uint16_t selector, std::uint16_t tool) const {
        UAPIPositionData position;
        position.toolNumber = static_cast<std::int16_t>(tool);
        auto const& axes = motion_.Cell().Axes(group);
        if (!axes.isArm) {
            bool const isTravel = axes.isLinear && selector <= 1;
            position.coordinateType = isTravel ? TypeOf(selector) : UAPICoordType::UAPIPulse;
            position.axes = isTravel ? CartesianScaling.ToWire(motion_.PositionOf(group)) : PulsePosition(group).axes;
            return position;
        }
        auto const cartesian = CartesianOf(group, SystemOf(selector), tool);
        position.coordinateType = TypeOf(selector);
        // Counted from 0 here, unlike everywhere else; the client adds 1.
        position.userCoordinateNumber = static_cast<std::int16_t>(selector > 1 ? selector - 2 : 0);
        position.figure = cartesian.figure.Word();
        position.axes = cartesian.ToWire();
        return position;
    }

    static UAPICoordType TypeOf(std::uint16_t selector) {
        if (selector > 1) {
            return UAPICoordType::UAPIUser;
        }
        return selector == 0 ? UAPICoordType::UAPIBase : UAPICoordType::UAPIRobot;
    }

    static CoordinateSystem SystemOf(std::uint16_t selector) {
        if (selector > 1) {
            return CoordinateSystem::User(selector - 1);
        }
        return {.kind = selector == 0 ? CoordinateSystem::Kind::Base : CoordinateSystem::Kind::Robot};
    }

    CartesianPosition CartesianOf(ControlGroup const& group, CoordinateSystem const& system, std::int64_t tool) const {
        return motion_.Cell().PositionOf(group, motion_.PositionOf(group), system, tool, motion_.Positions());
    }

    ControllerModel const& model_;
    MotionEngine const& motion_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeControlGroupHandler(ControllerModel const& model, MotionEngine const& motion) {
    return std::make_unique<ControlGroupHandler>(model, motion);
}

} // namespace harvlink::simulator
