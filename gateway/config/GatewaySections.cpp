#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>

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

/// By which a reload sees a renewed certificate or token, whose file has the same name.
std::size_t HashOf(std::initializer_list<std::filesystem::path> files) {
    constexpr std::streamsize Most = 1 << 20;
    std::string all;
    for (std::filesystem::path const& file : files) {
        std::ifstream stream(file, std::ios::binary);
        std::string content(Most, '\0');
        stream.read(content.data(), Most);
        all.append(content, 0, static_cast<std::size_t>(stream.gcount())).push_back('\0');
    }
    return std::hash<std::string>()(all);
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

/// The item of a poll. What no controller has is told at its own line; what a generation does not have, at the controller.
FleetItem Item(std::string const& text) {
    FleetItem const item = ParseItem(text);
    Fleet fleet({.queueCapacity = 2, .eventCapacity = 2});
    StatusInfo const status = fleet.Add("any", {.address = "127.0.0.1"}, {{.items = {item}}});
    if (status.StatusCode != 0) {
        std::size_t const start = status.Message.find("item \""); // before it the name of the controller
        throw InputError(start == std::string::npos ? status.Message : status.Message.substr(start));
    }
    return item;
}

/// What a dead band is for. Signals of a group are a number only in the way in which they are read.
bool IsNumber(FleetItemKind kind) {
    using enum FleetItemKind;
    constexpr std::array Others{State, Job, Alarms, StringVariable, Signal, SignalGroup, OperatingTime, Software};
    return std::find(Others.begin(), Others.end(), kind) == Others.end();
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
    listen.files = HashOf({listen.certificate, listen.key, listen.tokenFile});
    section.Flag("open", listen.isOpen);
    section.Texts("hosts", [&](std::string const& host) {
        if (host.empty() || host.find_first_of(" /") != std::string::npos) {
            throw InputError(fmt::format("'{}' is not the name of a host such as gateway.plant.example", host));
        }
        listen.hosts.push_back(host);
    });
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
    section.Texts("items", [&](std::string const& text) { group.items.push_back(Item(text)); });
    section.Flag("on_change", group.onChange);
    section.Duration("longest_silence", milliseconds(0), hours(24),
                     [&](auto time) { group.longestSilence = std::chrono::duration_cast<milliseconds>(time); });
    double deadBand = 0.0;
    section.Real("dead_band", 0.0, 1e12, deadBand);
    if (deadBand > 0.0 && !group.onChange) {
        section.Refuse("dead_band", "takes on_change = true");
    }
    for (FleetItem& item : group.items) {
        item.deadBand = IsNumber(item.kind) ? deadBand : 0.0;
    }
    if (section.Has("items") && group.items.empty()) {
        section.Refuse("items", "has no item that can be read");
    }
    section.Finish();
    return poll;
}

} // namespace harvlink::gateway
