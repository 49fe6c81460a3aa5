#include "gateway/sparkplug/JsonTopics.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "gateway/sparkplug/Ids.h"

namespace harvlink::gateway::sparkplug {

namespace {

nlohmann::json JsonOf(recording::RecordedValue const& value, recording::RecordedType type) {
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        return type == recording::RecordedType::Truth ? nlohmann::json(*integer != 0) : nlohmann::json(*integer);
    }
    if (auto const* const real = std::get_if<double>(&value)) {
        return *real; // written as null if it is not finite
    }
    if (auto const* const text = std::get_if<std::string>(&value)) {
        return RepairedUtf8(*text);
    }
    return nullptr;
}

void AddValues(nlohmann::json& json, Sample const& sample, recording::RecordedReading const& reading) {
    auto const valueOf = [&](std::size_t item) {
        return sample.values.empty() ? nlohmann::json() : JsonOf(sample.values[item], reading.items[item].type);
    };
    if (reading.items.size() == 1 && reading.items.front().field.empty()) {
        json["value"] = valueOf(0);
        return;
    }
    for (std::size_t item = 0; item < reading.items.size(); ++item) {
        json["values"][reading.items[item].field] = valueOf(item);
    }
}

} // namespace

JsonTopics::JsonTopics(MqttClient& client, MqttJsonConfig config, std::string node)
    : client_(client), config_(std::move(config)), node_(std::move(node)) {}

void JsonTopics::Publish(Device const& device, Change const& change) {
    if (!config_.isOn) {
        return;
    }
    auto const& reading = device.Source()->readings[change.sample->reading];
    bool const isGood = change.sample->moment.quality == recording::RecordedQuality::Good;
    nlohmann::json json{{"timestamp", change.time}, {"quality", isGood ? "good" : "bad"}};
    AddValues(json, *change.sample, reading);
    std::string const topic = fmt::format("{}/{}/{}/{}", config_.topic, node_, device.Id(), DeviceIdOf(reading.name));
    Send(topic, json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

void JsonTopics::PublishOnline(Device const& device, bool isOnline) {
    if (config_.isOn) {
        Send(fmt::format("{}/{}/{}/online", config_.topic, node_, device.Id()), isOnline ? "true" : "false");
    }
}

void JsonTopics::Send(std::string const& topic, std::string const& payload) {
    if (unacknowledged_ >= MostUnacknowledged) {
        ++dropped_;
        return;
    }
    bool const isSent = client_.Publish(topic, payload, config_.qos, config_.retain) != MqttClient::NotSent;
    unacknowledged_ += isSent && config_.qos > 0 ? 1 : 0;
}

void JsonTopics::Acknowledged() {
    unacknowledged_ = std::max(0, unacknowledged_ - 1);
}

} // namespace harvlink::gateway::sparkplug
