#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <netinet/in.h>

#include "wire/Packets.h"

namespace harvlink::bench {

/// The floor: what any client has to do for an exchange. One send, one wait on two sockets, one read.
class BareClient {
public:
    explicit BareClient(std::string const& address);
    BareClient(BareClient const&) = delete;
    BareClient& operator=(BareClient const&) = delete;
    ~BareClient();

    /// Sends the request and waits for one datagram. False if none came within a second.
    bool Exchange(std::span<std::byte const> request, std::span<std::byte> reply, Division division);
    void Send(std::span<std::byte const> request, Division division);
    bool Receive(std::span<std::byte> reply);
    void Wait(int milliseconds);

    /// A read of byte variable 0, as the library sends it.
    bool ReadByteVariable();
    void RequestByteVariable();
    bool ReceiveByteVariable();

private:
    int robotSocket;
    int fileSocket;
    sockaddr_in robotEndpoint;
    sockaddr_in fileEndpoint;
    std::uint8_t id = 0;
};

} // namespace harvlink::bench
