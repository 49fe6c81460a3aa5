#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "harvlink/ControlGroupId.h"
#include "harvlink/ControllerVersion.h"
#include "harvlink/StatusInfo.h"
#include "wire/AttachedControlGroup.h"
#include "wire/DatagramTransport.h"
#include "wire/Packets.h"
#include "wire/RankedMutex.h"

namespace harvlink {

/// The engine of a connection: it owns the two sockets, hands out request ids and carries out the one exchange that every
/// operation is built from. Also keeps what the connection knows of its controller: generation and groups.
///
/// SendAndReceive and SimpleRequest may be called from several threads; exchanges queue, and each is complete before the
/// next begins. The group list and the generation are written while a connection opens and only read afterwards.
class NetworkManager {
public:
    /// Opens the sockets and probes the controller's generation. `status` reports the first failure; the object can be
    /// destroyed then, and nothing else.
    NetworkManager(std::string const& ipAddress, unsigned timeoutMilliseconds, unsigned retryCount, StatusInfo& status);

    /// The same over a transport of the caller's.
    NetworkManager(std::unique_ptr<DatagramTransport> datagramTransport, unsigned timeoutMilliseconds,
                   unsigned retryCount, StatusInfo& status);

    NetworkManager(NetworkManager const&) = delete;
    NetworkManager& operator=(NetworkManager const&) = delete;
    ~NetworkManager() = default;

    /// One request and, if `waitForReply`, its reply. `requestId` replaces the new id, which is drawn all the same. The
    /// request is sent once; listening lasts for at most 1 + retries periods, and each datagram with another id uses up
    /// one. The status is that of the reply, ResponseTimeout if none matched.
    ///
    /// A packet as constructed has id 0: if the request has that too, silence counts as an empty, successful reply. A
    /// packet that is used again with `requestId` never counts as its own answer.
    template <typename Out, typename In>
    StatusInfo SendAndReceive(OutgoingPacket<Out>& outgoing, IncomingPacket<In>& incoming,
                              std::optional<unsigned char> requestId, bool waitForReply) {
        return Exchange(outgoing.View(), incoming.View(), requestId, waitForReply);
    }

    /// What SendAndReceive does, whatever the payloads.
    StatusInfo Exchange(OutgoingView request, IncomingView reply, std::optional<unsigned char> requestId,
                        bool waitForReply);

    /// A request without payload. Returns the reply whatever the status, which goes to `status`.
    template <typename In>
    IncomingPacket<In> SimpleRequest(unsigned short instance, CommandNumber command, StatusInfo& status,
                                     FixedField attribute, unsigned char service) {
        IncomingPacket<In> incoming;
        OutgoingPacket<NoPayload> outgoing;
        outgoing.subHeader = {command, instance, attribute, service};
        status = SendAndReceive(outgoing, incoming, std::nullopt, true);
        return incoming;
    }

    /// The status that a reply reports: its added status, or its status byte if that is 0.
    StatusInfo CheckHeader(SubHeaderForReceiving const& subHeader) const;

    /// The next request id: 1 to 127, then 0, and so on. Only while an exchange is under way.
    std::uint8_t GetNewRequestId();

    /// Raises the time-out of all exchanges fourfold, and takes that back. Not nested and not counted, but exact: pairs
    /// from several threads leave it as it was.
    void IncreaseTimeout();
    void ResetTimeout();

    void SetLogging(bool enabled) { loggingEnabled = enabled; }
    void LogIfEnabled(StatusInfo const& status) const;

    bool IsControlGroupAttached(ControlGroupId group) const;

    /// Appends a group. One that is in the list already stays as it is.
    void AddToControlGroupsAttached(AttachedControlGroup const& group);

    /// The group must be attached; 0 otherwise.
    std::uint32_t GetNumberOfAxesInGroup(ControlGroupId group) const;
    unsigned GetNumberOfRobotsAttached() const;

    ControllerVersion controllerVersion = ControllerVersion::VersionUnknown;

private:
    using FirstMutex = RankedMutex<LockRank::FirstExchange>;
    using SecondMutex = RankedMutex<LockRank::SecondExchange>;
    class ExchangeLock;

    void ProbeGeneration(StatusInfo& status);
    bool ListenFor(std::uint8_t id, IncomingView const& reply);
    StatusInfo NoResponse() const;
    AttachedControlGroup const* FindGroup(ControlGroupId group) const;

    static constexpr std::uint8_t highestRequestId = 127;

    std::vector<AttachedControlGroup> controlGroupsAttached;
    FirstMutex firstExchangeMutex;
    SecondMutex secondExchangeMutex;
    std::unique_ptr<DatagramTransport> transport;
    std::atomic<std::int64_t> timeoutMicroseconds = 0;
    std::uint8_t lastRequestId = 0;
    std::uint32_t retries;
    std::atomic<bool> loggingEnabled = true;
};

} // namespace harvlink
