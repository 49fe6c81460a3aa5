#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "gateway/sparkplug/Device.h"
#include "gateway/sparkplug/Forwarder.h"
#include "gateway/sparkplug/Inbox.h"
#include "gateway/sparkplug/JsonTopics.h"
#include "gateway/sparkplug/Publisher.h"

namespace harvlink::gateway::sparkplug {

struct DeviceStatistics {
    std::uint64_t liveValues = 0; ///< sent
    std::uint64_t historicalValues = 0; ///< sent
    std::uint64_t leftOut = 0; ///< stored values of controllers or metrics that are not there any more
    std::uint64_t births = 0;
    std::uint64_t deaths = 0;
};

/// All devices of the node: what came from their controllers, and what has to be published of it.
class DeviceList {
public:
    DeviceList(Forwarder& forwarder, Publisher& publisher, JsonTopics& json);

    /// Takes what the dispatcher gave. What changed goes into the store.
    void Take(Delivery const& delivery, Moment now);

    /// Before a commanded rebirth: publishes the data that waits, which otherwise would be older than what the births say.
    void PublishPending();
    /// Publishes the births of all devices that answer. In a new session the store has all that waits.
    void PublishBirths(bool isNewSession);

    /// Publishes what has changed: deaths, births, data. Only in a session.
    void PublishChanges(Moment now);
    /// Publishes as much of the store as its pace allows.
    void PublishHistorical(Moment now);
    /// Before the own death of the node: the plain topics say that nothing is online any more.
    void PublishOffline();
    /// The session is over.
    void EndSession();

    std::size_t Size() const { return entries_.size(); }
    std::size_t Online() const;
    /// Samples that wait to be published.
    std::size_t PendingSamples() const { return pending_; }
    DeviceStatistics const& Statistics() const { return statistics_; }

private:
    struct Pending {
        std::uint64_t id = 0; ///< in the store; 0: it is not there
        Change change;
    };
    struct Entry {
        std::unique_ptr<Device> device;
        bool isAlive = false; ///< its controller answers
        bool isRemoved = false;
        bool isBorn = false;
        bool isBornForHistory = false; ///< its controller does not answer, but the store has values of it
        recording::Microseconds diedAt = 0; ///< monotonic
        std::vector<Pending> pending;
    };

    void Add(ControllerPtr const& controller);
    void Remove(ControllerPtr const& controller);
    void TakeSample(SamplePtr const& sample, Moment now);
    void TakeEvent(Event const& event);
    void Publish(Entry& entry);
    void PublishBirth(Entry& entry);
    void PublishBirth(Entry& entry, Quality worth, std::vector<Change> const& earlier = {});
    void PublishLastWords(Entry& entry);
    std::vector<Change> TakeFirstOfEach(Entry& entry);
    void PublishDeath(Entry& entry);
    void PublishData(Entry& entry);
    void PublishUnsent(Entry& entry);
    void SendHistorical(Entry& entry, proto::Payload& payload);
    void EndHistory();
    Entry* Find(std::string const& id);
    std::uint64_t FirstPending() const;

    Forwarder& forwarder_;
    Publisher& publisher_;
    JsonTopics& json_;
    std::map<std::uint32_t, Entry> entries_; ///< by the ids of their controllers
    std::unordered_map<std::string, std::uint32_t> ids_; ///< controllers by device ids
    std::uint64_t nextAlias_ = 1;
    std::size_t pending_ = 0;
    bool inSession_ = false;
    DeviceStatistics statistics_;
};

} // namespace harvlink::gateway::sparkplug
