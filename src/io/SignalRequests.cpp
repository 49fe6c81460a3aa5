#include "io/SignalRequests.h"

#include "status/ContextualStatusInfoHandler.h"
#include "status/ErrorTables.h"

namespace harvlink {

void ApplyIOTable(StatusInfo& status) {
    HSEContextualStatusInfoHandler<IOError>(&IOErrorTable).SetContextualError(status);
}

StatusInfo InvalidIOAddress() {
    return StatusInformation(static_cast<int>(IOError::InvalidAddress),
                             IOErrorTable.Find(IOError::InvalidAddress).value());
}

StatusInfo SignalGroupRead::Decode(StatusInfo status, ReplyTo<SignalGroupRead> const& reply, unsigned char& value) {
    ApplyIOTable(status);
    value = reply.payload;
    return status;
}

SignalWordSequence::SignalWordSequence(unsigned int address, std::bitset<16>& value)
    : word(value), nextAddress(address) {
    word.reset();
    if (address % 10 != 0) {
        status = InvalidIOAddress();
    }
}

std::optional<SignalGroupRead> SignalWordSequence::Next() const {
    if (status.StatusCode != 0 || groupsRead == 2) {
        return std::nullopt;
    }
    return SignalGroupRead(nextAddress);
}

void SignalWordSequence::Take(StatusInfo exchangeStatus, ReplyTo<SignalGroupRead> const& reply) {
    unsigned char byte = 0;
    status = SignalGroupRead::Decode(std::move(exchangeStatus), reply, byte);
    if (++groupsRead == 1) {
        low = byte;
        nextAddress += 10;
    } else if (status.StatusCode == 0) {
        word = static_cast<unsigned long>(low | byte << 8U);
    }
}

StatusInfo RegisterRead::Decode(StatusInfo status, ReplyTo<RegisterRead> const& reply, unsigned short& value) {
    constexpr int invalidInstance = 40961;
    constexpr int invalidRegister = 65535;
    value = status.StatusCode == 0 ? reply.payload : 0;
    if (status.StatusCode == invalidInstance) {
        return StatusInformation(invalidRegister, "Register address is invalid.");
    }
    return status;
}

} // namespace harvlink
