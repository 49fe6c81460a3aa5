#pragma once

#include <cstdint>

namespace harvlink::simulator {

/// The code of a refused request, which the reply carries as added status. The list is open: a handler writes its own
/// codes as `Refusal{65534}`. The four-digit error numbers are written in hexadecimal, as controllers show them.
enum class Refusal : std::uint16_t {
    None = 0,

    RobotIsOperating = 0x2010,
    PendantHold = 0x2020,
    ExternalHold = 0x2040,
    CommandHold = 0x2050,
    AlarmOrErrorIsActive = 0x2060,
    ServoPowerIsOff = 0x2070,
    IncorrectMode = 0x2080,
    RemoteModeNeeded = 0x2100,
    NoSuchJob = 0x4040,
    NoExecutionJob = 0x4060,
    DataOverRange = 0x5200,

    UndefinedCommand = 40960,
    InvalidInstance = 40961,
    InvalidAttribute = 40962,

    DataUseProhibited = 45058,
    DataSizeError = 45059,
    DataOutOfRange = 45060,
    ApplicationUnregistered = 45062,
    TypeUnregistered = 45063,
    PositionTypeError = 45068,
    ToolNumberError = 45069,
    UserNumberError = 45070,

    RequestFailed = 51200,

    FrameSizeError = 58526,
    BlockNumberError = 58529,
    AckError = 58530,
    CategoryError = 58531,
    FrameSizeMismatch = 58535,

    InvalidParameter = 65534,
    InvalidParameterGroup = 65535,
    WritingNeedsRemoteMode = 65535,
};

} // namespace harvlink::simulator
