#include "gateway/sparkplug/NodeStatistics.h"

namespace harvlink::gateway::sparkplug {

namespace {

double Number(std::uint64_t value) {
    return static_cast<double>(value);
}

bool IsConnected(SessionState state) {
    return state == SessionState::Subscribing || state == SessionState::AwaitingHost || state == SessionState::Born ||
           state == SessionState::Leaving;
}

void AddSession(std::vector<Figure>& figures, NodeStatistics const& node) {
    figures.push_back(
        {"harvlink_mqtt_connected", "1 if a broker has accepted the connection.", IsConnected(node.state) ? 1.0 : 0.0});
    figures.push_back({"harvlink_mqtt_born", "1 if births are published and data flows.",
                       node.state == SessionState::Born ? 1.0 : 0.0});
    figures.push_back(
        {"harvlink_mqtt_connections_total", "Connections that a broker accepted.", Number(node.connects)});
    figures.push_back(
        {"harvlink_mqtt_connections_lost_total", "Accepted connections that were lost.", Number(node.session.losses)});
    figures.push_back({"harvlink_mqtt_rebirths_total", "Births that a host commanded.", Number(node.session.rebirths)});
    figures.push_back({"harvlink_mqtt_rebirths_ignored_total", "Commands to be born again that came too soon.",
                       Number(node.session.ignoredRebirths)});
    figures.push_back({"harvlink_mqtt_commands_refused_total", "All other commands; this node only reads.",
                       Number(node.refusedCommands)});
}

void AddData(std::vector<Figure>& figures, NodeStatistics const& node) {
    std::string const sentHelp = "Values sent as Sparkplug data.";
    figures.push_back({"harvlink_mqtt_values_sent_total", sentHelp, Number(node.data.liveValues), {{"kind", "live"}}});
    figures.push_back(
        {"harvlink_mqtt_values_sent_total", sentHelp, Number(node.data.historicalValues), {{"kind", "historical"}}});
    figures.push_back({"harvlink_mqtt_device_births_total", "Births of devices.", Number(node.data.births)});
    figures.push_back({"harvlink_mqtt_device_deaths_total", "Deaths of devices.", Number(node.data.deaths)});
    figures.push_back({"harvlink_mqtt_stored_values_left_out_total",
                       "Stored values of controllers or metrics that are not configured any more.",
                       Number(node.data.leftOut)});
    figures.push_back({"harvlink_mqtt_json_dropped_total", "Plain topics that the broker did not take in time.",
                       Number(node.jsonDropped)});
}

void AddStore(std::vector<Figure>& figures, NodeStatistics const& node, std::uint64_t droppedBeforeStore) {
    figures.push_back({"harvlink_mqtt_store_waiting_samples", "Samples that wait to be sent as historical.",
                       Number(node.store.waiting)});
    figures.push_back({"harvlink_mqtt_store_bytes", "Size of the store.", Number(node.store.bytes)});
    figures.push_back(
        {"harvlink_mqtt_store_lasts_seconds",
         "Time until the store is full at the rate of the last minute, if the broker is away; 0: not known.",
         node.store.lastsSeconds});
    figures.push_back({"harvlink_mqtt_store_dropped_samples_total",
                       "Samples that left the store before they were sent, the oldest first.",
                       Number(node.store.dropped)});
    figures.push_back({"harvlink_mqtt_store_failed_samples_total", "Samples that could not be stored.",
                       Number(node.store.notStored + droppedBeforeStore)});
    figures.push_back(
        {"harvlink_mqtt_store_damaged_samples_total", "Stored samples whose bytes had changed.", Number(node.damaged)});
}

} // namespace

std::vector<Figure> FiguresOf(NodeStatistics const& statistics, std::uint64_t droppedBeforeStore) {
    std::vector<Figure> figures;
    AddSession(figures, statistics);
    AddData(figures, statistics);
    AddStore(figures, statistics, droppedBeforeStore);
    return figures;
}

} // namespace harvlink::gateway::sparkplug
