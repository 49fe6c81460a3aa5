#include "support/Responder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <new>
#include <stdexcept>

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/Machine.h"
#include "wire/Packets.h"
#include "wire/SystemInfoMessage.h"
#include "wire/SystemParameterMessage.h"

namespace harvlink::bench {
namespace {

constexpr std::uint16_t robotPort = 10040;
constexpr std::uint16_t filePort = 10041;

using RequestPacket = OutgoingPacket<std::array<char, FileBlockSize>>;
using ReplyPacket = IncomingPacket<std::array<char, FileBlockSize>>;

template <typename Payload>
void SetPayload(ReplyPacket& reply, Payload const& payload) {
    std::memcpy(reply.payload.data(), &payload, sizeof(payload));
    reply.header.payloadSize = sizeof(payload);
}

void AnswerCommand(RequestPacket const& request, ReplyPacket& reply) {
    switch (static_cast<CommandNumber>(request.subHeader.command)) {
    case CommandNumber::SystemInformationRead:
        SetPayload(reply, SystemInfoReturnMsg{{'Y', 'A', 'S'}, {'B'}, {}});
        break;
    case CommandNumber::SystemParameterRead: {
        SytemParamMsgOut parameter;
        std::memcpy(&parameter, request.payload.data(), sizeof(parameter));
        bool const isFurtherMotionSlot = parameter.type == 11 && parameter.number != 33;
        SetPayload(reply, std::int32_t{isFurtherMotionSlot ? 0 : 1});
        break;
    }
    case CommandNumber::StringVariable:
        SetPayload(reply, std::array<char, 32>{'t', 'e', 'x', 't'});
        break;
    case CommandNumber::AxisConfigurationRead:
        SetPayload(reply, std::array<std::uint32_t, 8>{'S', 'L', 'U', 'R', 'B', 'T'});
        break;
    default:
        reply.payload[0] = static_cast<char>(request.subHeader.instance); // tells replies apart
        reply.header.payloadSize = 1;
        break;
    }
}

/// Serves the start-up files as one short block each, and "<size>.DAT" as that many bytes.
class FileSide {
public:
    void Answer(RequestPacket const& request, ReplyPacket& reply) {
        auto const service = static_cast<FileServices>(request.subHeader.service);
        if (service != FileServices::SaveFile) {
            return;
        }
        if (request.header.ack == 0) {
            Open({request.payload.data(), request.header.payloadSize});
        }
        std::uint32_t const block = request.header.blockNumber + 1;
        std::size_t const first = (block - 1) * FileBlockSize;
        std::size_t const length = std::min(FileBlockSize, text.size() - std::min(first, text.size()));
        std::memcpy(reply.payload.data(), text.data() + first, length);
        reply.header.payloadSize = static_cast<std::uint16_t>(length);
        reply.header.blockNumber = block + (first + length >= text.size() ? LastBlockFlag : 0);
    }

private:
    void Open(std::string const& name) {
        if (name == "SYSTEM.SYS") {
            text = "//SERVO POWER\nR1\n//ROBOT NAME\nR1\n";
        } else if (name == "TOOL.CND") {
            text = "//TOOL 0\n";
        } else if (std::size_t const size = std::stoul(name); size != text.size()) {
            text.assign(size, 'x');
        }
    }

    std::string text;
};

class AnsweringProcess {
public:
    AnsweringProcess(std::vector<std::string> const& addresses, ArrivalTime arrival, std::chrono::microseconds wait,
                     ResponderCounters& shared)
        : counters(shared), arrivalTime(arrival), delay(wait), epoll(::epoll_create1(0)) {
        for (std::string const& address : addresses) {
            Watch(BindSocket(address, robotPort));
            Watch(BindSocket(address, filePort));
        }
    }

    [[noreturn]] void Run() {
        std::array<epoll_event, 64> events{};
        for (;;) {
            SendDue();
            // Between delayed answers it spins: a wait in milliseconds would come too late.
            int const ready =
                ::epoll_wait(epoll, events.data(), static_cast<int>(events.size()), delayed.empty() ? -1 : 0);
            for (int i = 0; i < ready; ++i) {
                AnswerOn(events[static_cast<std::size_t>(i)].data.fd);
            }
        }
    }

private:
    void Watch(int descriptor) {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.fd = descriptor;
        ::epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event);
    }

