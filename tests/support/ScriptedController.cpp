#include "support/ScriptedController.h"

#include <array>
#include <stdexcept>

#if defined(_WIN32)
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include "support/LoopbackAddress.h"

namespace harvlink::test {
namespace {

constexpr unsigned longTimeout = 8192;
constexpr auto longestWait = std::chrono::seconds(10);

#if defined(_WIN32)

using pollfd = WSAPOLLFD;
using SizeToSend = int;
using socklen_t = int;

int poll(pollfd* sockets, std::size_t count, int milliseconds) {
    return ::WSAPoll(sockets, static_cast<ULONG>(count), milliseconds);
}

void close(NativeSocket descriptor) {
    ::closesocket(descriptor);
}

#else

using SizeToSend = std::size_t;

#endif

sockaddr_in NativeEndpoint(Endpoint const& endpoint) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_port = htons(endpoint.port);
    native.sin_addr.s_addr = htonl(endpoint.address);
    return native;
}

NativeSocket BoundSocket(std::string const& address, std::uint16_t port) {
    sockaddr_in const endpoint = NativeEndpoint({ParseAddress(address).value(), port});
    NativeSocket const descriptor = ::socket(AF_INET, SOCK_DGRAM, 0);
    if (::bind(descriptor, reinterpret_cast<sockaddr const*>(&endpoint), sizeof(endpoint)) != 0) {
        close(descriptor);
        return NoSocket;
    }
    return descriptor;
}

void Release(NativeSocket& descriptor) {
    if (descriptor != NoSocket) {
        close(descriptor);
    }
    descriptor = NoSocket;
}

} // namespace

ScriptedController::ScriptedController() {
    for (int attempt = 0; robot.descriptor == NoSocket; ++attempt) {
        if (attempt == 1000) {
            throw std::runtime_error("no free loopback address");
        }
        Bind(NextLoopbackAddress());
    }
    thread = std::thread([this] { Serve(); });
}

void ScriptedController::Bind(std::string const& candidate) {
    address = candidate;
    robot = {BoundSocket(address, 10040), 10040, {}};
    file = {BoundSocket(address, 10041), 10041, {}};
    if (robot.descriptor == NoSocket || file.descriptor == NoSocket) {
        Release(robot.descriptor);
        Release(file.descriptor);
    }
}

ScriptedController::~ScriptedController() {
    {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, longestWait, [this] { return steps.empty(); });
        EXPECT_TRUE(steps.empty()) << steps.size() << " expected requests never came";
    }
    stopEvent.Set();
    thread.join();
    EXPECT_FALSE(HasPending()) << "a datagram was never read";
    Release(robot.descriptor);
    Release(file.descriptor);
}

void ScriptedController::Expect(Bytes request, Replies replies) {
    std::lock_guard const lock(mutex);
    steps.push_back({std::move(request), std::move(replies)});
}

void ScriptedController::ExpectProbe(std::string_view softwareVersion) {
    Expect(RobotRequest(137, 11, 0, 1), Payload(Text(softwareVersion, 24) + Text("MODEL", 16) + Text("1.0", 8)));
}

void ScriptedController::AnswerRest(std::function<Replies(Datagram const&)> handler) {
    std::lock_guard const lock(mutex);
    rest = std::move(handler);
}

std::vector<Datagram> ScriptedController::Received(std::size_t count) {
    std::unique_lock lock(mutex);
    changed.wait_for(lock, longestWait, [&] { return received.size() >= count; });
    EXPECT_GE(received.size(), count);
    return received;
}

bool ScriptedController::HasPending() const {
    std::array<pollfd, 2> sockets{{{robot.descriptor, POLLIN, 0}, {file.descriptor, POLLIN, 0}}};
    return poll(sockets.data(), sockets.size(), 0) > 0;
}

std::unique_ptr<NetworkManager> ScriptedController::Connect(std::string_view softwareVersion, unsigned retries,
                                                            ConnectionPolicy const& policy) {
    ExpectProbe(softwareVersion);
    StatusInfo status;
    auto manager = std::make_unique<NetworkManager>(address, longTimeout, retries, status, policy);
    EXPECT_EQ(status.StatusCode, 0) << status.Message;
    return manager;
}

/// Serves all datagrams that arrived before the stop. The file port is first: the client does not wait for an answer to the
/// end of a transfer, so datagrams on the other port came later.
void ScriptedController::Serve() {
    std::array<pollfd, 3> events{
        {{robot.descriptor, POLLIN, 0}, {file.descriptor, POLLIN, 0}, {stopEvent.Descriptor(), POLLIN, 0}}};
    while (poll(events.data(), events.size(), -1) > 0) {
        if (events[1].revents != 0) {
            ReadFrom(file, robot);
        } else if (events[0].revents != 0) {
            ReadFrom(robot, file);
        } else if (!HasPending()) {
            return;
        }
    }
}

void ScriptedController::ReadFrom(Port& port, Port& other) {
    constexpr int most = 65536;
    Datagram datagram{Bytes(most), port.number, 0, {}};
    sockaddr_in client{};
    socklen_t size = sizeof(client);
    auto const length = ::recvfrom(port.descriptor, reinterpret_cast<char*>(datagram.bytes.data()), most, 0,
                                   reinterpret_cast<sockaddr*>(&client), &size);
    port.lastClient = {ntohl(client.sin_addr.s_addr), ntohs(client.sin_port)};
    datagram.clientPort = port.lastClient.port;
    datagram.time = std::chrono::steady_clock::now();
    datagram.bytes.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(length, 0)));
    Replies const replies = RepliesTo(datagram);
    for (Reply const& reply : replies) {
        std::this_thread::sleep_for(reply.delay);
        Bytes const bytes = ReplyBytes(reply, datagram);
        Port const& target = reply.toOtherSocket ? other : port;
        sockaddr_in const to = NativeEndpoint(target.lastClient);
        ::sendto(target.descriptor, reinterpret_cast<char const*>(bytes.data()), static_cast<SizeToSend>(bytes.size()),
                 0, reinterpret_cast<sockaddr const*>(&to), sizeof(to));
    }
}

Replies ScriptedController::RepliesTo(Datagram const& datagram) {
    std::unique_lock lock(mutex);
    received.push_back(datagram);
    changed.notify_all();
    if (steps.empty()) {
        auto const handler = rest;
        lock.unlock();
        EXPECT_TRUE(handler) << "nobody expected this datagram" << SameBytes({}, datagram.bytes).message();
        return handler ? handler(datagram) : Replies{};
    }
    Step const step = std::move(steps.front());
    steps.pop_front();
    lock.unlock();
    EXPECT_TRUE(SameRequest(step.request, datagram.bytes));
    return step.replies;
}

Bytes ScriptedController::ReplyBytes(Reply const& reply, Datagram const& request) {
    if (reply.raw) {
        return *reply.raw;
    }
    auto const id = static_cast<std::uint8_t>(request.Id() - reply.staleBy);
    bool const isFile = request.port == 10041;
    return Text("TROZ") + U16(32) + U16(static_cast<std::int64_t>(reply.payload.size())) + U8(3) + U8(isFile ? 2 : 1) +
           U8(1) + U8(id) + U32(reply.block) + Text("99999999") + U8(request.Service() | 0x80) + U8(reply.status) +
           U8(reply.addedStatusSize) + U8(0) + U16(reply.addedStatus) + U16(0) + reply.payload;
}

void Hurry(NetworkManager& manager) {
    for (int i = 0; i < 3; ++i) {
        manager.ResetTimeout();
    }
}

} // namespace harvlink::test
