#include "gateway/sparkplug/MqttClient.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <mosquitto.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace harvlink::gateway::sparkplug {

namespace {

constexpr Milliseconds GoodbyeLimit{200};
constexpr int LongestIncoming = 1 << 20; ///< bytes of a message; longer ones are not ours
constexpr int BrokerUnavailable = 3; ///< of the codes of a CONNACK the one that passes by itself

std::string FirstLineOf(std::filesystem::path const& file, bool& isRead) {
    std::ifstream stream(file);
    std::string line;
    isRead = static_cast<bool>(std::getline(stream, line));
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    return line;
}

char const* OrNull(std::string const& text) {
    return text.empty() ? nullptr : text.c_str();
}

std::string TextOf(int result) {
    return result == MOSQ_ERR_ERRNO ? std::system_category().message(errno) : mosquitto_strerror(result);
}

} // namespace

/// The library calls these within Serve, on the same thread.
struct MqttClient::Callbacks {
    static MqttClient& Self(void* object) { return *static_cast<MqttClient*>(object); }

    static void OnConnect(mosquitto* /*client*/, void* object, int code) {
        if (code == 0) {
            Self(object).events_.push_back({.kind = MqttEvent::Kind::Accepted, .topic = {}, .text = {}});
        } else {
            Self(object).refusal_ = code;
        }
    }

    static void OnSubscribe(mosquitto* /*client*/, void* object, int /*id*/, int count, int const* granted) {
        constexpr int Refusal = 0x80;
        MqttClient& self = Self(object);
        for (int i = 0; i < count; ++i) {
            if (granted[i] >= Refusal) {
                self.Fail(Failure::Refused, "the broker refuses the subscription");
                return;
            }
        }
        if (--self.awaitedSubscriptions_ == 0) {
            self.events_.push_back({.kind = MqttEvent::Kind::Subscribed, .topic = {}, .text = {}});
        }
    }

    static void OnMessage(mosquitto* /*client*/, void* object, mosquitto_message const* message) {
        if (message->payloadlen < 0 || message->payloadlen > LongestIncoming) {
            return;
        }
        std::string payload;
        if (message->payloadlen > 0) {
            payload.assign(static_cast<char const*>(message->payload), static_cast<std::size_t>(message->payloadlen));
        }
        Self(object).events_.push_back({.kind = MqttEvent::Kind::Message,
                                        .isRetained = message->retain,
                                        .topic = message->topic,
                                        .text = std::move(payload)});
    }

    static void OnPublish(mosquitto* /*client*/, void* object, int id) {
        // It is called for messages of QoS 0 too, once they have left.
        if (Self(object).unacknowledged_.erase(id) > 0) {
            Self(object).events_.push_back({.kind = MqttEvent::Kind::Acknowledged, .id = id, .topic = {}, .text = {}});
        }
    }
};

MqttClient::MqttClient(MqttConfig config, std::string clientId)
    : config_(std::move(config)), clientId_(std::move(clientId)) {}

MqttClient::~MqttClient() = default;

void MqttClient::Fail(Failure failure, std::string text) {
    if (!hasFailed_) {
        hasFailed_ = true;
        events_.push_back({.kind = MqttEvent::Kind::Failed, .failure = failure, .topic = {}, .text = std::move(text)});
    }
}

void MqttClient::Connect(MqttBroker const& broker, std::string const& willTopic, std::string const& will) {
    Close();
    hasFailed_ = isReached_ = hasSentConnect_ = false;
    refusal_ = 0;
    client_.reset(mosquitto_new(clientId_.c_str(), true, this));
    if (client_ == nullptr) {
        Fail(Failure::Unreachable, std::system_category().message(errno));
        return;
    }
    if (!SetUp(willTopic, will)) {
        return;
    }
    int const keepAlive = static_cast<int>(config_.keepAlive.count());
    if (!IsName(broker.host)) {
        Begin(BeginConnection(std::move(client_), broker.host, broker.port, keepAlive));
        return;
    }
    // One thread for each name at most, however long the system takes.
    auto& runs = lookups_[broker.host];
    if (runs != nullptr && *runs) {
        Fail(Failure::Unreachable, fmt::format("the name {} is still being looked up", broker.host));
        return;
    }
    lookup_.emplace(library_, std::move(client_), broker.host, broker.port, keepAlive);
    runs = lookup_->Runs();
    events_.push_back({.kind = MqttEvent::Kind::LookingUp, .topic = {}, .text = {}});
}

