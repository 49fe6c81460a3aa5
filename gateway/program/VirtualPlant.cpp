#include "gateway/program/VirtualPlant.h"

#include <fmt/format.h>

#include "gateway/config/ConfigError.h"
#include "simulator/arm/ArmGeometry.h"
#include "simulator/control/ControlCommands.h"

namespace harvlink::gateway {

namespace {

using words::Json;

constexpr unsigned FirstBlock = 60; ///< of 127.60.0.0
constexpr unsigned Blocks = 40;
constexpr unsigned HostsOfNet = 250;
constexpr unsigned EachThird = 3; ///< runs a job and stands still

/// In automatic mode, ready to move; with a job that counts if it does not.
void SetToWork(simulator::VirtualController& controller, unsigned number, bool moves) {
    controller.WithParts([&](simulator::ControllerParts& parts) {
        parts.model.SetMode(simulator::Mode::Remote);
        parts.model.SetServo(true);
        parts.model.SetCycle(CycleMode::Automatic);
        parts.model.registers[0] = static_cast<std::uint16_t>(number);
        constexpr unsigned EachFourth = 4; // has a job that calls another one: more would hide all other events
        if (moves) {
            return; // a job would hold the arm
        }
        if (parts.jobs.Select(number % EachFourth == 0 ? "DEMO" : "PICK", 0) == simulator::Refusal::None) {
            parts.jobs.Start();
        }
    });
}

/// From 1 on.
std::string NameOf(std::size_t number) {
    return fmt::format("robot{}", number);
}

FleetGroup Group(std::chrono::milliseconds period, std::vector<FleetItem> items) {
    FleetGroup group;
    group.period = period;
    group.items = std::move(items);
    return group;
}

GeometryConfig StandardGeometry() {
    simulator::ArmGeometry const& arm = simulator::StandardArm;
    return {"R1",        arm.shoulderHeight, arm.shoulderOffset, arm.upperArm, arm.elbowOffset,
            arm.forearm, arm.hand,           arm.pulsesPerDegree};
}

/// The words of the control command that a change stands for; empty if it is none.
std::vector<std::string> CommandOf(std::string const& key, Json const& value) {
    auto const onOff = [](Json const& on) { return std::string(on.get<bool>() ? "on" : "off"); };
    if (key == "alarm" && value.is_number_unsigned()) {
        return {"alarm", std::to_string(value.get<std::uint64_t>()), "0", "Raised by hand"};
    }
    if (key == "reset" && value == true) {
        return {"reset"};
    }
    if ((key == "hold" || key == "servo") && value.is_boolean()) {
        return {key, onOff(value)};
    }
    if (key == "mode" && value.is_string()) {
        return {"mode", value.get<std::string>()};
    }
    if (key == "signal" && value.is_array() && value.size() == 2 && value[0].is_number_unsigned() &&
        value[1].is_boolean()) {
        return {"signal", std::to_string(value[0].get<std::uint64_t>()), onOff(value[1])};
    }
    if (key == "fault" && value.is_string()) {
        std::string const text = value.get<std::string>();
        return {"faults", text.empty() ? "none" : text};
    }
    return {};
}

} // namespace

VirtualPlant::VirtualPlant(unsigned count) {
    for (unsigned attempt = 0; attempt < Blocks; ++attempt) {
        if (Start(FirstBlock + attempt, count)) {
            return;
        }
    }
    throw ConfigError({fmt::format("can't start {} virtual controllers: {}", count, server_->Error())});
}

VirtualPlant::~VirtualPlant() {
    {
        std::scoped_lock const lock(mutex_);
        isEnding_ = true;
    }
    ends_.notify_all();
    if (mover_.joinable()) {
        mover_.join();
    }
    server_->Stop();
}

bool VirtualPlant::Start(unsigned block, unsigned count) {
    controllers_.clear();
    server_ = std::make_unique<simulator::Server>();
    for (unsigned i = 0; i < count; ++i) {
        std::string const address = fmt::format("127.{}.{}.{}", block, i / HostsOfNet, 1 + i % HostsOfNet);
        controllers_[NameOf(i + 1)] = &server_->Add(address, options_);
    }
    if (!server_->Start()) {
        return false; // somebody has one of the addresses; the next block may be free
    }
    unsigned number = 0;
    for (auto const& [name, controller] : controllers_) {
        bool const moves = number % EachThird != EachThird - 1;
        SetToWork(*controller, number, moves);
        if (moves) {
            tours_.emplace_back(controller, simulator::Tour(number));
        }
        ++number;
    }
    mover_ = std::thread([this] { KeepMoving(); });
    return true;
}

void VirtualPlant::KeepMoving() {
    std::unique_lock lock(mutex_);
    do {
        for (auto& tour : tours_) {
            tour.first->WithParts([&](simulator::ControllerParts& parts) { tour.second.Feed(parts); });
        }
    } while (!ends_.wait_for(lock, std::chrono::seconds(1), [&] { return isEnding_; }));
}

void VirtualPlant::AddTo(Config& config) const {
    std::vector<std::string> addresses;
    for (std::size_t i = 1; i <= controllers_.size(); ++i) {
        addresses.push_back(controllers_.at(NameOf(i))->Address());
    }
    Watch(config, addresses);
}

void VirtualPlant::Watch(Config& config, std::vector<std::string> const& addresses) {
    using std::chrono::milliseconds;
    FleetItem const inBase = FleetItem::Position(ControlGroupId::R1, CoordinateType::BaseCoordinate);
    FleetItem const counter = FleetItem::Variable(FleetItemKind::IntegerVariable, 0);
    FleetItem const total = FleetItem::Variable(FleetItemKind::DoubleIntVariable, 0);
    config.polls = {{"state", Group(milliseconds(200), {FleetItem::State(), FleetItem::Job(), FleetItem::Alarms()})},
                    {"arm", Group(milliseconds(100), {FleetItem::Position(ControlGroupId::R1), inBase})},
                    {"work", Group(milliseconds(500),
                                   {FleetItem::Torque(ControlGroupId::R1), FleetItem::PositionError(ControlGroupId::R1),
                                    counter, total, FleetItem::Signal(10010, 4), FleetItem::Signal(20010, 4)})},
                    {"rare", Group(milliseconds(60'000), {FleetItem::Software()})}};
    config.controllers.clear();
    for (std::string const& address : addresses) {
        ControllerConfig controller;
        controller.name = NameOf(config.controllers.size() + 1);
        controller.options.address = address;
        controller.polls = {"state", "arm", "work", "rare"};
        controller.geometry = StandardGeometry();
        config.controllers.push_back(std::move(controller));
    }
}

Response VirtualPlant::Change(std::string const& controller, Json const& body) {
    auto const found = controllers_.find(controller);
    if (found == controllers_.end()) {
        return ErrorResponse(404, fmt::format("there is no virtual controller '{}'", controller));
    }
    for (auto const& [key, value] : body.items()) {
        std::vector<std::string> const command = CommandOf(key, value);
        if (command.empty()) {
            return ErrorResponse(400,
                                 fmt::format("'{}' is not a change; there are: {{\"alarm\":4107}}, {{\"reset\":true}}, "
                                             "{{\"hold\":true}}, {{\"servo\":true}}, {{\"mode\":\"teach\"}}, "
                                             "{{\"signal\":[20010,true]}}, {{\"fault\":\"silence=100%\"}}",
                                             key));
        }
        try {
            simulator::RunControlCommand(*found->second, options_, command);
        } catch (std::runtime_error const& error) {
            return ErrorResponse(400, error.what());
        }
    }
    return JsonResponse({{"changed", controller}});
}

} // namespace harvlink::gateway
