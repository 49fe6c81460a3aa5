#include <array>
#include <stdexcept>
#include <thread>

#include <modbus/modbus.h>
#include <unistd.h>

#include "cases/Cases.h"
#include "support/ChildProcess.h"
#include "support/Responder.h"

namespace harvlink::bench {
namespace {

constexpr int peerPort = 15020;

/// The peer's own server, answering one connection.
void ServePeer(int listening, modbus_t* context) {
    modbus_mapping_t* const mapping = modbus_mapping_new(8, 8, 8, 8);
    modbus_tcp_accept(context, &listening);
    std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> query{};
    for (;;) {
        int const length = modbus_receive(context, query.data());
        if (length < 0) {
            return;
        }
        modbus_reply(context, query.data(), length, mapping);
    }
}

} // namespace

/// What a user might use instead: a register read of a common fieldbus library, answered by its own server.
void PeerCase(Report& report) {
    PinTo(0);
    std::string const address = BenchAddress(50);
    Responder const responder({address}, 0);
    Connection const connection = Open(address);

    modbus_t* const server = modbus_new_tcp(address.c_str(), peerPort);
    int const listening = modbus_tcp_listen(server, 1);
    if (listening < 0) {
        throw std::runtime_error("the peer's server can't listen");
    }
    ChildProcess const process(0, [&](std::function<void()> const& ready) {
        ready();
        ServePeer(listening, server);
    });
    modbus_t* const peer = modbus_new_tcp(address.c_str(), peerPort);
    if (modbus_connect(peer) != 0) {
        throw std::runtime_error("the peer can't connect");
    }
    std::uint16_t value = 0;
    Paired const p50 = Pair([&] { return Run(4000, [&] { modbus_read_registers(peer, 0, 1, &value); }).p50; },
                            [&] { return Run(4000, [&] { ReadByteVariable(*connection); }).p50; });
    AddTime(report, "scalar read against a register read of libmodbus, p50", p50, 0.65,
            "ratio to libmodbus, not to the floor");
    modbus_close(peer);
    modbus_free(peer);
    ::close(listening);
    modbus_free(server);
}

} // namespace harvlink::bench
