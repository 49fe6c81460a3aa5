#pragma once

#include <array>
#include <string_view>

#include "wire/Packets.h"

namespace harvlink {

using FileRequest = OutgoingPacket<std::array<char, FileNameSize>>;
using FileBlock = OutgoingPacket<std::array<char, FileBlockSize>>;
using FileReply = IncomingPacket<std::array<char, FileBlockSize>>;

/// The opening request of a file operation: a file name or pattern, cut to its first 32 bytes.
FileRequest SetPacket(FileServices service, std::string_view name);

/// A block of a file on its way to the controller. Always sent whole; its number and id are set when it is sent.
FileBlock SetPacket(FileServices service, std::array<char, FileBlockSize> const& contents);

/// The text of a block: what stands before its first zero byte.
std::string_view TextOf(std::array<char, FileBlockSize> const& block);

} // namespace harvlink
