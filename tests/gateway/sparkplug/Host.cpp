#include "gateway/sparkplug/Host.h"

#include <chrono>
#include <sstream>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <mosquitto.h>

namespace harvlink::test {

namespace {

std::int64_t UtcMilliseconds() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::vector<std::string> LevelsOf(std::string const& topic) {
    std::vector<std::string> levels;
    std::istringstream stream(topic);
    for (std::string level; std::getline(stream, level, '/');) {
        levels.push_back(level);
    }
    return levels;
}

} // namespace

Host::Host(std::string address, std::string id) : address_(std::move(address)), id_(std::move(id)) {
    mosquitto_lib_init();
    client_ = mosquitto_new(nullptr, true, this);
    mosquitto_threaded_set(client_, true);
    mosquitto_connect_callback_set(client_, [](mosquitto* client, void*, int code) {
        if (code == 0) {
            mosquitto_subscribe(client, nullptr, "#", 1);
        }
    });
    mosquitto_subscribe_callback_set(client_, [](mosquitto*, void* self, int, int, int const*) {
        auto& host = *static_cast<Host*>(self);
        host.SendState(true, UtcMilliseconds());
        std::call_once(host.isSubscribed_, [&] { host.subscribed_.set_value(); });
    });
    mosquitto_message_callback_set(client_, [](mosquitto*, void* self, mosquitto_message const* message) {
        static_cast<Host*>(self)->Take(*message);
    });
    thread_ = std::thread([this] { Run(); });
    auto const state = subscribed_.get_future().wait_for(std::chrono::seconds(20));
    EXPECT_EQ(state, std::future_status::ready) << "the broker does not take the subscription";
}

Host::~Host() {
    mustStop_ = true;
    mosquitto_disconnect(client_);
    thread_.join();
    mosquitto_destroy(client_);
    mosquitto_lib_cleanup();
}

void Host::Run() {
    while (!mustStop_) {
        int result = mosquitto_connect(client_, address_.c_str(), 1883, 60);
        while (result == MOSQ_ERR_SUCCESS && !mustStop_) {
            result = mosquitto_loop(client_, 50, 1);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

void Host::Publish(std::string const& topic, std::string const& payload, int qos, bool retain) {
    mosquitto_publish(client_, nullptr, topic.c_str(), static_cast<int>(payload.size()), payload.data(), qos, retain);
}

void Host::SendState(bool isOnline, std::int64_t timestamp) {
    if (!id_.empty()) {
        Publish("spBv1.0/STATE/" + id_, fmt::format(R"({{"online":{},"timestamp":{}}})", isOnline, timestamp), 1, true);
    }
}

void Host::Expect(bool condition, std::string const& fault) {
    if (!condition) {
        faults_.push_back(fault);
    }
}

void Host::Take(mosquitto_message const& message) {
    std::scoped_lock const lock(mutex_);
    std::string const bytes(static_cast<char const*>(message.payload), static_cast<std::size_t>(message.payloadlen));
    auto const levels = LevelsOf(message.topic);
    if (levels.front() != "spBv1.0") {
        plain_[message.topic] = bytes;
        return;
    }
    if (levels.size() < 4 || levels[2].ends_with("CMD")) {
        return;
    }
    Payload payload;
    Expect(payload.ParseFromString(bytes), "can't be decoded: " + std::string(message.topic));
    TakeSparkplug(levels[2], levels.size() > 4 ? levels[4] : "", payload);
}

void Host::TakeSparkplug(std::string const& type, std::string const& device, Payload const& payload) {
    if (type == "NDEATH") {
        isNodeBorn_ = isNodeBorn_ && payload.metrics(0).long_value() != static_cast<std::uint64_t>(session_);
        return;
    }
    CheckNumber(type, payload);
    if (type == "NBIRTH") {
        isNodeBorn_ = true;
        session_ = static_cast<std::int64_t>(payload.metrics(0).long_value());
        born_.clear();
        aliases_.clear();
        lastHistorical_.clear();
        ++nodeBirths_;
        return;
    }
    Expect(isNodeBorn_, type + " of a node that is not born");
    if (type == "DBIRTH") {
        TakeBirth(device, payload);
    } else if (type == "DDATA") {
        TakeData(device, payload);
    } else if (type == "DDEATH") {
        Expect(born_.erase(device) > 0, "DDEATH of " + device + ", which is not born");
    }
}

void Host::CheckNumber(std::string const& type, Payload const& payload) {
    auto const number = static_cast<int>(payload.seq());
    Expect(payload.has_seq() && (type == "NBIRTH" ? number == 0 : number == next_),
           fmt::format("{} has the number {} instead of {}", type, number, next_));
    next_ = (number + 1) % 256;
}

void Host::TakeBirth(std::string const& device, Payload const& payload) {
    born_.insert(device);
    for (auto const& metric : payload.metrics()) {
        Expect(metric.has_name() && metric.has_alias() && metric.has_datatype(), "a metric of a birth lacks something");
        aliases_[metric.alias()] = device + "/" + metric.name();
        Keep(device + "/" + metric.name(), metric);
        live_[device + "/" + metric.name()] = static_cast<std::int64_t>(metric.long_value());
    }
}

void Host::TakeData(std::string const& device, Payload const& payload) {
    Expect(born_.contains(device), "DDATA of " + device + ", which is not born");
    bool const isHistorical = payload.metrics_size() > 0 && payload.metrics(0).is_historical();
    for (auto const& metric : payload.metrics()) {
        auto const name = aliases_.find(metric.alias());
        Expect(name != aliases_.end(), "a value of an unknown metric");
        Expect(metric.is_historical() == isHistorical, "historical and live values in one payload");
        if (name == aliases_.end()) {
            continue;
        }
        Keep(name->second, metric);
        historical_ += isHistorical ? 1 : 0;
        if (isHistorical) {
            CheckOrder(name->second, metric.timestamp());
        } else {
            live_[name->second] = static_cast<std::int64_t>(metric.long_value());
        }
    }
}

/// What is sent late comes in the order in which it was read.
void Host::CheckOrder(std::string const& name, std::uint64_t time) {
    constexpr std::uint64_t ClockSetBack = 30 * 60'000; // at least
    std::uint64_t& last = lastHistorical_[name];
    Expect(time >= last || time + ClockSetBack < last,
           fmt::format("{} of {} comes after that of {}", name, time, last));
    last = time;
}

void Host::Keep(std::string const& name, org::eclipse::tahu::protobuf::Metric const& metric) {
    if (metric.is_null()) {
        return;
    }
    auto const [place, isNew] = values_[name].emplace(metric.timestamp(), metric);
    Expect(isNew || place->second.long_value() == metric.long_value(),
           fmt::format("{} has two values at {}", name, metric.timestamp()));
}

Host::Values Host::ValuesOf(std::string const& metric) const {
    std::scoped_lock const lock(mutex_);
    auto const place = values_.find(metric);
    return place == values_.end() ? Values{} : place->second;
}

std::int64_t Host::LiveValueOf(std::string const& metric) const {
    std::scoped_lock const lock(mutex_);
    auto const place = live_.find(metric);
    return place == live_.end() ? -1 : place->second;
}

std::set<std::int64_t> Host::Missing(std::string const& metric, std::int64_t count) const {
    std::set<std::int64_t> missing;
    for (std::int64_t i = 1; i <= count; ++i) {
        missing.insert(missing.end(), i);
    }
    for (auto const& [time, value] : ValuesOf(metric)) {
        missing.erase(static_cast<std::int64_t>(value.long_value()));
    }
    return missing;
}

bool Host::HasAll(std::string const& metric, std::int64_t count) const {
    return Missing(metric, count).empty();
}

bool Host::IsBorn(std::string const& device) const {
    std::scoped_lock const lock(mutex_);
    return isNodeBorn_ && born_.contains(device);
}

std::size_t Host::NodeBirths() const {
    std::scoped_lock const lock(mutex_);
    return nodeBirths_;
}

std::uint64_t Host::HistoricalValues() const {
    std::scoped_lock const lock(mutex_);
    return historical_;
}

std::vector<std::string> Host::Faults() const {
    std::scoped_lock const lock(mutex_);
    return faults_;
}

std::map<std::string, std::string> Host::PlainTopics() const {
    std::scoped_lock const lock(mutex_);
    return plain_;
}

} // namespace harvlink::test
