#pragma once

#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator::MotionRefusal {

/// The codes that only motion commands use.
inline constexpr Refusal RemoteModeNeeded{65535};
inline constexpr Refusal ServoOff{65534};
inline constexpr Refusal HoldIsOn{65533};
inline constexpr Refusal AlarmIsActive{65532};
inline constexpr Refusal NotInPlayMode{65529};
inline constexpr Refusal JobIsRunning{65528};
inline constexpr Refusal DuplicateGroup{65527};
inline constexpr Refusal BufferIsFull{65520};
inline constexpr Refusal PlaybackInterrupted{65519};
inline constexpr Refusal NoSuchGroup{65504};
inline constexpr Refusal InterpolationOutOfRange{65502};
inline constexpr Refusal UserFrameOutOfRange{65501};
inline constexpr Refusal ToolOutOfRange{65491};
inline constexpr Refusal AccelerationOutOfRange{65489};
inline constexpr Refusal DecelerationOutOfRange{65488};
inline constexpr Refusal UserFrameUnspecified{65446};
inline constexpr Refusal ToolUnspecified{65445};

/// A target, or a point on the way to it, that the axes can't reach.
inline constexpr Refusal PositionDataError{0x5120};
/// A coordinate system in which a target can't be given.
inline constexpr Refusal CoordinateSystemError{45067};

} // namespace harvlink::simulator::MotionRefusal
