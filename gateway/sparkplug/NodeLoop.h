#pragma once

#include <functional>

#include "gateway/config/MqttConfig.h"
#include "gateway/model/Log.h"
#include "gateway/sparkplug/Commands.h"
#include "gateway/sparkplug/DeviceList.h"
#include "gateway/sparkplug/NodeMetrics.h"
#include "gateway/sparkplug/NodeStatistics.h"
#include "gateway/sparkplug/SessionCounter.h"

namespace harvlink::gateway::sparkplug {

/// What the node's thread does: it brings together session, connection, devices and store. All of it belongs to that thread.
class NodeLoop {
public:
    NodeLoop(MqttConfig config, Store& store, Inbox& inbox, Log& log);

    /// One turn: waits at most until the next changes are due, or `wake` can be read.
    void Turn(int wake);
    /// Leaves the broker in an orderly way. Turns go on until HasStopped.
    void Stop();
    bool HasStopped() const { return session_.State() == SessionState::Stopped; }

    NodeStatistics Statistics() const;

private:
    void Do(SessionActions const& actions);
    void Do(SessionAction action);
    void Connect();
    void Subscribe();
    void PublishBirths(bool isNewSession);
    void EndConnection();
    void Handle(MqttEvent const& event);
    SessionActions HandleMessage(MqttEvent const& event);
    SessionActions HandleCommand(MqttEvent const& event);
    SessionActions HandleFailure(MqttEvent const& event);
    void TakeDeliveries();
    void PublishDue();
    void PublishNodeChanges();
    NodeValues ValuesOfNode() const;

    MqttConfig config_;
    Store& store_;
    Inbox& inbox_;
    Log& log_;
    SessionCounter counter_;
    Session session_;
    MqttClient client_;
    Forwarder forwarder_;
    Publisher publisher_;
    JsonTopics json_;
    DeviceList devices_;
    NodeMetrics node_;
    Moment nextPublish_{};
    Moment nextNodeChanges_{};
    Moment nextRefusalLine_{};
    int deathId_ = MqttClient::NotSent;
    bool isNumberInUse_ = false; ///< that of the session, until the connection ends
    std::string broker_; ///< of the present or last connection
    std::string lastError_;
    std::string storeProblem_;
    std::uint64_t connects_ = 0;
    std::uint64_t refusedCommands_ = 0;
};

} // namespace harvlink::gateway::sparkplug
