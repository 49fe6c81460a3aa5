#include "gateway/sparkplug/NodeLoop.h"

#include <algorithm>
#include <random>

#include <fmt/format.h>

namespace harvlink::gateway::sparkplug {

namespace {

constexpr Milliseconds GatherFor{100}; ///< changes of so long go out together
constexpr Milliseconds NodeChangesEvery{1000};
constexpr Milliseconds RefusalLineEvery{1000};
/// A broken link is noticed after two keep-alives and what the library's clock, of whole seconds, adds to each.
constexpr Milliseconds NoticeSlack{3000};

Moment Present() {
    return std::chrono::steady_clock::now();
}

SessionOptions OptionsOf(MqttConfig const& config) {
    return {.servers = config.brokers.size(),
            .hasPrimaryHost = !config.primaryHost.empty(),
            .rebirthInterval = config.rebirthInterval,
            .seed = std::random_device{}()};
}

std::string ClientIdOf(MqttConfig const& config) {
    return config.clientId.empty() ? fmt::format("harvlink-{}-{}", config.group, config.node) : config.clientId;
}

std::filesystem::path CounterFileOf(MqttConfig const& config) {
    std::filesystem::path const folder = config.stateFolder.empty() ? config.store.folder : config.stateFolder;
    return folder.empty() ? folder : folder / "sparkplug-session";
}

} // namespace

NodeLoop::NodeLoop(MqttConfig config, Store& store, Inbox& inbox, Log& log)
    : config_(std::move(config)),
      store_(store),
      inbox_(inbox),
      log_(log),
      counter_(CounterFileOf(config_)),
      session_(OptionsOf(config_), Present()),
      client_(config_, ClientIdOf(config_)),
      forwarder_(store, config_.keepAlive * 2 + NoticeSlack, config_.store.valuesPerSecond, Present()),
      publisher_(client_, Topics(config_.group, config_.node)),
      json_(client_, config_.json, config_.node),
      devices_(forwarder_, publisher_, json_),
      nextPublish_(Present()) {}

void NodeLoop::Turn(int wake) {
    auto const due = std::min({nextPublish_, session_.Deadline(), Present() + GatherFor});
    auto const wait = std::chrono::ceil<Milliseconds>(due - Present());
    for (MqttEvent const& event : client_.Wait(wake, std::max(wait, Milliseconds(0)))) {
        Handle(event);
    }
    Do(session_.Tick(Present()));
    if (Present() >= nextPublish_) {
        nextPublish_ = Present() + GatherFor;
        TakeDeliveries();
        PublishDue();
    }
}

void NodeLoop::Stop() {
    TakeDeliveries();
    PublishDue();
    Do(session_.Stop(Present()));
    store_.Commit();
}

void NodeLoop::Do(SessionActions const& actions) {
    for (SessionAction const action : actions) {
        Do(action);
    }
}

void NodeLoop::Do(SessionAction action) {
    switch (action) {
    case SessionAction::Connect:
        Connect();
        break;
    case SessionAction::Subscribe:
        Subscribe();
        break;
    case SessionAction::Birth:
        PublishBirths(true);
        break;
    case SessionAction::Rebirth:
        PublishBirths(false);
        break;
    case SessionAction::Death:
        devices_.PublishOffline();
        deathId_ =
            client_.Publish(publisher_.Names().Of(MessageType::NodeDeath), NodeDeath(counter_.Number()), 1, false);
        break;
    case SessionAction::Disconnect:
        client_.Disconnect();
        log_.Info("left the MQTT broker", {{"broker", broker_}}); // the session has its mind on the next one already
        EndConnection();
        break;
    case SessionAction::Close:
        client_.Close();
        EndConnection();
        break;
    }
}

void NodeLoop::Connect() {
    if (!counter_.Begin()) {
        log_.Warning("the number of the Sparkplug session can't be written: after a restart it begins anew",
                     {{"folder", config_.stateFolder.string()}});
    }
    isNumberInUse_ = true;
    broker_ = config_.brokers[session_.Server()].host;
    client_.Connect(config_.brokers[session_.Server()], publisher_.Names().Of(MessageType::NodeDeath),
                    NodeDeath(counter_.Number()));
}

/// No commands of devices: nothing of them can be written.
void NodeLoop::Subscribe() {
    ++connects_;
    lastError_.clear();
    std::vector<std::string> topics{publisher_.Names().Of(MessageType::NodeCommand)};
    if (!config_.primaryHost.empty()) {
        topics.push_back(Topics::StateOf(config_.primaryHost));
    }
    client_.Subscribe(topics);
}

void NodeLoop::PublishBirths(bool isNewSession) {
    TakeDeliveries();
    if (isNewSession) {
        forwarder_.BeginSession(Present());
        log_.Info("published births", {{"broker", config_.brokers[session_.Server()].host},
                                       {"waiting", std::to_string(forwarder_.Statistics().waiting)}});
    } else {
        devices_.PublishPending();
    }
    publisher_.Restart();
    proto::Payload payload;
    node_.AddBirth(payload, Now(), counter_.Number(), ValuesOfNode());
    publisher_.Send(MessageType::NodeBirth, payload);
    devices_.PublishBirths(isNewSession);
}

void NodeLoop::EndConnection() {
    if (isNumberInUse_ && !client_.HasSentConnect()) {
        counter_.TakeBack();
    }
    isNumberInUse_ = false;
    deathId_ = MqttClient::NotSent;
    forwarder_.EndSession();
    devices_.EndSession();
    json_.EndSession();
}

void NodeLoop::Handle(MqttEvent const& event) {
    Moment const now = Present();
    switch (event.kind) {
    case MqttEvent::Kind::LookingUp:
        session_.LookingUp(now);
        break;
    case MqttEvent::Kind::LookedUp:
        session_.LookedUp(now);
        break;
    case MqttEvent::Kind::Reached:
        Do(session_.Reached(now));
        break;
    case MqttEvent::Kind::Accepted:
        Do(session_.Accepted(now));
        break;
    case MqttEvent::Kind::Subscribed:
        Do(session_.Subscribed(now));
        break;
    case MqttEvent::Kind::Message:
        Do(HandleMessage(event));
        break;
    case MqttEvent::Kind::Acknowledged:
        if (event.id == deathId_) {
            Do(session_.DeathAcknowledged(now));
        } else {
            json_.Acknowledged();
        }
        break;
    case MqttEvent::Kind::Failed:
        Do(HandleFailure(event));
        break;
    }
}

SessionActions NodeLoop::HandleMessage(MqttEvent const& event) {
    if (event.topic == publisher_.Names().Of(MessageType::NodeCommand)) {
        return HandleCommand(event);
    }
    if (config_.primaryHost.empty() || event.topic != Topics::StateOf(config_.primaryHost)) {
        return {};
    }
    auto const state = ParseHostState(event.text);
    return state ? session_.HostChanged(*state, Present()) : SessionActions{};
}

SessionActions NodeLoop::HandleCommand(MqttEvent const& event) {
    if (event.isRetained) {
        return {}; // it was meant for a session that is over
    }
    Commands const commands = ParseCommands(event.text);
    refusedCommands_ += commands.refused.size();
    // Whoever floods the node with commands does not flood the log too.
    if (!commands.refused.empty() && Present() >= nextRefusalLine_) {
        nextRefusalLine_ = Present() + RefusalLineEvery;
        log_.Warning("refused a command: this gateway only reads",
                     {{"command", commands.refused.front()}, {"refused", std::to_string(refusedCommands_)}});
    }
    return commands.wantsRebirth ? session_.RebirthRequested(Present()) : SessionActions{};
}

SessionActions NodeLoop::HandleFailure(MqttEvent const& event) {
    if (event.text != lastError_) {
        lastError_ = event.text;
        log_.Warning("no connection to the MQTT broker",
                     {{"broker", config_.brokers[session_.Server()].host},
                      {"reason", event.text},
                      {"store_lasts_s", fmt::format("{:.0f}", forwarder_.Statistics().lastsSeconds)}});
    }
    return session_.Failed(event.failure, Present());
}

void NodeLoop::TakeDeliveries() {
    for (Delivery const& delivery : inbox_.TakeAll()) {
        devices_.Take(delivery, Present());
    }
}

void NodeLoop::PublishDue() {
    if (session_.State() == SessionState::Born) {
        if (client_.IsClear()) {
            devices_.PublishChanges(Present());
            PublishNodeChanges();
        } else if (devices_.PendingSamples() > config_.mostPending) {
            Do(HandleFailure({.failure = Failure::Unreachable, .topic = {}, .text = "the broker takes no more data"}));
        }
        // What is late does not hold up what is not.
        if (client_.IsClear()) {
            devices_.PublishHistorical(Present());
        }
    }
    forwarder_.Settle(Present());
    std::string const problem = store_.Statistics().problem;
    if (problem != storeProblem_) {
        storeProblem_ = problem;
        if (!problem.empty()) {
            log_.Error("the store of the MQTT broker can't be written", {{"reason", problem}});
        }
    }
}

void NodeLoop::PublishNodeChanges() {
    if (Present() < nextNodeChanges_) {
        return;
    }
    nextNodeChanges_ = Present() + NodeChangesEvery;
    proto::Payload payload;
    node_.AddChanges(payload, Now(), ValuesOfNode());
    if (payload.metrics_size() > 0) {
        publisher_.Send(MessageType::NodeData, payload);
    }
}

NodeValues NodeLoop::ValuesOfNode() const {
    ForwardStatistics const store = forwarder_.Statistics();
    return {.controllers = static_cast<std::int64_t>(devices_.Size()),
            .controllersOnline = static_cast<std::int64_t>(devices_.Online()),
            .waiting = static_cast<std::int64_t>(store.waiting),
            .dropped = static_cast<std::int64_t>(store.dropped)};
}

NodeStatistics NodeLoop::Statistics() const {
    return {.state = session_.State(),
            .broker = config_.brokers[session_.Server()].host,
            .lastError = lastError_,
            .connects = connects_,
            .refusedCommands = refusedCommands_,
            .jsonDropped = json_.Dropped(),
            .devices = devices_.Size(),
            .devicesOnline = devices_.Online(),
            .session = session_.Statistics(),
            .data = devices_.Statistics(),
            .store = forwarder_.Statistics(),
            .damaged = store_.Statistics().damaged};
}

} // namespace harvlink::gateway::sparkplug
