#include "simulator/jobs/OperandAccess.h"

#include <cstdint>
#include <type_traits>
#include <vector>

#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

/// The signals of a class are numbered from 1, eight in a group.
std::optional<std::uint32_t> SignalAddress(Signals const& signals, Operand const& operand) {
    constexpr std::uint32_t FirstInputGroup = 1;
    constexpr std::uint32_t FirstOutputGroup = 1001;
    bool const isInput = operand.kind == OperandKind::Input;
    auto const place = operand.number - 1;
    auto const group = (isInput ? FirstInputGroup : FirstOutputGroup) + place / 8;
    if (signals.TypeOf(group) != (isInput ? IOType::GeneralInput : IOType::GeneralOutput)) {
        return std::nullopt;
    }
    return group * 10 + place % 8;
}

template <typename Number>
std::optional<double> ReadVariable(std::vector<Number> const& variables, std::uint32_t index) {
    return index < variables.size() ? std::optional(static_cast<double>(variables[index])) : std::nullopt;
}

template <typename Number>
void WriteVariable(std::vector<Number>& variables, std::uint32_t index, double value) {
    if (index >= variables.size()) {
        return;
    }
    if constexpr (std::is_integral_v<Number>) {
        variables[index] = static_cast<Number>(static_cast<std::int64_t>(value));
    } else {
        variables[index] = static_cast<Number>(value);
    }
}

} // namespace

std::optional<double> ReadOperand(ControllerModel const& model, Operand const& operand) {
    switch (operand.kind) {
    case OperandKind::Byte:
        return ReadVariable(model.variables.bytes, operand.number);
    case OperandKind::Integer:
        return ReadVariable(model.variables.integers, operand.number);
    case OperandKind::DoubleInt:
        return ReadVariable(model.variables.doubleInts, operand.number);
    case OperandKind::Real:
        return ReadVariable(model.variables.reals, operand.number);
    case OperandKind::Input:
    case OperandKind::Output:
        break;
    case OperandKind::None:
        return std::nullopt;
    }
    auto const address = SignalAddress(model.signals, operand);
    auto const state = address ? model.signals.Read(*address) : std::nullopt;
    return state ? std::optional(*state ? 1.0 : 0.0) : std::nullopt;
}

void WriteOperand(ControllerModel& model, Operand const& operand, double value) {
    switch (operand.kind) {
    case OperandKind::Byte:
        return WriteVariable(model.variables.bytes, operand.number, value);
    case OperandKind::Integer:
        return WriteVariable(model.variables.integers, operand.number, value);
    case OperandKind::DoubleInt:
        return WriteVariable(model.variables.doubleInts, operand.number, value);
    case OperandKind::Real:
        return WriteVariable(model.variables.reals, operand.number, value);
    case OperandKind::Input:
    case OperandKind::Output:
        break;
    case OperandKind::None:
        return;
    }
    if (auto const address = SignalAddress(model.signals, operand)) {
        model.signals.Write(*address, value != 0.0);
    }
}

} // namespace harvlink::simulator
