#include "cli/program/VariableAccess.h"

#include <utility>

namespace harvlink::cli {

namespace {

// The records of the library have the value in a member with one of two names.
template <typename Record>
auto& ValueOf(Record& record) {
    if constexpr (requires { record.positionData; }) {
        return record.positionData;
    } else {
        return record.value;
    }
}

/// Calls `visit` with the library's interface for a kind of variables.
template <typename Visitor>
StatusInfo VisitKind(VariablesInterface& variables, VariableKind kind, Visitor const& visit) {
    switch (kind) {
    case VariableKind::Byte:
        return visit(*variables.byteVariable);
    case VariableKind::Integer:
        return visit(*variables.integerVariable);
    case VariableKind::DoubleInteger:
        return visit(*variables.doubleIntVariable);
    case VariableKind::Real:
        return visit(*variables.realVariable);
    case VariableKind::String:
        return visit(*variables.stringVariable);
    case VariableKind::RobotPosition:
        return visit(*variables.robotPositionVariable);
    case VariableKind::BasePosition:
        return visit(*variables.basePositionVariable);
    case VariableKind::StationPosition:
        break;
    }
    return visit(*variables.stationPositionVariable);
}

} // namespace

StatusInfo ReadVariable(VariablesInterface& variables, VariableAddress address, VariableValue& value) {
    return VisitKind(variables, address.kind, [&]<typename Record>(VariableInterface<Record>& variable) {
        Record record;
        StatusInfo status = variable.Read(address.index, record);
        value = std::move(ValueOf(record));
        return status;
    });
}

StatusInfo WriteVariable(VariablesInterface& variables, VariableAssignment const& assignment) {
    return VisitKind(variables, assignment.address.kind, [&]<typename Record>(VariableInterface<Record>& variable) {
        Record record;
        record.variableIndex = assignment.address.index;
        auto& held = ValueOf(record);
        held = std::get<std::remove_reference_t<decltype(held)>>(assignment.value);
        return variable.Write(record);
    });
}

PendingWrite PendingVariable(VariablesInterface& variables, VariableAssignment const& assignment, AfterLoss afterLoss) {
    return {VariableName(assignment.address), [&variables, assignment] { return WriteVariable(variables, assignment); },
            [&variables, assignment](bool& isHeld) {
                VariableValue present;
                StatusInfo status = ReadVariable(variables, assignment.address, present);
                isHeld = FormatVariableValue(present) == FormatVariableValue(assignment.value);
                return status;
            },
            afterLoss};
}

} // namespace harvlink::cli
