#pragma once

#include "gateway/config/Config.h"
#include "gateway/config/Section.h"

/// @file
/// The sections of the file, each read by one function.

namespace harvlink::gateway {

void ReadGateway(Section& section, GatewayConfig& gateway);
void ReadPrometheus(Section& section, PrometheusConfig& prometheus);
void ReadMqtt(Section& section, GatewayConfig const& gateway, MqttConfig& mqtt, Problems& problems);
void ReadRecording(Section& section, RecordingConfig& recording, Problems& problems);
PollConfig ReadPoll(Section& section, std::string const& name);

/// The controllers of a section, several if its host is a range, none if it is wrong. `polls` is what they name.
std::vector<ControllerConfig> ReadControllers(Section& section, std::vector<std::string>& polls, Problems& problems);

} // namespace harvlink::gateway
