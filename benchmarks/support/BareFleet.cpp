#include "support/BareFleet.h"

#include <array>

#include <arpa/inet.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/Machine.h"
#include "wire/Packets.h"

namespace harvlink::bench {

BareFleet::BareFleet(std::vector<std::string> const& addresses) : epoll(::epoll_create1(0)) {
    for (std::string const& address : addresses) {
        sockaddr_in endpoint{};
        endpoint.sin_family = AF_INET;
        endpoint.sin_port = htons(10040);
        ::inet_pton(AF_INET, address.c_str(), &endpoint.sin_addr);
        int const descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK, 0);
        (void)::connect(descriptor, reinterpret_cast<sockaddr*>(&endpoint), sizeof(endpoint));
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u64 = peers.size();
        ::epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event);
        peers.push_back({descriptor, 0});
    }
}

BareFleet::~BareFleet() {
    for (Peer const& peer : peers) {
        ::close(peer.socket);
    }
    ::close(epoll);
}

void BareFleet::Ask(Peer& peer) {
    OutgoingPacket<NoPayload> request;
    request.header.requestId = ++peer.id;
    request.subHeader = {CommandNumber::ByteVariable, 0, FixedField::FirstAttribute, ServiceReadOne};
    (void)::send(peer.socket, request.Bytes().data(), HeaderSize, 0);
}

double BareFleet::Run(double seconds) {
    for (Peer& peer : peers) {
        Ask(peer);
    }
    double answered = 0.0;
    std::array<epoll_event, 256> events{};
    auto const end = NowNanoseconds() + static_cast<std::int64_t>(seconds * 1e9);
    while (NowNanoseconds() < end) {
        int const ready = ::epoll_wait(epoll, events.data(), static_cast<int>(events.size()), 100);
        for (int i = 0; i < ready; ++i) {
            Peer& peer = peers[events[static_cast<std::size_t>(i)].data.u64];
            IncomingPacket<std::uint8_t> reply;
            if (::recv(peer.socket, &reply, sizeof(reply), 0) > 0 && reply.header.requestId == peer.id) {
                answered += 1.0;
                Ask(peer);
            }
        }
    }
    return answered;
}

} // namespace harvlink::bench
