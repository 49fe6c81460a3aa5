#include "simulator/control/StateReport.h"

#include <array>
#include <string_view>

#include <nlohmann/json.hpp>

namespace harvlink::simulator {

namespace {

using Json = nlohmann::ordered_json;

Json ActiveAlarms(Alarms const& alarms) {
    auto list = Json::array();
    for (std::size_t place = 1; place <= Alarms::ActivePlaces; ++place) {
        if (auto const alarm = alarms.Active(place); alarm.code != 0) {
            list.push_back({{"code", std::uint32_t{alarm.code}}, {"subcode", std::uint32_t{alarm.subcode}}});
        }
    }
    return list;
}

Json StateOf(ControllerModel const& model) {
    constexpr std::array<std::string_view, 3> Modes{"teach", "play", "remote"};
    auto const& state = model.state;
    return {
        {"mode", Modes.at(static_cast<std::size_t>(state.mode))},
        {"servo", state.servoOn},
        {"running", model.IsRunning()},
        {"hold", {{"pendant", state.pendantHold}, {"external", state.externalHold}, {"command", state.commandHold}}},
        {"error", state.error},
        {"alarms", ActiveAlarms(model.alarms)},
        {"pendant", model.pendantText}};
}

} // namespace

std::string StateReport(VirtualController& controller) {
    Json report{{"address", controller.Address()}};
    report.update(controller.With([](ControllerModel const& model) { return StateOf(model); }));
    auto const traffic = controller.Traffic();
    report["requests"] = traffic.requests;
    report["refused"] = traffic.refused;
    report["faults"] = controller.WithFaults([](FaultInjector const& faults) {
        Json counts;
        for (std::size_t i = 0; i < FaultKinds; ++i) {
            auto const fault = static_cast<Fault>(i);
            counts[std::string(NameOf(fault))] = faults.Happened(fault);
        }
        return counts;
    });
    return report.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace harvlink::simulator
