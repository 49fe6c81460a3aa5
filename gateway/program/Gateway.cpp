#include "gateway/program/Gateway.h"

#include <utility>

#include <fmt/format.h>

#include "gateway/config/ConfigError.h"
#include "gateway/history/RecordingSink.h"
#include "gateway/sparkplug/EdgeNode.h"

namespace harvlink::gateway {

namespace {

/// What the listener shows depends on more than its own section.
bool HasSameListener(Config const& left, Config const& right) {
    auto const geometries = [](Config const& config) {
        std::map<std::string, GeometryConfig> all;
        for (ControllerConfig const& controller : config.controllers) {
            if (controller.geometry) {
                all[controller.name] = *controller.geometry;
            }
        }
        return all;
    };
    return left.gateway.name == right.gateway.name && left.gateway.listen == right.gateway.listen &&
           left.recording == right.recording && left.prometheus == right.prometheus &&
           geometries(left) == geometries(right);
}

/// What can't be opened is told with the key that names it.
template <typename Open>
auto Opened(char const* key, Open const& open) {
    try {
        return open();
    } catch (std::exception const& error) {
        throw ConfigError({fmt::format("{}: {}", key, error.what())});
    }
}

} // namespace

Gateway::Gateway(Log& log) : log_(log), watch_(log) {
    watch_.Dispatch().Add(roundTrips_);
}

Gateway::~Gateway() {
    http_.reset(); // first what asks all the others
    watch_.Stop(); // what was read is still given to the sinks
    recording_.reset();
    mqtt_.reset(); // last, as it may wait for a name server
}

void Gateway::Simulate(unsigned count) {
    plant_ = std::make_unique<VirtualPlant>(count);
}

void Gateway::Apply(Config config) {
    if (plant_ != nullptr) {
        plant_->AddTo(config);
    }
    // What may fail comes first, so that a file that can't be used changes nothing.
    try {
        ApplyRecording(config);
        ApplyListener(config);
        ApplyMqtt(config);
    } catch (std::exception const&) {
        if (config_) {
            Restore(*config_);
        }
        throw;
    }
    log_.SetLevel(config.gateway.logLevel);
    Watch::Applied const applied = watch_.Apply(config, plant_ != nullptr);
    if (StatusInfo const status = watch_.Start(); status.StatusCode != 0) {
        throw ConfigError({status.Message});
    }
    config_ = std::move(config);
    log_.Info("the configuration is in use", {{"controllers", std::to_string(config_->controllers.size())},
                                              {"added", std::to_string(applied.added)},
                                              {"removed", std::to_string(applied.removed)},
                                              {"changed", std::to_string(applied.changed)},
                                              {"listen", config_->gateway.listen.address},
                                              {"port", std::to_string(Listening().port)}});
}

/// Brings back the configuration that was in use, after a part of a new one could not be started.
void Gateway::Restore(Config const& config) {
    for (auto const& [apply, what] : {std::pair(&Gateway::ApplyRecording, "recording"),
                                      {&Gateway::ApplyListener, "listener"},
                                      {&Gateway::ApplyMqtt, "mqtt"}}) {
        try {
            (this->*apply)(config);
        } catch (std::exception const& error) {
            log_.Error("a part of the configuration before could not be started again",
                       {{"part", what}, {"reason", error.what()}});
        }
    }
    if (betweenNodes_ != nullptr) { // no node follows
        watch_.Dispatch().Remove(std::exchange(betweenNodes_, nullptr));
    }
}

void Gateway::ApplyRecording(Config const& config) {
    if (recordingInUse_ == config.recording) {
        return;
    }
    auto const close = [this] {
        if (recording_ != nullptr) {
            watch_.Dispatch().Remove(recording_);
            recording_.reset();
        }
        recordingInUse_.reset();
    };
    if (recordingInUse_ && config.recording && recordingInUse_->file == config.recording->file) {
        close(); // a file has one writer
    }
    std::shared_ptr<Observer> next;
    if (config.recording) {
        next = Opened("[recording]", [&] { return std::make_shared<RecordingSink>(*config.recording, log_); });
    }
    close();
    if (next != nullptr) {
        recording_ = std::move(next);
        recordingInUse_ = config.recording;
        watch_.Dispatch().Add(recording_);
    }
}

void Gateway::ApplyMqtt(Config const& config) {
    if (mqttInUse_ == config.mqtt) {
        return;
    }
    // A broker takes one client of an id, and a store has one writer, so the new node begins when the old one has ended.
    if (mqtt_ != nullptr) {
        betweenNodes_ = std::make_shared<Interim>();
        watch_.Dispatch().Replace(mqtt_, betweenNodes_);
        mqtt_.reset();
        mqttInUse_.reset();
    }
    if (config.mqtt) {
        mqtt_ =
            Opened("[mqtt.store] folder", [&] { return std::make_shared<sparkplug::EdgeNode>(*config.mqtt, log_); });
        mqttInUse_ = config.mqtt;
    }
    if (betweenNodes_ == nullptr) {
        watch_.Dispatch().Add(mqtt_);
    } else if (mqtt_ != nullptr) {
        watch_.Dispatch().Replace(betweenNodes_, mqtt_);
    } else {
        watch_.Dispatch().Remove(betweenNodes_);
    }
    betweenNodes_.reset();
}

void Gateway::ApplyListener(Config const& config) {
    if (http_ != nullptr && HasSameListener(*listenerInUse_, config)) {
        return;
    }
    if (http_ != nullptr && listenerInUse_->gateway.listen.port == config.gateway.listen.port) {
        http_.reset();
    }
    http_ = Opened("[gateway] listen",
                   [&] { return std::make_unique<HttpServer>(config.gateway.listen, SourcesFor(config)); });
    listenerInUse_ = config;
}

ListenConfig Gateway::Listening() const {
    ListenConfig listening = config_->gateway.listen;
    listening.port = http_->Port();
    return listening;
}

ExpositionSources Gateway::ExpositionSourcesFor(Config const& config) {
    return {config.gateway.name,
            [this] { return watch_.Dispatch().Latest().Snapshot(); },
            [this] { return watch_.Engine().Statistics(); },
            [this] { return roundTrips_->All(); },
            [this] { return roundTrips_->Samples(); },
            [this] { return Figures(); }};
}

ApiSources Gateway::SourcesFor(Config const& config) {
    ApiSources sources;
    sources.gateway = config.gateway.name;
    sources.table = &watch_.Dispatch().Latest();
    sources.statistics = [this] { return watch_.Engine().Statistics(); };
    sources.plan = [this] { return watch_.Engine().Plan(); };
    sources.roundTrips = [this] {
        LastRoundTrips last;
        for (auto const& [id, counts] : roundTrips_->All()) {
            if (counts.count > 0) {
                last[id] = counts.last;
            }
        }
        return last;
    };
    sources.figures = [this] { return Figures(); };
    if (config.prometheus.isOn) {
        auto const exposition =
            std::make_shared<Exposition>(ExpositionSourcesFor(config), config.prometheus.mostSeries);
        sources.metrics = [exposition] { return exposition->Text(); };
    }
    for (ControllerConfig const& controller : config.controllers) {
        if (controller.geometry) {
            sources.geometries[controller.name] = *controller.geometry;
        }
    }
    if (config.recording) {
        sources.recording = config.recording->file;
        sources.incidents = config.recording->incidents ? config.recording->incidents->folder : "";
    }
    sources.isSimulated = plant_ != nullptr;
    if (plant_ != nullptr) {
        sources.changeVirtual = [this](std::string const& name, words::Json const& body) {
            return plant_->Change(name, body);
        };
    }
    return sources;
}

/// Called on the worker's thread of the listener.
std::vector<Figure> Gateway::Figures() {
    std::vector<Figure> figures = watch_.Dispatch().Figures();
    auto const own = HttpServer::Figures();
    figures.insert(figures.end(), own.begin(), own.end());
    return figures;
}

bool Gateway::IsAlive() {
    std::uint64_t const rounds = watch_.Dispatch().Rounds();
    std::uint64_t const httpRounds = http_ == nullptr ? seenHttpRounds_ + 1 : http_->Rounds();
    bool const isRound = std::exchange(seenRounds_, rounds) != rounds;
    return std::exchange(seenHttpRounds_, httpRounds) != httpRounds && isRound;
}

} // namespace harvlink::gateway
