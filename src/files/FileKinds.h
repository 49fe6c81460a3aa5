#pragma once

#include <array>
#include <string_view>

#include "harvlink/FileInterface.h"

namespace harvlink {

struct FileKind {
    FileType type;
    std::string_view pattern;
    bool writable;

    constexpr std::string_view Extension() const { return pattern.substr(1); }
};

inline constexpr std::array<FileKind, 7> FileKinds{{
    {FileType::JobFile, "*.JBI", true},
    {FileType::DataFile, "*.DAT", true},
    {FileType::ConditionFile, "*.CND", true},
    {FileType::ParameterFile, "*.PRM", false},
    {FileType::SystemFile, "*.SYS", false},
    {FileType::ListingFile, "*.LST", true},
    {FileType::LogFile, "*.LOG", false},
}};

} // namespace harvlink