void MqttClient::TakeLookup() {
    auto begun = lookup_ ? lookup_->Take() : std::nullopt;
    if (begun) {
        lookup_.reset();
        events_.push_back({.kind = MqttEvent::Kind::LookedUp, .topic = {}, .text = {}});
        Begin(std::move(*begun));
    }
}

void MqttClient::Begin(BegunConnection begun) {
    client_ = std::move(begun.client);
    if (!begun.error.empty()) {
        FailConnection(begun.result, std::move(begun.error));
        return;
    }
    // The library may have sent it already. A process that is killed now must not use the number again.
    hasSentConnect_ = CheckReached();
}

bool MqttClient::SetUp(std::string const& willTopic, std::string const& will) {
    mosquitto* const client = client_.get();
    mosquitto_connect_callback_set(client, Callbacks::OnConnect);
    mosquitto_subscribe_callback_set(client, Callbacks::OnSubscribe);
    mosquitto_message_callback_set(client, Callbacks::OnMessage);
    mosquitto_publish_callback_set(client, Callbacks::OnPublish);
    mosquitto_int_option(client, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V311);
    mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1);
    int const result =
        mosquitto_will_set(client, willTopic.c_str(), static_cast<int>(will.size()), will.data(), 1, false);
    if (result != MOSQ_ERR_SUCCESS) {
        Fail(Failure::Refused, TextOf(result));
        return false;
    }
    return SetUpLogin() && SetUpTls();
}

/// The files are read for each connection, so that a new password or certificate counts from the next one on.
bool MqttClient::SetUpLogin() {
    if (config_.user.empty()) {
        return true;
    }
    std::string password;
    bool isRead = true;
    if (!config_.passwordFile.empty()) {
        password = FirstLineOf(config_.passwordFile, isRead);
    }
    if (!isRead) {
        Fail(Failure::Refused, fmt::format("the password file {} can't be read", config_.passwordFile.string()));
        return false;
    }
    mosquitto_username_pw_set(client_.get(), config_.user.c_str(),
                              config_.passwordFile.empty() ? nullptr : password.c_str());
    return true;
}

bool MqttClient::SetUpTls() {
    if (!config_.tls.isOn) {
        return true;
    }
    std::string const ca = config_.tls.ca.string();
    std::string const certificate = config_.tls.certificate.string();
    std::string const key = config_.tls.key.string();
    char const* const systemFolder = ca.empty() ? "/etc/ssl/certs" : nullptr;
    int const result =
        mosquitto_tls_set(client_.get(), OrNull(ca), systemFolder, OrNull(certificate), OrNull(key), nullptr);
    if (result != MOSQ_ERR_SUCCESS) {
        Fail(Failure::Refused, fmt::format("TLS: {}", TextOf(result)));
    }
    return result == MOSQ_ERR_SUCCESS;
}

void MqttClient::Subscribe(std::vector<std::string> const& topics) {
    awaitedSubscriptions_ = static_cast<int>(topics.size());
    for (std::string const& topic : topics) {
        Check(mosquitto_subscribe(client_.get(), nullptr, topic.c_str(), 1));
    }
}

int MqttClient::Publish(std::string const& topic, std::string const& payload, int qos, bool retain) {
    if (client_ == nullptr || hasFailed_) {
        return NotSent;
    }
    int id = NotSent;
    int const result = mosquitto_publish(client_.get(), &id, topic.c_str(), static_cast<int>(payload.size()),
                                         payload.data(), qos, retain);
    Check(result);
    if (result != MOSQ_ERR_SUCCESS) {
        return NotSent;
    }
    if (qos > 0) {
        unacknowledged_.insert(id);
    }
    return id;
}

