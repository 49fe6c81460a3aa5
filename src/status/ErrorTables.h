#pragma once

#include <cstdint>

#include "status/StatusTable.h"

/// @file
/// Small tables that give some codes another text in the context of one subsystem, and the offset that marks a code as
/// read by that subsystem.

namespace harvlink {

namespace FileErrorHandling {
enum class FileErrors : std::int32_t { FileNotWritable = 58014 };
} // namespace FileErrorHandling

enum class IOError : std::int32_t {
    InvalidAddress = 40961,
    RemoteModeRequired = 65535,
    AddressNotWritable = 0x30007,
};

inline constexpr unsigned MotionErrorOffset = 50'000'000;
inline constexpr unsigned ControlGroupErrorOffset = 60'000'000;
inline constexpr unsigned JobErrorOffset = 80'000'000;
inline constexpr unsigned ConversionErrorOffset = 0x70000000;

extern StatusTable<std::int32_t> const JobErrorTable;
extern StatusTable<FileErrorHandling::FileErrors> const FileErrorTable;
extern StatusTable<IOError> const IOErrorTable;
extern StatusTable<std::int32_t> const MotionErrorTable;
extern StatusTable<std::int32_t> const MotionShortErrorTable; ///< texts that fit the pendant
extern StatusTable<std::int32_t> const ConversionErrorTable;
extern StatusTable<std::int32_t> const ControlGroupErrorTable;

} // namespace harvlink
