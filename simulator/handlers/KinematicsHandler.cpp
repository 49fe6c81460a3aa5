#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "kinematics/KinematicsMessages.h"
#include "position/AxisScaling.h"
#include "simulator/arm/InverseKinematics.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/motion/MotionEngine.h"

namespace harvlink::simulator {

namespace {

using enum CommandNumber;

constexpr Refusal ConversionFailed{65535};
constexpr Refusal ConversionImpossible{65534};
constexpr Refusal GroupOutOfRange{65533};
constexpr Refusal InverseKinematicsWrong{65531};
constexpr Refusal InvalidCartesianPosition{65530};

/// Converts between pulses, joint angles and poses. Tool and user coordinates are those of the position; base axes are
/// taken at their present position.
///
/// - A wrong kind of position or kinematic type: ConversionFailed.
/// - A group without joint angles (base axes) or without a pose (all but six-axis robots), a Delta robot, an unknown
///   tool beside joint angles, a result beyond 32 bits: ConversionImpossible.
/// - A position that isn't Cartesian, or with an unknown tool or user coordinate: InvalidCartesianPosition.
/// - A pose that can't be reached in its figure, within the joint limits: InverseKinematicsWrong.
class KinematicsHandler final : public CommandHandler {
public:
    KinematicsHandler(ControllerModel const& model, MotionEngine const& motion) : model_(model), motion_(motion) {}

    std::span<CommandNumber const> Commands() const override { return commands_; }

    void Handle(Request const& request, Reply& reply) override {
        // All requests begin with the fields of the shortest.
        auto const message = request.As<ConversionMsg>();
        auto const* const group = model_.groups.Find(message.group);
        if (group == nullptr) {
            reply.Refuse(GroupOutOfRange);
            return;
        }
        UAPIPositionData result = message.position;
        result.reserved = 0;
        Refusal const refusal = request.Command() == ConvertCartesianToJointAngle
                                    ? ToJointAngle(*group, request.As<ConvertCartPosToJointAngleMsg>(), result)
                                    : ConvertFromAxes(request.Command(), *group, message.position, result);
        if (!reply.RefuseIf(refusal)) {
            reply.Set(result);
        }
    }

private:
    static constexpr std::array commands_{ConvertJointAngleToCartesian, ConvertCartesianToJointAngle,
                                          ConvertPulseToJointAngle, ConvertJointAngleToPulse};

    Refusal ConvertFromAxes(CommandNumber command, ControlGroup const& group, UAPIPositionData const& position,
                            UAPIPositionData& result) const {
        bool const fromPulse = command == ConvertPulseToJointAngle;
        if (position.coordinateType != (fromPulse ? UAPICoordType::UAPIPulse : UAPICoordType::UAPIJointAngle)) {
            return ConversionFailed;
        }
        GroupAxes const& axes = Axes(group);
        if (axes.isLinear) {
            return ConversionImpossible;
        }
        if (command == ConvertJointAngleToCartesian) {
            return ToCartesian(group, position, result);
        }
        result.coordinateType = fromPulse ? UAPICoordType::UAPIJointAngle : UAPICoordType::UAPIPulse;
        result.axes = fromPulse ? JointAngleScaling.ToWire(axes.FromPulses(position.axes))
                                : axes.ToPulses(axes.FromWire(position.axes, JointAngleScaling));
        return Fits(result.axes) ? Refusal::None : ConversionImpossible;
    }

    Refusal ToCartesian(ControlGroup const& group, UAPIPositionData const& position, UAPIPositionData& result) const {
        if (!Axes(group).isArm || !Cell().HasTool(position.toolNumber)) {
            return ConversionImpossible;
        }
        auto const cartesian = Cell().PositionOf(group, Axes(group).FromWire(position.axes, JointAngleScaling), {},
                                                 position.toolNumber, motion_.Positions());
        result.coordinateType = UAPICoordType::UAPIBase;
        result.userCoordinateNumber = 0;
        result.figure = cartesian.figure.Word();
        result.axes = cartesian.ToWire();
        return Refusal::None;
    }

    Refusal ToJointAngle(ControlGroup const& group, ConvertCartPosToJointAngleMsg const& message,
                         UAPIPositionData& result) const {
        if (message.kinematicType == KinematicType::Delta || !Axes(group).isArm) {
            return ConversionImpossible;
        }
        if (message.kinematicType != KinematicType::KinematicFromSystem &&
            message.kinematicType != KinematicType::KinematicFigure) {
            return ConversionFailed;
        }
        auto const system = SystemOf(message.position);
        if (!system || !Cell().HasTool(message.position.toolNumber)) {
            return InvalidCartesianPosition;
        }
        AxisValues const wanted = Axes(group).FromWire(message.position.axes, CartesianScaling);
        Frame const tip = Cell().SystemFromRobot(group, *system, motion_.Positions()) *
                          FrameOfPose({wanted[0], wanted[1], wanted[2], wanted[3], wanted[4], wanted[5]});
        AxisValues const previous = JointAngleScaling.FromWire(message.previousAngles);
        auto const angles = AnglesOf(StandardArm, tip * Cell().Tool(message.position.toolNumber).Inverse(),
                                     ArmFigure::FromWord(message.position.figure), ArmAnglesOf(previous));
        if (!angles || !Axes(group).IsWithinLimits(WithArmAngles(wanted, *angles))) {
            return InverseKinematicsWrong;
        }
        result.coordinateType = UAPICoordType::UAPIJointAngle;
        result.axes = JointAngleScaling.ToWire(WithArmAngles(wanted, *angles));
        return Refusal::None;
    }

    std::optional<CoordinateSystem> SystemOf(UAPIPositionData const& position) const {
        switch (position.coordinateType) {
        case UAPICoordType::UAPIBase:
            return CoordinateSystem{};
        case UAPICoordType::UAPIRobot:
            return CoordinateSystem{.kind = CoordinateSystem::Kind::Robot};
        case UAPICoordType::UAPIUser:
            if (Cell().HasUser(position.userCoordinateNumber)) {
                return CoordinateSystem::User(position.userCoordinateNumber);
            }
            return std::nullopt;
        default:
            return std::nullopt;
        }
    }

    static bool Fits(WireAxes const& axes) {
        return std::ranges::find(axes, std::numeric_limits<std::int32_t>::min()) == axes.end();
    }

    Workcell const& Cell() const { return motion_.Cell(); }
    GroupAxes const& Axes(ControlGroup const& group) const { return Cell().Axes(group); }

    ControllerModel const& model_;
    MotionEngine const& motion_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeKinematicsHandler(ControllerModel const& model, MotionEngine const& motion) {
    return std::make_unique<KinematicsHandler>(model, motion);
}

} // namespace harvlink::simulator
