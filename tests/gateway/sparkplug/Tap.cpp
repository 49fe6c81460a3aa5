#include "gateway/sparkplug/Tap.h"

#include <array>
#include <chrono>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "gateway/sparkplug/Sockets.h"

namespace harvlink::test {

Tap::Tap(std::string address) : address_(std::move(address)), listener_(ListenAt(address_, Port)) {
    // Links take it from here: one that is frozen is soon full.
    int const received = 65'536;
    setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &received, sizeof received);
    thread_ = std::thread([this] { Run(); });
}

Tap::~Tap() {
    mustStop_ = true;
    thread_.join();
    close(listener_);
    for (Link& link : links_) {
        Close(link);
    }
}

void Tap::Thaw() {
    mustCut_ = true;
    while (mustCut_) {
        std::this_thread::yield();
    }
    isFrozen_ = false;
}

std::vector<MqttPacket> Tap::Packets() const {
    std::scoped_lock const lock(mutex_);
    return packets_;
}

void Tap::Close(Link& link) {
    // Reset, so that nothing that is still in a buffer arrives.
    linger const atOnce{1, 0};
    for (int const socket : {link.node, link.broker}) {
        if (socket >= 0) {
            setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
            close(socket);
        }
    }
    link.node = link.broker = -1;
}

void Tap::Accept() {
    Link link;
    link.node = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    link.broker = ConnectTo(address_, 1883);
    link.number = accepted_++;
    if (link.broker < 0) {
        Close(link);
        return;
    }
    links_.push_back(std::move(link));
}

bool Tap::Pass(Link& link, bool fromNode) {
    std::array<char, 65536> bytes{};
    auto const count = recv(fromNode ? link.node : link.broker, bytes.data(), bytes.size(), 0);
    if (count <= 0) {
        return false;
    }
    std::string& stream = fromNode ? link.fromNode : link.fromBroker;
    stream.append(bytes.data(), static_cast<std::size_t>(count));
    auto const now =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch());
    {
        std::scoped_lock const lock(mutex_);
        for (MqttPacket& packet : TakePackets(stream)) {
            packet.isFromNode = fromNode;
            packet.connection = link.number;
            packet.time = static_cast<std::uint64_t>(now.count());
            packets_.push_back(std::move(packet));
        }
    }
    return SendAll(fromNode ? link.broker : link.node, {bytes.data(), static_cast<std::size_t>(count)});
}

void Tap::Run() {
    while (!mustStop_) {
        if (mustCut_) {
            for (Link& link : links_) {
                Close(link);
            }
            links_.clear();
            mustCut_ = false;
        }
        std::vector<pollfd> descriptors{{isFrozen_ ? -1 : listener_, POLLIN, 0}};
        for (Link const& link : links_) {
            descriptors.push_back({isFrozen_ ? -1 : link.node, POLLIN, 0});
            descriptors.push_back({isFrozen_ ? -1 : link.broker, POLLIN, 0});
        }
        poll(descriptors.data(), descriptors.size(), 10);
        if (isFrozen_) {
            continue;
        }
        for (std::size_t i = 0; i < links_.size(); ++i) {
            bool const holds = (descriptors[2 * i + 1].revents == 0 || Pass(links_[i], true)) &&
                               (descriptors[2 * i + 2].revents == 0 || Pass(links_[i], false));
            if (!holds) {
                Close(links_[i]);
            }
        }
        std::erase_if(links_, [](Link const& link) { return link.node < 0; });
        if (descriptors[0].revents != 0) {
            Accept();
        }
    }
}

} // namespace harvlink::test
