#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "gateway/config/MqttConfig.h"
#include "gateway/sparkplug/Backoff.h"
#include "gateway/sparkplug/Lookup.h"

namespace harvlink::gateway::sparkplug {

/// What came of a connection to a broker.
struct MqttEvent {
    enum class Kind {
        LookingUp, ///< the name of the broker, which may take long
        LookedUp,
        Reached, ///< the broker takes the connection: the CONNECT leaves
        Accepted,
        Subscribed,
        Message,
        Acknowledged, ///< the message `id`, of QoS 1
        Failed, ///< the connection is gone
    };

    Kind kind = Kind::Failed;
    Failure failure = Failure::Unreachable;
    int id = 0;
    bool isRetained = false; ///< of a message
    std::string topic;
    std::string text; ///< of a message its payload, of a failure why
};

/// One connection to a broker at a time, MQTT 3.1.1 with a clean session, for one thread. It never connects again by itself and
/// keeps no message for a later connection: what a new session sends is for others to decide.
class MqttClient {
public:
    MqttClient(MqttConfig config, std::string clientId);
    MqttClient(MqttClient const&) = delete;
    MqttClient& operator=(MqttClient const&) = delete;
    ~MqttClient();

    /// Begins to connect. The will has QoS 1 and is not retained.
    void Connect(MqttBroker const& broker, std::string const& willTopic, std::string const& will);
    /// With QoS 1.
    void Subscribe(std::vector<std::string> const& topics);

    static constexpr int NotSent = -1;
    /// Returns the id of the message, or NotSent.
    int Publish(std::string const& topic, std::string const& payload, int qos, bool retain);

    /// True if all that was published has left: more may follow without piling up.
    bool IsClear() const;
    /// Whether the CONNECT of the present or last attempt can have left.
    bool HasSentConnect() const { return hasSentConnect_; }

    /// Says goodbye, so that the broker drops the will, and closes. At most 200 ms.
    void Disconnect();
    /// Closes without a word.
    void Close();

    /// Waits until something happens, `wake` can be read or the time is over.
    std::vector<MqttEvent> Wait(int wake, Milliseconds timeout);

private:
    struct Callbacks;

    bool SetUp(std::string const& willTopic, std::string const& will);
    bool SetUpTls();
    bool SetUpLogin();
    void Serve(short ready);
    void TakeLookup();
    void Begin(BegunConnection begun);
    bool CheckReached();
    void Check(int result);
    void FailConnection(int result, std::string text);
    void Fail(Failure failure, std::string text);

    MqttConfig config_;
    std::string clientId_;
    std::shared_ptr<MqttLibrary> library_ = std::make_shared<MqttLibrary>();
    MqttHandle client_; ///< none while its broker is looked up
    std::optional<Lookup> lookup_;
    std::map<std::string, std::shared_ptr<std::atomic<bool> const>> lookups_; ///< by name, whether one still runs
    std::vector<MqttEvent> events_;
    std::unordered_set<int> unacknowledged_; ///< messages of QoS 1
    int awaitedSubscriptions_ = 0;
    int refusal_ = 0; ///< of the CONNACK
    bool isReached_ = false;
    bool hasSentConnect_ = false;
    bool hasFailed_ = false;
};

} // namespace harvlink::gateway::sparkplug
