#include "support/BareClient.h"

#include <array>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace harvlink::bench {
namespace {

sockaddr_in Endpoint(std::string const& address, std::uint16_t port) {
    sockaddr_in endpoint{};
    endpoint.sin_family = AF_INET;
    endpoint.sin_port = htons(port);
    ::inet_pton(AF_INET, address.c_str(), &endpoint.sin_addr);
    return endpoint;
}

} // namespace

BareClient::BareClient(std::string const& address)
    : robotSocket(::socket(AF_INET, SOCK_DGRAM, 0)),
      fileSocket(::socket(AF_INET, SOCK_DGRAM, 0)),
      robotEndpoint(Endpoint(address, 10040)),
      fileEndpoint(Endpoint(address, 10041)) {}

BareClient::~BareClient() {
    ::close(robotSocket);
    ::close(fileSocket);
}

void BareClient::Send(std::span<std::byte const> request, Division division) {
    bool const toFilePort = division == Division::FileControl;
    sockaddr_in const& endpoint = toFilePort ? fileEndpoint : robotEndpoint;
    (void)::sendto(toFilePort ? fileSocket : robotSocket, request.data(), request.size(), 0,
                   reinterpret_cast<sockaddr const*>(&endpoint), sizeof(endpoint));
}

bool BareClient::Exchange(std::span<std::byte const> request, std::span<std::byte> reply, Division division) {
    Send(request, division);
    return Receive(reply);
}

bool BareClient::Receive(std::span<std::byte> reply) {
    std::array<pollfd, 2> sockets{{{robotSocket, POLLIN, 0}, {fileSocket, POLLIN, 0}}};
    if (::poll(sockets.data(), sockets.size(), 1000) <= 0) {
        return false;
    }
    int const readable = sockets[0].revents != 0 ? robotSocket : fileSocket;
    return ::recvfrom(readable, reply.data(), reply.size(), 0, nullptr, nullptr) > 0;
}

void BareClient::Wait(int milliseconds) {
    std::array<pollfd, 2> sockets{{{robotSocket, POLLIN, 0}, {fileSocket, POLLIN, 0}}};
    (void)::poll(sockets.data(), sockets.size(), milliseconds);
}

bool BareClient::ReadByteVariable() {
    RequestByteVariable();
    return ReceiveByteVariable();
}

void BareClient::RequestByteVariable() {
    OutgoingPacket<NoPayload> request;
    request.header.requestId = ++id;
    request.subHeader = {CommandNumber::ByteVariable, 0, FixedField::FirstAttribute, ServiceReadOne};
    Send(request.Bytes().first(HeaderSize), Division::RobotControl);
}

bool BareClient::ReceiveByteVariable() {
    IncomingPacket<std::uint8_t> reply;
    return Receive(reply.Bytes()) && reply.header.requestId == id;
}

} // namespace harvlink::bench
