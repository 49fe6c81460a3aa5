#pragma once

#include "simulator/protocol/Refusal.h"

/// @file
/// The codes that only the file port uses.

namespace harvlink::simulator::FileRefusal {

inline constexpr Refusal DiskFull{0x1020};
inline constexpr Refusal OverwriteForbidden{57996};
inline constexpr Refusal FileIsEmpty{58012};
inline constexpr Refusal NotWritable{58014};
inline constexpr Refusal NotInFileList{58023};
inline constexpr Refusal NotDeletable{58031};
inline constexpr Refusal RemoteModeIsOff{58034};
inline constexpr Refusal NoSuchFile{58035};
inline constexpr Refusal NoData{58525};
inline constexpr Refusal InvalidJobName{0x4190};

} // namespace harvlink::simulator::FileRefusal
