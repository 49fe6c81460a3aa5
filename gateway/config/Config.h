#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "gateway/config/MqttConfig.h"
#include "gateway/model/Log.h"
#include "harvlink/Fleet.h"

namespace harvlink::gateway {

/// Where and to whom the HTTP listener answers.
struct ListenConfig {
    std::string address = "127.0.0.1"; ///< IPv4 or IPv6
    std::uint16_t port = 9750;
    std::filesystem::path certificate; ///< with `key`: TLS
    std::filesystem::path key;
    std::filesystem::path tokenFile; ///< its first line is what a client sends as "Authorization: Bearer ..."
    std::size_t files = 0; ///< another one if the content of these three has changed
    bool isOpen = false; ///< "open = true": whoever reaches it may read, unencrypted
    std::vector<std::string> hosts; ///< further names by which clients may call it

    bool IsLoopback() const { return address.starts_with("127.") || address == "::1"; }
    bool operator==(ListenConfig const&) const = default;
};

/// Section [gateway].
struct GatewayConfig {
    std::string name = "gateway";
    ListenConfig listen{};
    LogLevel logLevel = LogLevel::Info;

    bool operator==(GatewayConfig const&) const = default;
};

/// Section [poll.NAME]: what is read together.
struct PollConfig {
    std::string name;
    FleetGroup group;
};

/// Section [controller.geometry]: lengths of an arm in millimetres, so that the page can show it.
struct GeometryConfig {
    std::string group = "R1";
    double shoulderHeight = 0.0; ///< mounting face to L axis
    double shoulderOffset = 0.0; ///< S axis to L axis, forward
    double upperArm = 0.0; ///< L axis to U axis
    double elbowOffset = 0.0; ///< U axis to R axis, across the forearm
    double forearm = 0.0; ///< U axis to wrist centre, along the forearm
    double hand = 0.0; ///< wrist centre to flange
    std::array<double, 6> pulsesPerDegree{};

    bool operator==(GeometryConfig const&) const = default;
};

/// A controller, with ranges spread out.
struct ControllerConfig {
    std::string name;
    FleetControllerOptions options;
    std::vector<std::string> polls; ///< names of polls
    std::optional<GeometryConfig> geometry;
    std::string encoding = "utf-8"; ///< of its texts
};

/// Section [prometheus].
struct PrometheusConfig {
    bool isOn = true;
    std::size_t mostSeries = 200'000; ///< what comes beyond is dropped and counted

    bool operator==(PrometheusConfig const&) const = default;
};

/// Section [recording.incidents]: the black box.
struct IncidentsConfig {
    std::filesystem::path folder;
    std::chrono::microseconds before{60'000'000};
    std::chrono::microseconds after{10'000'000};
    std::vector<std::string> on{"alarm-raised", "silent", "servo-off"}; ///< kinds of recorded events

    bool operator==(IncidentsConfig const&) const = default;
};

/// Section [recording].
struct RecordingConfig {
    std::filesystem::path file; ///< empty: only incidents are recorded
    std::chrono::microseconds keep{0}; ///< 0: no limit
    std::uint64_t maxBytes = 0; ///< 0: no limit
    std::optional<IncidentsConfig> incidents;

    bool operator==(RecordingConfig const&) const = default;
};

/// All that a gateway is told.
struct Config {
    GatewayConfig gateway;
    std::vector<PollConfig> polls;
    std::vector<ControllerConfig> controllers;
    PrometheusConfig prometheus;
    std::optional<MqttConfig> mqtt;
    std::optional<RecordingConfig> recording;

    /// What is read of a controller.
    std::vector<FleetGroup> GroupsOf(ControllerConfig const& controller) const;
};

} // namespace harvlink::gateway
