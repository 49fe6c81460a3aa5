#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "harvlink/Export.h"
#include "harvlink/PositionData.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// A numeric variable: its value and its number as the caller and the pendant know it, 0 to 2048.
template <typename Value>
struct ScalarVariableData {
    Value value{};
    std::uint16_t variableIndex = 0;
};

using ByteVariableData = ScalarVariableData<std::uint8_t>;
using IntegerVariableData = ScalarVariableData<std::int16_t>;
using DoubleIntVariableData = ScalarVariableData<std::int32_t>;
using RealVariableData = ScalarVariableData<float>;

/// A string variable: at most 32 bytes, plain, in whatever encoding the controller uses.
struct StringVariableData {
    std::string value;
    std::uint16_t variableIndex = 0;
};

/// Position of a robot.
struct RobotPositionVariableData {
    PositionData positionData{};
    std::uint16_t variableIndex = 0;
};

/// Position of a base axis. All axes that are not pulses count in 0.001 on the wire, axes 3 to 7 too.
struct BaseAxisPositionVariableData {
    PositionData positionData{};
    std::uint16_t variableIndex = 0;
};

/// Position of a station, in pulses.
struct StationPositionVariableData {
    PositionData positionData{};
    std::uint16_t variableIndex = 0;
};

/// The variables of one kind. Each call is one exchange, at most (1 + retries) x time-out; a refused argument sends
/// nothing. May be called from several threads at once. Reading or writing again is safe: a write stores the same value
/// again.
///
/// An index above 2048, or that the controller does not have, gives InvalidVariableIndex. No answer gives
/// ResponseTimeout: after a write it is then not known whether the value was stored.
template <typename Record>
class VariableInterface {
public:
    VariableInterface() = default;
    VariableInterface(VariableInterface const&) = delete;
    VariableInterface& operator=(VariableInterface const&) = delete;
    virtual ~VariableInterface() = default;

    /// Reads variable `index`. On failure `variable` holds the index and is empty otherwise.
    virtual StatusInfo Read(unsigned short index, Record& variable) = 0;

    /// Writes the record's value to the variable that the record names.
    virtual StatusInfo Write(Record const& variable) = 0;
};

using ByteVariableInterface = VariableInterface<ByteVariableData>;
using IntegerVariableInterface = VariableInterface<IntegerVariableData>;
using DoubleIntVariableInterface = VariableInterface<DoubleIntVariableData>;
using RealVariableInterface = VariableInterface<RealVariableData>;

/// A text of 33 to 65535 bytes is cut to its first 32: the write succeeds and its message ends in " String was truncated
/// to 32 characters". Only the low 16 bits of the length count. Zero bytes inside a text are kept.
using StringVariableInterface = VariableInterface<StringVariableData>;

/// Writing checks before it sends: a JointAngle position gives InvalidCoordinateType, Undefined code 3460, a tool number
/// outside 0 to the controller's tool count code 0xB00D, a UserCoordinate position with a number outside 1 to 63 code
/// 0xB00E.
using RobotPositionVariableInterface = VariableInterface<RobotPositionVariableData>;

/// A successful read hands back `variableIndex` 0, a failed one the index asked for. Positions are written in Cartesian
/// form: with CoordinateType::Pulse all eight axes are written as 0.
using BaseAxisPositionVariableInterface = VariableInterface<BaseAxisPositionVariableData>;

/// A successful read hands back `variableIndex` 0, a failed one the index asked for. Written as pulses whatever the
/// coordinate type says, truncated toward zero.
using StationPositionVariableInterface = VariableInterface<StationPositionVariableData>;

/// The controller's numbered variables of eight kinds. The objects belong to the connection and live as long as it does.
class VariablesInterface {
public:
    VariablesInterface() = default;
    VariablesInterface(VariablesInterface const&) = delete;
    VariablesInterface& operator=(VariablesInterface const&) = delete;
    virtual ~VariablesInterface() = 0;

    ByteVariableInterface* byteVariable = nullptr;
    IntegerVariableInterface* integerVariable = nullptr;
    DoubleIntVariableInterface* doubleIntVariable = nullptr;
    RealVariableInterface* realVariable = nullptr;
    StringVariableInterface* stringVariable = nullptr;
    RobotPositionVariableInterface* robotPositionVariable = nullptr;
    BaseAxisPositionVariableInterface* basePositionVariable = nullptr;
    StationPositionVariableInterface* stationPositionVariable = nullptr;
};

inline VariablesInterface::~VariablesInterface() = default;

/// Text forms such as "B005=12". They leave the stream's fill character at '0'.
/// @{
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, ByteVariableData const& variable);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, IntegerVariableData const& variable);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, DoubleIntVariableData const& variable);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, RealVariableData const& variable);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, StringVariableData const& variable);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, RobotPositionVariableData const& variable);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, BaseAxisPositionVariableData const& variable);
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, StationPositionVariableData const& variable);
/// @}

} // namespace harvlink
