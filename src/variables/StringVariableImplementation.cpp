#include "variables/StringVariableImplementation.h"

#include <algorithm>
#include <array>

#include "variables/VariableFunctions.h"

namespace harvlink {
namespace {

using WireText = std::array<char, 32>;

} // namespace

StatusInfo StringVariableImplementation::Read(unsigned short index, StringVariableData& variable) {
    variable = {};
    StatusInfo status;
    auto const reply = VariableFunctions::GetVariable<WireText>(index, CommandNumber::StringVariable, status,
                                                                networkManager, rs22State);
    variable.variableIndex = index;
    if (status.StatusCode == 0) {
        // The length is the reply's, so zero bytes inside stay; what it claims beyond the field is not there.
        std::size_t const length = std::min<std::size_t>(reply.header.payloadSize, reply.payload.size());
        variable.value.assign(reply.payload.begin(), length);
    }
    return status;
}

StatusInfo StringVariableImplementation::Write(StringVariableData const& variable) {
    // Only the low 16 bits of the length are looked at, on purpose.
    auto const length = static_cast<std::uint16_t>(variable.value.size());
    WireText text{};
    bool const truncated = length > text.size();
    auto const count = truncated ? static_cast<std::uint16_t>(text.size()) : length;
    std::copy_n(variable.value.begin(), count, text.begin());
    StatusInfo status = VariableFunctions::SetVariable(variable.variableIndex, CommandNumber::StringVariable, text,
                                                       networkManager, rs22State, count);
    if (truncated && status.StatusCode == 0) {
        status.Message += " String was truncated to 32 characters";
    }
    return status;
}

} // namespace harvlink
