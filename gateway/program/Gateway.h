#pragma once

#include <memory>
#include <optional>
#include <string>

#include "gateway/config/Config.h"
#include "gateway/http/HttpServer.h"
#include "gateway/model/Log.h"
#include "gateway/program/VirtualPlant.h"
#include "gateway/prometheus/Exposition.h"
#include "gateway/watch/Watch.h"

namespace harvlink::gateway {

/// The running gateway: everything that a configuration asks for. For one thread.
class Gateway {
public:
    explicit Gateway(Log& log);
    Gateway(Gateway const&) = delete;
    Gateway& operator=(Gateway const&) = delete;
    /// Ends all of it, within a second.
    ~Gateway();

    /// Before Apply: the controllers of the configurations are replaced by virtual ones. Throws ConfigError.
    void Simulate(unsigned count);

    /// Runs as the configuration says. What it has in common with the one before goes on undisturbed. Throws ConfigError or
    /// RecordingError; the gateway then goes on as the configuration before says.
    void Apply(Config config);

    /// Whether the threads that hand on samples and that answer clients have gone round since the last call; for the watchdog.
    bool IsAlive();

    std::size_t ControllerCount() const { return config_ ? config_->controllers.size() : 0; }
    /// With the port that was taken if the configuration has 0.
    ListenConfig Listening() const;

private:
    void Restore(Config const& config);
    void ApplyRecording(Config const& config);
    void ApplyMqtt(Config const& config);
    void ApplyListener(Config const& config);
    ApiSources SourcesFor(Config const& config);
    ExpositionSources ExpositionSourcesFor(Config const& config);
    std::vector<Figure> Figures();

    Log& log_;
    std::unique_ptr<VirtualPlant> plant_;
    Watch watch_;
    std::shared_ptr<RoundTrips> roundTrips_ = std::make_shared<RoundTrips>();
    std::optional<Config> config_;
    std::shared_ptr<Observer> recording_;
    std::shared_ptr<Observer> mqtt_;
    std::shared_ptr<Interim> betweenNodes_; ///< only while a configuration is applied
    std::unique_ptr<HttpServer> http_;
    std::optional<RecordingConfig> recordingInUse_; ///< what the three were made of
    std::optional<MqttConfig> mqttInUse_;
    std::optional<Config> listenerInUse_;
    std::uint64_t seenRounds_ = 0;
    std::uint64_t seenHttpRounds_ = 0;
};

} // namespace harvlink::gateway
