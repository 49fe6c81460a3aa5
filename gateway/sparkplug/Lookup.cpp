#include "gateway/sparkplug/Lookup.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <arpa/inet.h>
#include <mosquitto.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace harvlink::gateway::sparkplug {

MqttLibrary::MqttLibrary() {
    mosquitto_lib_init();
}

MqttLibrary::~MqttLibrary() {
    mosquitto_lib_cleanup();
}

void DestroyMqtt::operator()(mosquitto* client) const {
    mosquitto_destroy(client);
}

BegunConnection BeginConnection(MqttHandle client, std::string const& host, int port, int keepAlive) {
    int const result = mosquitto_connect_async(client.get(), host.c_str(), port, keepAlive);
    std::string error;
    if (result > MOSQ_ERR_SUCCESS) {
        error = result == MOSQ_ERR_ERRNO ? std::system_category().message(errno) : mosquitto_strerror(result);
    }
    return {std::move(client), result, std::move(error)};
}

bool IsName(std::string const& host) {
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return inet_pton(AF_INET, host.c_str(), address.data()) != 1 &&
           inet_pton(AF_INET6, host.c_str(), address.data()) != 1;
}

struct Lookup::Shared {
    std::shared_ptr<MqttLibrary> library; ///< goes after the client
    int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::shared_ptr<std::atomic<bool>> runs = std::make_shared<std::atomic<bool>>(true);
    std::mutex mutex;
    std::optional<BegunConnection> begun;

    Shared() = default;
    Shared(Shared const&) = delete;
    Shared& operator=(Shared const&) = delete;
    ~Shared() { close(descriptor); }
};

Lookup::Lookup(std::shared_ptr<MqttLibrary> library, MqttHandle client, std::string const& host, int port,
               int keepAlive)
    : shared_(std::make_shared<Shared>()) {
    shared_->library = std::move(library);
    std::thread([shared = shared_, handle = std::move(client), host, port, keepAlive]() mutable {
        sigset_t all; // signals are for the program
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        auto begun = BeginConnection(std::move(handle), host, port, keepAlive);
        {
            std::scoped_lock const lock(shared->mutex);
            shared->begun = std::move(begun);
        }
        *shared->runs = false;
        eventfd_write(shared->descriptor, 1);
    }).detach();
}

Lookup::~Lookup() = default;

int Lookup::Descriptor() const {
    return shared_->descriptor;
}

std::optional<BegunConnection> Lookup::Take() {
    std::scoped_lock const lock(shared_->mutex);
    return std::exchange(shared_->begun, std::nullopt);
}

std::shared_ptr<std::atomic<bool> const> Lookup::Runs() const {
    return shared_->runs;
}

} // namespace harvlink::gateway::sparkplug
