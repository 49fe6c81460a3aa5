#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace harvlink::gateway {

struct MqttBroker {
    std::string host;
    std::uint16_t port = 1883; ///< 8883 with TLS, if the file does not say

    bool operator==(MqttBroker const&) const = default;
};

/// Samples wait here while the broker is away: key `store` in section [mqtt.store].
struct MqttStoreConfig {
    std::filesystem::path folder; ///< empty: nothing is stored
    std::uint64_t maxBytes = 256ULL << 20; ///< the oldest go first
    std::chrono::microseconds maxAge = std::chrono::hours(24); ///< what is older is dropped
    std::uint32_t valuesPerSecond = 2000; ///< how fast what waited is sent beside live data

    bool operator==(MqttStoreConfig const&) const = default;
};

/// Section [mqtt.tls]; it is on if the section is there.
struct MqttTlsConfig {
    bool isOn = false;
    std::filesystem::path ca; ///< of the broker's certificate; empty: those that the system trusts
    std::filesystem::path certificate; ///< of this client, with its key; both or none
    std::filesystem::path key;

    bool operator==(MqttTlsConfig const&) const = default;
};

/// Plain topics for consumers that do not speak Sparkplug: section [mqtt.json], on if it is there.
struct MqttJsonConfig {
    bool isOn = false;
    std::string topic = "harvlink"; ///< TOPIC/NODE/CONTROLLER/READING
    int qos = 0; ///< 0 or 1
    bool retain = true;

    bool operator==(MqttJsonConfig const&) const = default;
};

/// Section [mqtt]. Whoever reads it may rely on it: ids are legal in topics, files can be read, numbers are in range.
struct MqttConfig {
    std::vector<MqttBroker> brokers; ///< `broker`: "host", "host:port" or a list of them; tried in turn, one at a time
    std::string group; ///< Sparkplug group id
    std::string node; ///< Sparkplug edge node id; [gateway] name, if the file does not say
    std::string clientId; ///< empty: made of group and node
    std::string user;
    std::filesystem::path passwordFile; ///< its first line is the password
    MqttTlsConfig tls{};
    std::string primaryHost; ///< births wait until this host is online; empty: they wait for none
    std::chrono::seconds keepAlive{10}; ///< 5 to 600
    std::size_t mostPending = 100'000; ///< samples: a broker that takes none of so many is as good as away
    std::chrono::milliseconds rebirthInterval{5000}; ///< of the rebirths that a host commands, at most one in this time
    std::filesystem::path
        stateFolder; ///< for the counter of sessions; the folder of the store, if the file does not say
    MqttJsonConfig json{};
    MqttStoreConfig store{};

    bool operator==(MqttConfig const&) const = default;
};

} // namespace harvlink::gateway
