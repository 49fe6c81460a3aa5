#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace harvlink::cli {

/// Ids of requests go from 0 to this.
inline constexpr std::uint8_t HighestId = 127;

using ProbeDatagram = std::vector<std::byte>;

ProbeDatagram SystemInformation(std::uint8_t id);
ProbeDatagram ControllerState(std::uint8_t id);
/// Asks for a file that does not exist.
ProbeDatagram MissingFile(std::uint8_t id);

/// The smallest payload of a successful answer to each of them.
inline constexpr std::size_t SystemInformationSize = 24; ///< the software version; the model follows
inline constexpr std::size_t ControllerStateSize = 8;

/// Whether it begins as a datagram of this protocol.
bool HasSignature(std::span<std::byte const> datagram);

/// Whether it is a datagram of this protocol with the length that its header gives.
bool IsWhole(std::span<std::byte const> datagram);

/// The functions below are for whole datagrams.
std::uint8_t IdOf(std::span<std::byte const> datagram);

/// 0 for success, else the code that the library would return.
int CodeOf(std::span<std::byte const> datagram);

/// Whether code and payload fit: a success has the payload that was asked for, a refusal has none.
bool IsConsistent(std::span<std::byte const> datagram, std::size_t leastPayload);

/// The text in a field of the payload; empty beyond its end.
std::string TextOf(std::span<std::byte const> datagram, std::size_t offset, std::size_t size);

} // namespace harvlink::cli
