#pragma once

#include <optional>

#include "simulator/jobs/JobProgram.h"

namespace harvlink::simulator {

class ControllerModel;

/// A variable's value; 1 or 0 for a signal. Nothing if the controller has no such variable or signal.
std::optional<double> ReadOperand(ControllerModel const& model, Operand const& operand);

/// Does nothing if there is no such variable or signal. A whole number beyond the range of its kind wraps around.
void WriteOperand(ControllerModel& model, Operand const& operand, double value);

} // namespace harvlink::simulator
