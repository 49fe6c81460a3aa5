#include <arpa/inet.h>
#include <fmt/format.h>

#include "gateway/config/ItemText.h"
#include "gateway/config/Sections.h"
#include "gateway/config/Token.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

using words::InputError;

constexpr std::array<words::Named<LogLevel>, 4> LogLevels{
    {{"error", LogLevel::Error}, {"warning", LogLevel::Warning}, {"info", LogLevel::Info}, {"debug", LogLevel::Debug}}};

bool IsAddress(int family, std::string const& text) {
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return inet_pton(family, text.c_str(), address.data()) == 1;
}

/// "127.0.0.1:9750", "[::1]:9750" or "9750".
void ParseListen(std::string const& text, ListenConfig& listen) {
    std::size_t const colon = text.rfind(':');
    std::string address = colon == std::string::npos ? listen.address : text.substr(0, colon);
    auto const port =
        words::ParseNumber<std::uint16_t>(colon == std::string::npos ? text : text.substr(colon + 1), "port");
    bool const isBracketed = address.size() > 2 && address.front() == '[' && address.back() == ']';
    if (isBracketed) {
        address = address.substr(1, address.size() - 2);
    }
    if (!IsAddress(isBracketed ? AF_INET6 : AF_INET, address)) {
        throw InputError(fmt::format("'{}' is not an address with a port, such as 127.0.0.1:9750 or [::1]:9750", text));
    }
    listen.address = address;
    listen.port = port;
}

void CheckListen(Section& section, ListenConfig const& listen) {
    if (listen.certificate.empty() != listen.key.empty()) {
        section.Refuse("tls_certificate", "TLS takes both tls_certificate and tls_key");
    }
    bool const isGuarded = !listen.key.empty() || !listen.tokenFile.empty() || listen.isOpen;
    if (!listen.IsLoopback() && !isGuarded) {
        section.Refuse("listen",
                       "others can reach this address: give tls_certificate and tls_key, or token_file, or say "
                       "open = true");
    }
}

} // namespace

void ReadGateway(Section& section, GatewayConfig& gateway) {
    ListenConfig& listen = gateway.listen;
    section.Text("name", [&](std::string const& text) {
        if (text.empty() || text.size() > 63) {
            throw InputError("a name has 1 to 63 bytes");
        }
        gateway.name = text;
    });
    section.Text("listen", [&](std::string const& text) { ParseListen(text, listen); });
    section.File("tls_certificate", listen.certificate);
    section.File("tls_key", listen.key);
    if (section.File("token_file", listen.tokenFile)) {
        section.Try("token_file", [&] { ReadToken(listen.tokenFile); });
    }
    section.Flag("open", listen.isOpen);
    section.Texts("hosts", [&](std::string const& host) { listen.hosts.push_back(words::LowerCase(host)); });
    section.Text("log_level", [&](std::string const& text) {
        gateway.logLevel = words::ParseName(LogLevels, text, "level of the log");
    });
    CheckListen(section, listen);
    section.Finish();
}

void ReadPrometheus(Section& section, PrometheusConfig& prometheus) {
    constexpr std::int64_t Most = 10'000'000;
    section.Flag("enabled", prometheus.isOn);
    section.Number("most_series", 1, Most,
                   [&](std::int64_t number) { prometheus.mostSeries = static_cast<std::size_t>(number); });
    section.Finish();
}

PollConfig ReadPoll(Section& section, std::string const& name) {
    using std::chrono::hours;
    using std::chrono::milliseconds;
    PollConfig poll{name, {}};
    FleetGroup& group = poll.group;
    section.Require("period");
    section.Require("items");
    section.Duration("period", milliseconds(1), hours(24), [&](auto period) { group.period = period; });
    section.Texts("items", [&](std::string const& text) { group.items.push_back(ParseItem(text)); });
    section.Flag("on_change", group.onChange);
    section.Duration("longest_silence", milliseconds(0), hours(24),
                     [&](auto time) { group.longestSilence = std::chrono::duration_cast<milliseconds>(time); });
    double deadBand = 0.0;
    section.Real("dead_band", 0.0, 1e12, deadBand);
    if (deadBand > 0.0 && !group.onChange) {
        section.Refuse("dead_band", "takes on_change = true");
    }
    for (FleetItem& item : group.items) {
        bool const isNumber = item.kind == FleetItemKind::Position || item.kind == FleetItemKind::Torque ||
                              item.kind == FleetItemKind::PositionError || item.kind == FleetItemKind::RealVariable ||
                              item.kind == FleetItemKind::TargetProgress;
        item.deadBand = isNumber ? deadBand : 0.0;
    }
    if (section.Has("items") && group.items.empty()) {
        section.Refuse("items", "has no item that can be read");
    }
    section.Finish();
    return poll;
}

} // namespace harvlink::gateway
