#include "wire/NetworkManager.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <system_error>

#include "status/HarvlinkLogger.h"
#include "wire/SystemInfoMessage.h"
#include "wire/UdpTransport.h"

namespace harvlink {
namespace {

constexpr int systemTimeoutError = 10060;
constexpr std::uint16_t generationProbeInstance = 11;

StatusInfo StatusOf(std::system_error const& error) {
    if (error.code().value() == systemTimeoutError) {
        return StatusInformation(ErrorStatusCodes::ResponseTimeout);
    }
    return StatusInformation(error.code().value(), error.what());
}

ControllerVersion GenerationOf(std::string_view softwareVersion) {
    auto const generation =
        std::ranges::find(ControllerGenerations, softwareVersion.substr(0, 2), &ControllerGeneration::letters);
    return generation == ControllerGenerations.end() ? ControllerVersion::VersionUnknown : generation->version;
}

} // namespace

/// Both exchange mutexes. Only the first is ever waited for, so the order in which others take them can't matter.
class NetworkManager::ExchangeLock {
public:
    ExchangeLock(FirstMutex& first, SecondMutex& second) : firstLock(first), secondLock(second, std::try_to_lock) {
        while (!secondLock.owns_lock()) {
            firstLock.unlock();
            firstLock.lock();
            secondLock = std::unique_lock(second, std::try_to_lock);
        }
    }

private:
    std::unique_lock<FirstMutex> firstLock;
    std::unique_lock<SecondMutex> secondLock;
};

NetworkManager::NetworkManager(std::string const& ipAddress, unsigned timeoutMilliseconds, unsigned retryCount,
                               StatusInfo& status)
    : retries(retryCount) {
    auto sockets = std::make_unique<UdpTransport>();
    status = sockets->Open(ipAddress);
    transport = std::move(sockets);
    if (status.StatusCode != 0) {
        return;
    }
    timeoutMicroseconds = timeoutMilliseconds * 1000U; // wraps in 32 bits beyond 71 minutes
    ProbeGeneration(status);
}

NetworkManager::NetworkManager(std::unique_ptr<DatagramTransport> datagramTransport, unsigned timeoutMilliseconds,
                               unsigned retryCount, StatusInfo& status)
    : transport(std::move(datagramTransport)), timeoutMicroseconds(timeoutMilliseconds * 1000U), retries(retryCount) {
    ProbeGeneration(status);
}

void NetworkManager::ProbeGeneration(StatusInfo& status) {
    auto const reply = SimpleRequest<SystemInfoReturnMsg>(generationProbeInstance, CommandNumber::SystemInformationRead,
                                                          status, FixedField::WholeRecord, ServiceReadAll);
    if (status.StatusCode == 0) {
        auto const& field = reply.payload.softwareVersion;
        controllerVersion = GenerationOf({field.begin(), std::ranges::find(field, '\0')});
    }
}

StatusInfo NetworkManager::Exchange(OutgoingView request, IncomingView reply, std::optional<unsigned char> requestId,
                                    bool waitForReply) {
    ExchangeLock const lock(firstExchangeMutex, secondExchangeMutex);
    std::uint8_t const newId = GetNewRequestId();
    std::uint8_t const id = requestId.value_or(newId);
    request.header.requestId = id;
    std::size_t const length = std::min(request.header.payloadSize + HeaderSize, request.bytes.size());
    try {
        transport->Send(request.header.division, request.bytes.first(length));
        if (waitForReply) {
            if (requestId) {
                reply.header.requestId = static_cast<std::uint8_t>(~id);
            }
            if (!ListenFor(id, reply)) {
                return NoResponse();
            }
        }
    } catch (std::system_error const& error) {
        return StatusOf(error);
    }
    return CheckHeader(reply.subHeader);
}

/// Listens for 1 + retries periods. Of a datagram with another id only the id stays in the reply: nothing else that it
/// says, such as a last block, may be taken for the answer.
bool NetworkManager::ListenFor(std::uint8_t id, IncomingView const& reply) {
    timeval const period{0, timeoutMicroseconds};
    for (std::uint64_t listenings = 0; listenings <= retries; ++listenings) {
        bool const received = transport->Receive(reply.bytes, period) > 0;
        if (reply.header.requestId == id) {
            return true;
        }
        if (received) {
            std::uint8_t const otherId = reply.header.requestId;
            reply.header = {};
            reply.header.requestId = otherId;
            std::ranges::fill(reply.bytes.subspan(sizeof(CommonHeader)), std::byte{});
        }
    }
    return false;
}

StatusInfo NetworkManager::NoResponse() const {
    return StatusInformation(ErrorStatusCodes::ResponseTimeout,
                             "No response from controller after " + std::to_string(retries) + " retries.");
}

StatusInfo NetworkManager::CheckHeader(SubHeaderForReceiving const& subHeader) const {
    if (subHeader.status == 0 && subHeader.addedStatusSize == 0) {
        return StatusInformation(ErrorStatusCodes::Ok);
    }
    return StatusInformation(subHeader.addedStatus != 0 ? int{subHeader.addedStatus} : int{subHeader.status});
}

std::uint8_t NetworkManager::GetNewRequestId() {
    lastRequestId = lastRequestId < highestRequestId ? static_cast<std::uint8_t>(lastRequestId + 1) : std::uint8_t{0};
    return lastRequestId;
}

void NetworkManager::IncreaseTimeout() {
    std::int64_t current = timeoutMicroseconds;
    while (current <= std::numeric_limits<std::int64_t>::max() / 4 &&
           !timeoutMicroseconds.compare_exchange_weak(current, current * 4)) {
    }
}

void NetworkManager::ResetTimeout() {
    std::int64_t current = timeoutMicroseconds;
    while (!timeoutMicroseconds.compare_exchange_weak(current, current / 4)) {
    }
}

void NetworkManager::LogIfEnabled(StatusInfo const& status) const {
    if (loggingEnabled) {
        HarvlinkLogger::LogStatusInfo(status);
    }
}

bool NetworkManager::IsControlGroupAttached(ControlGroupId group) const {
    return FindGroup(group) != nullptr;
}

void NetworkManager::AddToControlGroupsAttached(AttachedControlGroup const& group) {
    if (!IsControlGroupAttached(group.Id)) {
        controlGroupsAttached.push_back(group);
    }
}

std::uint32_t NetworkManager::GetNumberOfAxesInGroup(ControlGroupId group) const {
    AttachedControlGroup const* const entry = FindGroup(group);
    return entry != nullptr ? entry->NumberOfAxes : 0;
}

unsigned NetworkManager::GetNumberOfRobotsAttached() const {
    return static_cast<unsigned>(std::ranges::count_if(controlGroupsAttached, [](AttachedControlGroup const& group) {
        return group.Id >= ControlGroupId::R1 && group.Id <= ControlGroupId::R8;
    }));
}

AttachedControlGroup const* NetworkManager::FindGroup(ControlGroupId group) const {
    auto const entry = std::ranges::find(controlGroupsAttached, group, &AttachedControlGroup::Id);
    return entry != controlGroupsAttached.end() ? &*entry : nullptr;
}

} // namespace harvlink
