#include <array>
#include <optional>

#include "harvlink/PositionData.h"
#include "simulator/handlers/Acknowledgement.h"
#include "simulator/handlers/Handlers.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

bool IsCoordinateType(std::uint32_t type) {
    return type == static_cast<std::uint32_t>(CoordinateType::Pulse) ||
           (type >= static_cast<std::uint32_t>(CoordinateType::BaseCoordinate) &&
            type <= static_cast<std::uint32_t>(CoordinateType::MasterTool));
}

class VariablesHandler final : public CommandHandler {
public:
    explicit VariablesHandler(ControllerModel& model) : model_(model) {}

    std::span<CommandNumber const> Commands() const override {
        using enum CommandNumber;
        static constexpr std::array Own{ByteVariable,         IntegerVariable,        DoubleIntVariable,
                                        RealVariable,         StringVariable,         RobotPositionVariable,
                                        BasePositionVariable, StationPositionVariable};
        return Own;
    }

    void Handle(Request const& request, Reply& reply) override {
        auto& variables = model_.variables;
        switch (request.Command()) {
        case CommandNumber::ByteVariable:
            return Access(variables.bytes, request, reply);
        case CommandNumber::IntegerVariable:
            return Access(variables.integers, request, reply);
        case CommandNumber::DoubleIntVariable:
            return Access(variables.doubleInts, request, reply);
        case CommandNumber::RealVariable:
            return Access(variables.reals, request, reply);
        case CommandNumber::StringVariable:
            return Access(variables.strings, request, reply);
        case CommandNumber::RobotPositionVariable:
            return Access(variables.robotPositions, request, reply);
        case CommandNumber::BasePositionVariable:
            return Access(variables.basePositions, request, reply);
        default:
            return Access(variables.stationPositions, request, reply);
        }
    }

private:
    template <typename Value>
    void Access(std::vector<Value>& list, Request const& request, Reply& reply) const {
        auto* const variable = Find(list, request.subHeader.instance);
        if (variable == nullptr) {
            reply.Refuse(Refusal::InvalidInstance);
        } else if (!request.IsWrite()) {
            Read(*variable, reply);
        } else if (!reply.RefuseIf(Write(*variable, request))) {
            reply.Set(Written);
        }
    }

    /// Parameter RS022 decides whether an instance equals the index or is one higher.
    template <typename Value>
    Value* Find(std::vector<Value>& list, std::uint32_t instance) const {
        auto const first = model_.parameters.Rs022() == 1 ? 0U : 1U;
        return instance >= first && instance - first < list.size() ? &list[instance - first] : nullptr;
    }

    template <typename Value>
    void Read(Value const& variable, Reply& reply) const {
        reply.Set(variable);
    }

    void Read(std::string const& variable, Reply& reply) const { reply.SetBytes(std::as_bytes(std::span(variable))); }

    template <typename Value>
    Refusal Write(Value& variable, Request const& request) const {
        variable = request.As<Value>();
        return Refusal::None;
    }

    Refusal Write(std::string& variable, Request const& request) const {
        variable.assign(reinterpret_cast<char const*>(request.payload.data()), request.payload.size());
        return Refusal::None;
    }

    Refusal Write(RobotPositionMsg& variable, Request const& request) const {
        auto const position = request.As<RobotPositionMsg>();
        if (!IsCoordinateType(position.coordinateType)) {
            return Refusal::PositionTypeError;
        }
        if (position.toolNumber >= model_.frames.tools.size()) {
            return Refusal::ToolNumberError;
        }
        if (position.userCoordinateNumber > TaughtFrames::HighestUser) {
            return Refusal::UserNumberError;
        }
        variable = position;
        return Refusal::None;
    }

    Refusal Write(BasePositionVariableMsg& variable, Request const& request) const {
        auto const position = request.As<BasePositionVariableMsg>();
        if (!IsCoordinateType(position.coordinateType)) {
            return Refusal::PositionTypeError;
        }
        variable = position;
        return Refusal::None;
    }

    ControllerModel& model_;
};

} // namespace

std::unique_ptr<CommandHandler> MakeVariablesHandler(ControllerModel& model) {
    return std::make_unique<VariablesHandler>(model);
}

} // namespace harvlink::simulator
