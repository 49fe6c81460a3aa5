#pragma once

#include <array>
#include <atomic>
#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "harvlink/ControlGroupId.h"
#include "harvlink/ControllerVersion.h"
#include "harvlink/StatusInfo.h"
#include "wire/AttachedControlGroup.h"
#include "wire/ConnectionPolicy.h"
#include "wire/DatagramTransport.h"
#include "wire/LinkStatistics.h"
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
    /// Opens the sockets and probes the controller's generation. `status` reports the first failure; after a failure
    /// the object can only be destroyed.
    NetworkManager(std::string const& ipAddress, unsigned timeoutMilliseconds, unsigned retryCount, StatusInfo& status,
                   ConnectionPolicy const& connectionPolicy = {});

    /// The same over a transport of the caller's.
    NetworkManager(std::unique_ptr<DatagramTransport> datagramTransport, unsigned timeoutMilliseconds,
                   unsigned retryCount, StatusInfo& status, ConnectionPolicy const& connectionPolicy = {});

    NetworkManager(NetworkManager const&) = delete;
    NetworkManager& operator=(NetworkManager const&) = delete;
    ~NetworkManager() = default;

    /// One request and, if `waitForReply`, its reply. `requestId` replaces the new id, which is drawn all the same. The
    /// request is sent once; listening lasts for at most 1 + retries periods, and each datagram with another id uses up
    /// one. The status is that of the reply, ResponseTimeout if none matched.
    ///
    /// A packet as constructed has id 0: if the request has that too, silence counts as an empty, successful reply. A
    /// packet that is used again with `requestId` never counts as its own answer.
    ///
    /// That is the designed behaviour. What the rules of a strict connection change is said at Rule. What the access of the
    /// connection does not allow is not sent: AccessDenied.
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
        status = Exchange(outgoing.View(), incoming.View(sizeof(In)), std::nullopt, true);
        return incoming;
    }

    /// The same, with the attribute that goes with the service.
    template <typename In>
    IncomingPacket<In> SimpleRequest(unsigned short instance, CommandNumber command, StatusInfo& status,
                                     Service service) {
        return SimpleRequest<In>(instance, command, status, FieldOf(service), static_cast<unsigned char>(service));
    }

    /// As it was given; empty over a transport of the caller's.
    std::string const& Address() const { return address; }

    ConnectionPolicy const& Policy() const { return policy; }

    /// Notes that something breaks a rule. From any thread.
    /// @return whether the connection refuses it; it goes on as designed otherwise.
    bool Refuses(Rule rule);

    /// What the rest of the library adds to it, and how it is read.
    LinkStatistics& Statistics() { return statistics; }
    LinkStatistics const& Statistics() const { return statistics; }

    /// From construction until EndStartUp: the first exchange that ended in neither an answer nor a refusal of the
    /// controller. OK while there was none.
    StatusInfo const& LossOfStartUp() const { return lossOfStartUp; }
    void NoteLossOfStartUp(StatusInfo const& status);
    void EndStartUp() { isStartingUp = false; }
    /// What was lost is read again.
    void ForgetLossOfStartUp() { lossOfStartUp = {}; }

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
    struct Question;
    enum class Outcome : std::uint8_t;

    void ProbeGeneration(StatusInfo& status);
    bool RenewIfDue(Question const& question);
    void DropWaiting(Question& question);
    void NoteSent(Question const& question);
    StatusInfo ReportUnreachable();
    StatusInfo WaitForAnswer(Question& question);
    Outcome ListenForPeriod(Question& question);
    Outcome TakeKept(Question& question);
    void Repeat(Question& question);
    bool IsAnswer(Question& question, Arrival const& arrival);
    bool IsAcceptable(Question& question, Arrival const& arrival);
    bool IsKept(Question& question, Arrival const& arrival);
    bool IsRefused(Question& question, Rule rule, LinkCounter counter);
    void CountStray(Question const& question, Arrival const& arrival);
    StatusInfo TakeAnswer(Question const& question);
    StatusInfo ReportSilence(Question const& question);
    AttachedControlGroup const* FindGroup(ControlGroupId group) const;

    static constexpr std::uint8_t highestRequestId = 127;

    std::string const address;
    ConnectionPolicy const policy;
    LinkStatistics statistics;
    StatusInfo lossOfStartUp;
    bool isStartingUp = true;

    std::vector<AttachedControlGroup> controlGroupsAttached;
    FirstMutex firstExchangeMutex;
    SecondMutex secondExchangeMutex;
    std::unique_ptr<DatagramTransport> transport;
    std::atomic<std::int64_t> timeoutMicroseconds = 0;
    std::uint8_t lastRequestId = 0;
    std::bitset<256> usedIds;
    std::optional<std::uint8_t> lastAnsweredId; ///< of the exchange before, if it was answered
    std::array<bool, 2> isNewPortDue{}; ///< of the robot and of the file port
    std::array<bool, 2> isSecondAnswerDue{}; ///< to a read that was sent again, by port
    bool areUploadsNumbered = false; ///< an answer to a block of an upload has had the number of the block
    std::uint64_t idsDrawn = 0;
    std::array<std::uint64_t, 2> idsDrawnUntil{}; ///< the last exchange with an id of its own, by port
    std::uint32_t retries;
    std::atomic<bool> loggingEnabled = true;
};

} // namespace harvlink
