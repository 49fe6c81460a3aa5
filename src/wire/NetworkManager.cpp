#include "wire/NetworkManager.h"

#include <algorithm>
#include <limits>

#include "status/HarvlinkLogger.h"
#include "wire/SystemInfoMessage.h"
#include "wire/UdpTransport.h"

namespace harvlink {
namespace {

constexpr std::uint16_t generationProbeInstance = 11;

UdpTransport::Peers PeersOf(ConnectionPolicy const& policy) {
    if (policy.Enforces(Rule::KnownSender)) {
        return UdpTransport::Peers::Controller;
    }
    return policy.Watches(Rule::KnownSender) ? UdpTransport::Peers::AnyoneNamed : UdpTransport::Peers::Anyone;
}

} // namespace

NetworkManager::NetworkManager(std::string const& ipAddress, unsigned timeoutMilliseconds, unsigned retryCount,
                               StatusInfo& status, ConnectionPolicy const& connectionPolicy)
    : address(ipAddress), policy(connectionPolicy), retries(retryCount) {
    auto sockets = std::make_unique<UdpTransport>();
    status = sockets->Open(ipAddress, PeersOf(policy));
    transport = std::move(sockets);
    if (status.StatusCode != 0) {
        return;
    }
    timeoutMicroseconds = timeoutMilliseconds * 1000U; // wraps in 32 bits beyond 71 minutes
    ProbeGeneration(status);
}

NetworkManager::NetworkManager(std::unique_ptr<DatagramTransport> datagramTransport, unsigned timeoutMilliseconds,
                               unsigned retryCount, StatusInfo& status, ConnectionPolicy const& connectionPolicy)
    : policy(connectionPolicy),
      transport(std::move(datagramTransport)),
      timeoutMicroseconds(timeoutMilliseconds * 1000U),
      retries(retryCount) {
    ProbeGeneration(status);
}

void NetworkManager::ProbeGeneration(StatusInfo& status) {
    auto const reply = SimpleRequest<SystemInfoReturnMsg>(generationProbeInstance, CommandNumber::SystemInformationRead,
                                                          status, Service::ReadAll);
    if (status.StatusCode == 0) {
        controllerVersion = GenerationOf(reply.payload);
    }
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
