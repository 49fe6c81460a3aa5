#include <array>
#include <cstdint>

#include "controller/ControlGroupMessages.h"
#include "position/AxisScaling.h"
#include "simulator/CommandHandler.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

using enum CommandNumber;

// The older position read tells base coordinates by an instance that is higher by this.
constexpr std::uint16_t BaseCoordinateOffset = 100;
constexpr std::uint16_t HighestUserSelector = Frames::HighestUser + 1;
constexpr Refusal UserCoordinateNotTaught{0x3350};

class ControlGroupHandler final : public CommandHandler {
public:
    explicit ControlGroupHandler(ControllerModel& model) : model_(model) {}

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
            reply.Set(model_.motion.PositionError(group));
            break;
        case TorqueRead:
            reply.Set(model_.motion.Torque(group));
            break;
        default:
            reply.Set(inBaseCoordinates ? BasePosition(group) : PulsePosition(group));
        }
    }

    AxisConfigurationDataMsg AxisLetters(ControlGroup const& group) const {
        AxisConfigurationDataMsg message;
        auto const& letters = model_.motion.Cell().Axes(group).letters;
        for (std::size_t i = 0; i < letters.size(); ++i) {
            message.axisNames[i] = static_cast<std::uint8_t>(letters[i]);
        }
        return message;
    }

    RobotPositionMsg PulsePosition(ControlGroup const& group) const {
        RobotPositionMsg message;
        message.toolNumber = static_cast<std::uint32_t>(model_.motion.ActiveTool(group));
        message.axes = model_.motion.Cell().Axes(group).ToPulses(model_.motion.PositionOf(group));
        return message;
    }

    /// A group that has no pose answers in pulses, whatever is asked; base axes in the millimetres of their travel.
    RobotPositionMsg BasePosition(ControlGroup const& group) const {
        RobotPositionMsg message = PulsePosition(group);
        auto const& axes = model_.motion.Cell().Axes(group);
        if (axes.isArm) {
            auto const position = CartesianOf(group, {}, model_.motion.ActiveTool(group));
            message.figure = position.figure.Word();
            message.axes = position.ToWire();
        } else if (axes.isLinear) {
            message.axes = CartesianScaling.ToWire(model_.motion.PositionOf(group));
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
        if (!model_.motion.Cell().HasTool(request.toolNumber)) {
            return Refusal::ToolNumberError;
        }
        if (request.coordinateSelector > HighestUserSelector) {
            return Refusal::UserNumberError;
        }
        bool const isUser = request.coordinateSelector > 1;
        return isUser && !model_.motion.Cell().HasUser(request.coordinateSelector - 1) ? UserCoordinateNotTaught
                                                                                       : Refusal::None;
    }

    UAPIPositionData SelectedPosition(ControlGroup const& group, std::uint16_t selector, std::uint16_t tool) const {
        UAPIPositionData position;
        position.toolNumber = static_cast<std::int16_t>(tool);
        auto const& axes = model_.motion.Cell().Axes(group);
        if (!axes.isArm) {
            bool const isTravel = axes.isLinear && selector <= 1;
            position.coordinateType = isTravel ? TypeOf(selector) : UAPICoordType::UAPIPulse;
            position.axes =
                isTravel ? CartesianScaling.ToWire(model_.motion.PositionOf(group)) : PulsePosition(group).axes;
            return position;
        }
        auto const cartesian = CartesianOf(group, SystemOf(selector), tool);
        position.coordinateType = TypeOf(selector);
        // Counted from 0 here, unlike everywhere else: who asks adds the one.
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
        auto const& motion = model_.motion;
        return motion.Cell().PositionOf(group, motion.PositionOf(group), system, tool, motion.Positions());
    }

    ControllerModel& model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeControlGroupHandler(ControllerModel& model) {
    return std::make_unique<ControlGroupHandler>(model);
}

} // namespace harvlink::simulator
