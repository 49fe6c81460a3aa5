#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "simulator/base/Descriptor.h"

namespace harvlink::simulator {

/// The socket by which other programs of the same user drive a running controller.
///
/// It is a Unix socket for packets (SOCK_SEQPACKET) with the abstract name "harvlink-sim/" and the controller's address:
/// no file is left behind, and a network namespace has its own, as it has its own loopback addresses. A request is one
/// packet of words that are separated by zero bytes. The answer is one packet: "+" and a text, or "-" and what is wrong.
class ControlSocket {
public:
    /// Listens. On failure the socket is not open and errno gives the reason.
    static ControlSocket Listen(std::string const& address);

    bool IsOpen() const { return descriptor_.IsOpen(); }
    int Get() const { return descriptor_.Get(); }

    /// Takes a client that waits, reads its request and answers with what `run` returns, or throws. Waits a second at most.
    void Serve(std::function<std::string(std::span<std::string const>)> const& run) const;

private:
    Descriptor descriptor_;
};

/// What a running controller answered.
struct ControlAnswer {
    bool isDone = false;
    std::string text;
};

/// Sends a request to the controller at the address. Throws std::system_error if none runs there, or none that is driven
/// by this user. Waits ten seconds at most.
ControlAnswer AskController(std::string const& address, std::span<std::string const> words);

} // namespace harvlink::simulator