    void AnswerOn(int descriptor) {
        RequestPacket request;
        sockaddr_in sender{};
        socklen_t senderSize = sizeof(sender);
        if (::recvfrom(descriptor, &request, sizeof(request), MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&sender),
                       &senderSize) < static_cast<ssize_t>(HeaderSize)) {
            return;
        }
        Count(request, descriptor);
        bool const isLastAcknowledgement = request.header.ack == 1 && request.header.payloadSize == 0 &&
                                           (request.header.blockNumber & LastBlockFlag) != 0;
        if (isLastAcknowledgement) {
            return;
        }
        ReplyPacket reply;
        reply.header.requestId = request.header.requestId;
        reply.header.division = request.header.division;
        reply.subHeader.service = request.subHeader.service | 0x80U; // a strict connection takes no other
        if (request.header.division == Division::FileControl) {
            files.Answer(request, reply);
        } else {
            AnswerCommand(request, reply);
        }
        Delayed const answer{NowNanoseconds() + std::chrono::nanoseconds(delay).count(), descriptor, sender, reply};
        if (delay.count() == 0) {
            Send(answer);
        } else {
            delayed.push_back(answer);
        }
    }

    struct Delayed {
        std::int64_t due;
        int descriptor;
        sockaddr_in to;
        ReplyPacket reply;
    };

    static void Send(Delayed const& answer) {
        (void)::sendto(answer.descriptor, &answer.reply, HeaderSize + answer.reply.header.payloadSize, 0,
                       reinterpret_cast<sockaddr const*>(&answer.to), sizeof(answer.to));
    }

    void SendDue() {
        for (; !delayed.empty() && delayed.front().due <= NowNanoseconds(); delayed.pop_front()) {
            Send(delayed.front());
        }
    }

    void Count(RequestPacket const& request, int descriptor) {
        counters.datagrams.fetch_add(1, std::memory_order_relaxed);
        if (request.subHeader.command == static_cast<std::uint16_t>(CommandNumber::MotionSendTarget)) {
            counters.lastTargetAt.store(ArrivalOf(descriptor), std::memory_order_relaxed);
            counters.targets.fetch_add(1, std::memory_order_release);
        }
    }

    /// Of the datagram that was read last. The first call on a socket makes the kernel take these times and fails.
    std::int64_t ArrivalOf(int descriptor) const {
        timespec time{};
        if (arrivalTime == ArrivalTime::Read || ::ioctl(descriptor, SIOCGSTAMPNS, &time) != 0) {
            return WallNanoseconds();
        }
        return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    }

    ResponderCounters& counters;
    ArrivalTime arrivalTime;
    std::chrono::microseconds delay;
    std::deque<Delayed> delayed;
    int epoll;
    FileSide files;
};

ResponderCounters* MapCounters() {
    void* const shared =
        // cppcheck-suppress invalidFunctionArg // what belongs to no file has this descriptor
        ::mmap(nullptr, sizeof(ResponderCounters), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        throw std::runtime_error("no shared memory");
    }
    return new (shared) ResponderCounters{};
}

} // namespace

void Responder::Unmap::operator()(ResponderCounters* mapped) const {
    ::munmap(mapped, sizeof(ResponderCounters));
}

Responder::Responder(std::vector<std::string> const& addresses, int core, ArrivalTime arrivalTime,
                     std::chrono::microseconds delay)
    : counters(MapCounters()), process(core, [&](std::function<void()> const& ready) {
          AnsweringProcess answering(addresses, arrivalTime, delay, *counters);
          ready();
          answering.Run();
      }) {}

int BindSocket(std::string const& address, std::uint16_t port) {
    int const descriptor = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in endpoint{};
    endpoint.sin_family = AF_INET;
    endpoint.sin_port = htons(port);
    ::inet_pton(AF_INET, address.c_str(), &endpoint.sin_addr);
    if (::bind(descriptor, reinterpret_cast<sockaddr*>(&endpoint), sizeof(endpoint)) != 0) {
        ::close(descriptor);
        throw std::runtime_error("can't bind " + address);
    }
    return descriptor;
}

std::string BenchAddress(int number) {
    return "127.20." + std::to_string(number / 250) + "." + std::to_string(number % 250 + 1);
}

} // namespace harvlink::bench
