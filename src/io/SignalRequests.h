#pragma once

#include <bitset>
#include <optional>

#include "io/IOMessages.h"
#include "wire/Request.h"

namespace harvlink {

/// Gives a refusal the text of the signal table; the code stays.
void ApplyIOTable(StatusInfo& status);

/// Code and text of an address that does not exist, whether the library or the controller finds out.
StatusInfo InvalidIOAddress();

/// Reads the eight signals of a group.
struct SignalGroupRead {
    using Reply = std::uint8_t;
    static constexpr CommandNumber command = CommandNumber::IOData;
    static constexpr Service service = Service::ReadOne;
    std::uint16_t instance;

    /// Of the group's first signal; a multiple of 10.
    explicit SignalGroupRead(unsigned int address) : instance(static_cast<std::uint16_t>(address / 10)) {}

    /// The payload of a refusal is handed out too.
    static StatusInfo Decode(StatusInfo status, ReplyTo<SignalGroupRead> const& reply, unsigned char& value);
};

/// Reads a group and the one behind it as a word. The value is set when both have been read.
class SignalWordSequence {
public:
    /// An address that is not a group's first gives InvalidIOAddress without a request. `value` must outlive the sequence.
    SignalWordSequence(unsigned int address, std::bitset<16>& value);

    std::optional<SignalGroupRead> Next() const;
    void Take(StatusInfo exchangeStatus, ReplyTo<SignalGroupRead> const& reply);
    StatusInfo const& Result() const { return status; }

private:
    std::bitset<16>& word;
    unsigned int nextAddress;
    unsigned groupsRead = 0;
    unsigned char low = 0;
    StatusInfo status;
};

/// Writes the eight signals of a group. A bit set travels in its width in memory, 8 bytes; the controller takes the first.
template <typename Value>
struct SignalGroupWrite {
    using Reply = std::uint8_t;
    static constexpr CommandNumber command = CommandNumber::IOData;
    static constexpr Service service = Service::WriteOne;
    std::uint16_t instance;
    Value payload;

    static StatusInfo Decode(StatusInfo status) {
        ApplyIOTable(status);
        return status;
    }
};

/// Writes one signal, from `VersionYA` up.
struct SignalWrite {
    using Reply = std::uint8_t;
    static constexpr CommandNumber command = CommandNumber::UAPIWriteIO;
    static constexpr Service service = Service::WriteAll;
    static constexpr std::uint16_t instance = 0;
    UAPIIoData payload;

    static StatusInfo Decode(StatusInfo status) {
        ApplyIOTable(status);
        return status;
    }
};

/// Reads a register; 0 after a failure.
struct RegisterRead {
    using Reply = std::uint16_t;
    static constexpr CommandNumber command = CommandNumber::RegisterData;
    static constexpr Service service = Service::ReadOne;
    std::uint16_t instance;

    static StatusInfo Decode(StatusInfo status, ReplyTo<RegisterRead> const& reply, unsigned short& value);
};

} // namespace harvlink
