#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "simulator/base/Descriptor.h"
#include "simulator/controller/ControllerOptions.h"
#include "simulator/controller/VirtualController.h"
#include "simulator/network/Socket.h"

namespace harvlink::simulator {

/// Serves any number of virtual controllers on one thread, each on ports 10040 and 10041 of its own address.
///
///     Server server;
///     auto& controller = server.Add("127.0.3.1");
///     if (!server.Start()) { ... server.Error() ... }
///     controller.With([](ControllerModel& model) { model.variables.bytes[5] = 12; });
///
/// Add, SetObserver, SetRecorder, Start and Stop belong to one thread; the controllers may be used from any.
class Server {
public:
    /// Called on the server's thread for every datagram of the protocol, after it was answered; where faults are injected,
    /// before that.
    using Observer = std::function<void(VirtualController&, Request const&, Reply const&)>;

    /// Called on the server's thread for every datagram in both directions, with sender and receiver.
    using Recorder = std::function<void(sockaddr_in const&, sockaddr_in const&, std::span<std::byte const>)>;

    Server();
    Server(Server const&) = delete;
    Server& operator=(Server const&) = delete;
    ~Server();

    /// The controller lives as long as the server. Only before Start.
    VirtualController& Add(std::string const& address, ControllerOptions const& options = {});

    /// Only before Start.
    void SetObserver(Observer observer) { observer_ = std::move(observer); }

    /// Only before Start.
    void SetRecorder(Recorder recorder) { recorder_ = std::move(recorder); }

    /// Binds all addresses, then answers on its own thread. False if an address can't be bound: Error then says which
    /// and why, and no address stays bound.
    [[nodiscard]] bool Start();

    /// Ends the thread and closes the sockets. The controllers keep their state; Start may be called again.
    void Stop();

    std::string const& Error() const { return error_; }

private:
    /// The sockets of a controller. The last one is bound when a fault needs it.
    struct Sockets {
        Socket robot;
        Socket file;
        Socket unknown;
    };

    struct Endpoint {
        VirtualController* controller = nullptr;
        Port port = Port::Robot;
        Sockets* sockets = nullptr;

        Socket const& Own() const { return port == Port::Robot ? sockets->robot : sockets->file; }
    };

    bool BindAll();
    void CloseAll();
    bool Bind(VirtualController& controller, Port port, Sockets& sockets);
    void Watch(int descriptor, void* tag) const;
    void Wake() const;
    void Run();
    void HandleWake();
    void Answer(Endpoint const& endpoint);
    void Send(Socket const& socket, std::span<std::byte const> datagram, sockaddr_in const& to) const;
    void TickIfDue();
    bool Tick(VirtualController& controller);
    void Deliver(VirtualController& controller);
    void AddIfActive(VirtualController& controller);

    std::vector<std::unique_ptr<VirtualController>> controllers_;
    std::unordered_map<VirtualController const*, Sockets> sockets_;
    std::vector<std::unique_ptr<Endpoint>> endpoints_;
    std::vector<VirtualController*> active_; ///< controllers that need Tick or TakeDeliveries
    Observer observer_;
    Recorder recorder_;
    Descriptor epoll_;
    Descriptor wake_;
    std::string error_;
    Reply reply_;
    std::array<std::byte, 2048> buffer_{};
    std::atomic<bool> stopping_ = false;
    std::atomic<bool> changed_ = false; ///< another thread has changed a controller
    std::chrono::steady_clock::time_point nextTick_;
    std::thread thread_;
};

} // namespace harvlink::simulator
