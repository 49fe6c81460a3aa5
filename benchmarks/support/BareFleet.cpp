#include "support/BareFleet.h"

#include <limits>

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
        peers.push_back({.socket = descriptor});
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

double BareFleet::ReadAnswers(std::int64_t wait) {
    constexpr std::int64_t second = 1'000'000'000;
    timespec const time{wait / second, wait % second};
    int const ready = ::epoll_pwait2(epoll, events.data(), static_cast<int>(events.size()), &time, nullptr);
    double answered = 0.0;
    for (int i = 0; i < ready; ++i) {
        Peer& peer = peers[events[static_cast<std::size_t>(i)].data.u64];
        IncomingPacket<std::uint8_t> reply;
        if (::recv(peer.socket, &reply, sizeof(reply), 0) > 0 && reply.header.requestId == peer.id) {
            answered += 1.0;
            if (--peer.left > 0) {
                Ask(peer);
            }
        }
    }
    return answered;
}

double BareFleet::Run(double seconds) {
    for (Peer& peer : peers) {
        peer.left = std::numeric_limits<int>::max();
        Ask(peer);
    }
    double answered = 0.0;
    auto const end = NowNanoseconds() + static_cast<std::int64_t>(seconds * 1e9);
    while (NowNanoseconds() < end) {
        answered += ReadAnswers(100'000'000);
    }
    return answered;
}

std::vector<double> BareFleet::RunRounds(std::chrono::nanoseconds period, int items, double seconds) {
    std::vector<double> periods;
    std::int64_t const start = NowNanoseconds();
    std::int64_t const between = period.count() / static_cast<std::int64_t>(peers.size());
    auto const end = start + static_cast<std::int64_t>(seconds * 1e9);
    std::int64_t now = start;
    for (std::size_t round = 0; now < end; now = NowNanoseconds()) {
        std::int64_t due = start + static_cast<std::int64_t>(round) * between;
        for (; due <= now; due += between, ++round) {
            Peer& peer = peers[round % peers.size()];
            if (peer.begunAt != 0) {
                periods.push_back(static_cast<double>(now - peer.begunAt) * 1e-9);
            }
            peer.begunAt = now;
            peer.left = items;
            Ask(peer);
        }
        ReadAnswers(due - now);
    }
    return periods;
}

} // namespace harvlink::bench
