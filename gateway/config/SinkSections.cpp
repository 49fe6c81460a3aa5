#include <algorithm>

#include <arpa/inet.h>
#include <fmt/format.h>

#include "gateway/config/Sections.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/text/Utf8.h"

namespace harvlink::gateway {

namespace {

using std::chrono::microseconds;
using std::chrono::seconds;
using words::InputError;

/// An id is one level of a topic.
std::string Id(std::string const& text) {
    constexpr std::size_t Longest = 256;
    bool isLegal = !text.empty() && text.size() <= Longest;
    words::ForEachUtf8Character(text, [&](words::Utf8Character const& character) {
        char32_t const code = character.code;
        bool const isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
        bool const isNone = (code >= 0xFDD0 && code <= 0xFDEF) || (code & 0xFFFE) == 0xFFFE;
        isLegal = isLegal && character.isValid && !isControl && !isNone && code != '+' && code != '#' && code != '/';
    });
    if (!isLegal) {
        throw InputError(fmt::format("'{}' is not an id of 1 to 256 bytes without + # / and control characters", text));
    }
    return text;
}

bool IsIpv6(std::string const& text) {
    in6_addr address{};
    return inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

/// "broker", "broker:1883", "[fd00::5]:1883"
MqttBroker Broker(std::string const& text, std::uint16_t port) {
    bool const isBracketed = text.starts_with('[');
    std::size_t const end = std::min(text.find(isBracketed ? ']' : ':'), text.size());
    MqttBroker broker{isBracketed ? text.substr(1, end - 1) : text.substr(0, end), port};
    std::string const rest = text.substr(std::min(isBracketed ? end + 1 : end, text.size()));
    bool const hasOddLetter = std::any_of(broker.host.begin(), broker.host.end(),
                                          [](unsigned char letter) { return letter <= ' ' || letter >= 0x7F; });
    bool isRight =
        !broker.host.empty() && !hasOddLetter && (!isBracketed || (end < text.size() && IsIpv6(broker.host)));
    if (isRight && !rest.empty()) {
        isRight = rest.front() == ':';
        broker.port = isRight ? words::ParseNumber<std::uint16_t>(rest.substr(1), "port") : 0;
    }
    if (!isRight || broker.port == 0) {
        throw InputError(fmt::format("'{}' is not a broker such as 10.0.3.200:1883 or [fd00::5]:1883", text));
    }
    return broker;
}

void ReadTls(Section section, MqttTlsConfig& tls) {
    tls.isOn = true;
    section.File("ca", tls.ca);
    section.File("certificate", tls.certificate);
    section.File("key", tls.key);
    if (tls.certificate.empty() != tls.key.empty()) {
        section.Refuse("certificate", "a certificate of this client takes both certificate and key");
    }
    section.Finish();
}

void ReadJson(Section section, MqttJsonConfig& json) {
    json.isOn = true;
    section.Text("topic", [&](std::string const& text) {
        for (std::string_view const level : words::Split(text, '/')) {
            Id(std::string(level));
        }
        if (text.starts_with('$') || (text + '/').starts_with("spBv1.0/")) {
            throw InputError(fmt::format("'{}' belongs to somebody else", text));
        }
        json.topic = text;
    });
    section.Number("qos", 0, 1, [&](std::int64_t qos) { json.qos = static_cast<int>(qos); });
    section.Flag("retain", json.retain);
    section.Finish();
}

void ReadStore(Section section, MqttStoreConfig& store) {
    constexpr std::uint64_t LeastBytes = 1 << 20;
    section.Require("folder");
    section.Path("folder", store.folder);
    section.Size("max_size", LeastBytes, store.maxBytes);
    section.Duration("max_age", seconds(1), std::chrono::hours(24 * 365),
                     [&](microseconds age) { store.maxAge = age; });
    section.Number("values_per_second", 1, 1'000'000,
                   [&](std::int64_t number) { store.valuesPerSecond = static_cast<std::uint32_t>(number); });
    section.Finish();
}

IncidentsConfig ReadIncidents(Section section) {
    IncidentsConfig incidents;
    auto const readTime = [&](char const* key, microseconds& time) {
        section.Duration(key, seconds(0), std::chrono::hours(1), [&](microseconds given) { time = given; });
    };
    section.Require("folder");
    section.Path("folder", incidents.folder);
    readTime("before", incidents.before);
    readTime("after", incidents.after);
    if (section.Has("on")) {
        incidents.on.clear();
    }
    section.Texts("on", [&](std::string const& name) {
        if (name != "alarm" && name != "silent" && name != "servo-off") {
            throw InputError(fmt::format("'{}' is not one of alarm, silent, servo-off", name));
        }
        incidents.on.push_back(name == "alarm" ? "alarm-raised" : name);
    });
    section.Finish();
    return incidents;
}

} // namespace

void ReadMqtt(Section& section, GatewayConfig const& gateway, MqttConfig& mqtt, Problems& problems) {
    if (toml::table const* const table = section.Child("tls"); table != nullptr) {
        ReadTls(Section(*table, "[mqtt.tls]", problems), mqtt.tls);
    }
    constexpr std::uint16_t PlainPort = 1883;
    constexpr std::uint16_t TlsPort = 8883;
    section.Require("broker");
    section.Require("group");
    section.Texts("broker", [&](std::string const& text) {
        mqtt.brokers.push_back(Broker(text, mqtt.tls.isOn ? TlsPort : PlainPort));
    });
    if (section.Has("broker") && mqtt.brokers.empty()) {
        section.Refuse("broker", "has no broker that can be used");
    }
    section.Text("group", [&](std::string const& text) { mqtt.group = Id(text); });
    section.Text("node", [&](std::string const& text) { mqtt.node = Id(text); });
    section.Text("client_id", [&](std::string const& text) { mqtt.clientId = Id(text); });
    section.Text("user", mqtt.user);
    section.File("password_file", mqtt.passwordFile);
    section.Text("primary_host", [&](std::string const& text) { mqtt.primaryHost = Id(text); });
    section.Duration("keep_alive", seconds(5), seconds(600),
                     [&](microseconds time) { mqtt.keepAlive = std::chrono::duration_cast<seconds>(time); });
    section.Duration("rebirth_interval", seconds(0), std::chrono::hours(1), [&](microseconds time) {
        mqtt.rebirthInterval = std::chrono::duration_cast<std::chrono::milliseconds>(time);
    });
    section.Path("state_folder", mqtt.stateFolder);
    if (toml::table const* const table = section.Child("json"); table != nullptr) {
        ReadJson(Section(*table, "[mqtt.json]", problems), mqtt.json);
    }
    if (toml::table const* const table = section.Child("store"); table != nullptr) {
        ReadStore(Section(*table, "[mqtt.store]", problems), mqtt.store);
    }
    if (mqtt.node.empty()) {
        try {
            mqtt.node = Id(gateway.name);
        } catch (InputError const& error) {
            section.Refuse("node",
                           fmt::format("is missing, and the name of the gateway does not do: {}", error.what()));
        }
    }
    if (mqtt.stateFolder.empty()) {
        mqtt.stateFolder = mqtt.store.folder;
    }
    if (!mqtt.passwordFile.empty() && mqtt.user.empty()) {
        section.Refuse("password_file", "a password takes a user");
    }
    section.Finish();
}

void ReadRecording(Section& section, RecordingConfig& recording, Problems& problems) {
    constexpr std::uint64_t LeastBytes = 1 << 20;
    section.Path("file", recording.file);
    section.Duration("keep", seconds(1), std::chrono::hours(24 * 3650),
                     [&](microseconds keep) { recording.keep = keep; });
    section.Size("max_size", LeastBytes, recording.maxBytes);
    if (toml::table const* const table = section.Child("incidents"); table != nullptr) {
        recording.incidents = ReadIncidents(Section(*table, "[recording.incidents]", problems));
    }
    if (recording.file.empty() && !recording.incidents) {
        section.Require("file");
    }
    section.Finish();
}

} // namespace harvlink::gateway
