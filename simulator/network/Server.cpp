#include "simulator/network/Server.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace harvlink::simulator {

namespace {

constexpr auto TickPeriod = std::chrono::milliseconds(1);
constexpr int MaxEvents = 64;

/// The address above the port, both in network order.
std::uint64_t PeerOf(sockaddr_in const& from) {
    return std::uint64_t{from.sin_addr.s_addr} << 16U | from.sin_port;
}

sockaddr_in AddressOf(std::uint64_t peer) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = static_cast<in_addr_t>(peer >> 16U);
    address.sin_port = static_cast<in_port_t>(peer & 0xFFFFU);
    return address;
}

} // namespace

Server::Server() : wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

Server::~Server() {
    Stop();
}

VirtualController& Server::Add(std::string const& address, ControllerOptions const& options) {
    auto& controller = *controllers_.emplace_back(std::make_unique<VirtualController>(address, options));
    controller.SetChangeListener([this] {
        changed_ = true;
        Wake();
    });
    return controller;
}

bool Server::Start() {
    if (!BindAll()) {
        CloseAll();
        return false;
    }
    stopping_ = false;
    changed_ = true;
    thread_ = std::thread([this] { Run(); });
    return true;
}

void Server::Stop() {
    if (thread_.joinable()) {
        stopping_ = true;
        Wake();
        thread_.join();
    }
    CloseAll();
}

void Server::CloseAll() {
    endpoints_.clear();
    sockets_.clear();
    active_.clear();
}

bool Server::BindAll() {
    error_.clear();
    epoll_ = Descriptor(epoll_create1(EPOLL_CLOEXEC));
    Watch(wake_.Get(), nullptr);
    return std::ranges::all_of(controllers_, [this](auto const& controller) {
        auto& sockets = sockets_[controller.get()];
        return Bind(*controller, Port::Robot, sockets) && Bind(*controller, Port::File, sockets);
    });
}

bool Server::Bind(VirtualController& controller, Port port, Sockets& sockets) {
    auto const number = static_cast<std::uint16_t>(port);
    auto socket = Socket::Bind(controller.Address(), number);
    if (!socket.IsOpen()) {
        error_ = "can't bind " + controller.Address() + ":" + std::to_string(number) + ": " + std::strerror(errno);
        return false;
    }
    (port == Port::Robot ? sockets.robot : sockets.file) = std::move(socket);
    auto& endpoint = *endpoints_.emplace_back(std::make_unique<Endpoint>(Endpoint{&controller, port, &sockets}));
    Watch(endpoint.Own().Get(), &endpoint);
    return true;
}

void Server::Watch(int descriptor, void* tag) const {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = tag;
    epoll_ctl(epoll_.Get(), EPOLL_CTL_ADD, descriptor, &event);
}

void Server::Wake() const {
    std::uint64_t const one = 1;
    [[maybe_unused]] ssize_t const written = write(wake_.Get(), &one, sizeof(one));
}

void Server::Run() {
    std::array<epoll_event, MaxEvents> events{};
    while (!stopping_) {
        int const timeout = active_.empty() ? -1 : static_cast<int>(TickPeriod.count());
        int const count = epoll_wait(epoll_.Get(), events.data(), MaxEvents, timeout);
        for (int i = 0; i < count; ++i) {
            auto const* const tag = events[static_cast<std::size_t>(i)].data.ptr;
            if (tag == nullptr) {
                HandleWake();
            } else {
                Answer(*static_cast<Endpoint const*>(tag));
            }
        }
        TickIfDue();
    }
}

void Server::HandleWake() {
    std::uint64_t count = 0;
    [[maybe_unused]] ssize_t const taken = read(wake_.Get(), &count, sizeof(count));
    if (changed_.exchange(false)) {
        for (auto const& controller : controllers_) {
            AddIfActive(*controller);
        }
    }
}

void Server::Answer(Endpoint const& endpoint) {
    sockaddr_in from{};
    auto const length = endpoint.Own().Receive(buffer_, from);
    if (length < 0) {
        return;
    }
    auto& controller = *endpoint.controller;
    auto const datagram = std::span<std::byte const>(buffer_).first(static_cast<std::size_t>(length));
    if (recorder_) {
        recorder_(from, endpoint.Own().Address(), datagram);
    }
    auto const* const request = controller.Handle(endpoint.port, PeerOf(from), datagram, reply_);
    if (request == nullptr) {
        return;
    }
    if (!reply_.IsSuppressed()) {
        Send(endpoint.Own(), reply_.Bytes(), from);
    }
    if (observer_) {
        observer_(controller, *request, reply_);
    }
    if (controller.IsActive()) {
        Deliver(controller);
    }
    AddIfActive(controller);
}

void Server::Send(Socket const& socket, std::span<std::byte const> datagram, sockaddr_in const& to) const {
    socket.Send(datagram, to);
    if (recorder_) {
        recorder_(socket.Address(), to, datagram);
    }
}

void Server::Deliver(VirtualController& controller) {
    for (auto const& delivery : controller.TakeDeliveries()) {
        auto& sockets = sockets_.at(&controller);
        if (delivery.source == Delivery::Source::UnknownPort && !sockets.unknown.IsOpen()) {
            sockets.unknown = Socket::Bind(controller.Address(), 0);
        }
        auto const& socket = delivery.source == Delivery::Source::RobotPort  ? sockets.robot
                             : delivery.source == Delivery::Source::FilePort ? sockets.file
                                                                             : sockets.unknown;
        Send(socket, delivery.bytes, AddressOf(delivery.peer));
    }
}

bool Server::Tick(VirtualController& controller) {
    bool const goesOn = controller.Tick();
    if (goesOn) {
        Deliver(controller);
    }
    return goesOn;
}

void Server::AddIfActive(VirtualController& controller) {
    if (controller.IsActive() && std::ranges::find(active_, &controller) == active_.end()) {
        active_.push_back(&controller);
    }
}

void Server::TickIfDue() {
    if (active_.empty()) {
        return;
    }
    auto const now = std::chrono::steady_clock::now();
    if (now < nextTick_) {
        return;
    }
    nextTick_ = now + TickPeriod;
    std::erase_if(active_, [this](VirtualController* controller) { return !Tick(*controller); });
}

} // namespace harvlink::simulator