bool MqttClient::IsClear() const {
    return client_ != nullptr && !mosquitto_want_write(client_.get());
}

void MqttClient::Disconnect() {
    if (client_ != nullptr && mosquitto_disconnect(client_.get()) == MOSQ_ERR_SUCCESS) {
        // Closing with unread bytes would reset the connection, and the broker might not read the goodbye. So it closes first.
        auto const end = std::chrono::steady_clock::now() + GoodbyeLimit;
        while (!hasFailed_ && std::chrono::steady_clock::now() < end && mosquitto_socket(client_.get()) >= 0) {
            Wait(-1, Milliseconds(20));
        }
    }
    Close();
}

void MqttClient::Close() {
    lookup_.reset();
    client_.reset();
    events_.clear();
    unacknowledged_.clear();
}

std::vector<MqttEvent> MqttClient::Wait(int wake, Milliseconds timeout) {
    int const socket = client_ != nullptr && !hasFailed_ ? mosquitto_socket(client_.get()) : -1;
    short const wanted = socket >= 0 && mosquitto_want_write(client_.get()) ? POLLIN | POLLOUT : POLLIN;
    int const lookup = lookup_ ? lookup_->Descriptor() : -1;
    std::array<pollfd, 3> descriptors{{{wake, POLLIN, 0}, {socket, wanted, 0}, {lookup, POLLIN, 0}}};
    if (events_.empty()) {
        poll(descriptors.data(), descriptors.size(), static_cast<int>(timeout.count()));
    }
    if (socket >= 0) {
        Serve(descriptors[1].revents);
    }
    TakeLookup();
    return std::exchange(events_, {});
}

/// Whether TCP stands. The library would send into a connection that failed, and its error would come later.
bool MqttClient::CheckReached() {
    if (isReached_) {
        return true;
    }
    int error = 0;
    socklen_t length = sizeof error;
    sockaddr_storage peer{};
    socklen_t peerLength = sizeof peer;
    int const socket = mosquitto_socket(client_.get());
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error != 0) {
        Fail(Failure::Unreachable, std::system_category().message(error));
    } else if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &peerLength) == 0) {
        isReached_ = true;
        events_.push_back({.kind = MqttEvent::Kind::Reached, .topic = {}, .text = {}});
    }
    return isReached_;
}

void MqttClient::Serve(short ready) {
    if (ready != 0 && !CheckReached()) {
        return;
    }
    if ((ready & POLLOUT) != 0) {
        hasSentConnect_ = true;
        Check(mosquitto_loop_write(client_.get(), 1));
    }
    if ((ready & (POLLIN | POLLERR | POLLHUP)) != 0 && !hasFailed_) {
        hasSentConnect_ = true;
        Check(mosquitto_loop_read(client_.get(), 1));
    }
    if (!hasFailed_ && isReached_) {
        Check(mosquitto_loop_misc(client_.get()));
    }
}

void MqttClient::Check(int result) {
    if (result == MOSQ_ERR_SUCCESS) {
        return;
    }
    if (refusal_ != 0) {
        Fail(refusal_ == BrokerUnavailable ? Failure::Unreachable : Failure::Refused,
             mosquitto_connack_string(refusal_));
    } else {
        FailConnection(result, TextOf(result));
    }
}

/// TLS may fail in any call: with the first one that finds the answer of the broker.
void MqttClient::FailConnection(int result, std::string text) {
    if (result == MOSQ_ERR_TLS) {
        hasSentConnect_ = false; // a broker reads it only when the handshake is over
        Fail(Failure::ThrownOut, "TLS: the certificates do not fit, or the broker does not speak it");
    } else {
        Fail(Failure::Unreachable, std::move(text));
    }
}

} // namespace harvlink::gateway::sparkplug
