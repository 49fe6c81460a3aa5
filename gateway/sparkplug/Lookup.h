#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

struct mosquitto;

namespace harvlink::gateway::sparkplug {

/// The library, for as long as anything of it is in use.
class MqttLibrary {
public:
    MqttLibrary();
    MqttLibrary(MqttLibrary const&) = delete;
    MqttLibrary& operator=(MqttLibrary const&) = delete;
    ~MqttLibrary();
};

struct DestroyMqtt {
    void operator()(mosquitto* client) const;
};
using MqttHandle = std::unique_ptr<mosquitto, DestroyMqtt>;

/// What the library says of an attempt to connect that has begun, and the client.
struct BegunConnection {
    MqttHandle client;
    int result = 0;
    std::string error; ///< empty: it has begun
};

/// Begins to connect. Waits for the system to look up the host, if that is a name.
BegunConnection BeginConnection(MqttHandle client, std::string const& host, int port, int keepAlive);

bool IsName(std::string const& host);

/// The same on a thread of its own, as looking up a name takes as long as the system likes. Whoever lets go of it leaves the thread to
/// end by itself.
class Lookup {
public:
    Lookup(std::shared_ptr<MqttLibrary> library, MqttHandle client, std::string const& host, int port, int keepAlive);
    Lookup(Lookup const&) = delete;
    Lookup& operator=(Lookup const&) = delete;
    ~Lookup();

    /// Can be read when it is over.
    int Descriptor() const;
    /// What came of it, once it is over.
    std::optional<BegunConnection> Take();
    /// Whether the thread still waits for the system; also when nobody has this object any more.
    std::shared_ptr<std::atomic<bool> const> Runs() const;

private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

} // namespace harvlink::gateway::sparkplug
