#include "words/values/SignalText.h"

#include <array>
#include <cctype>
#include <numeric>

#include <fmt/format.h>

#include "words/text/Text.h"

namespace harvlink::words {

namespace {

constexpr unsigned BitsOfGroup = 8;
constexpr unsigned HighestAddress = 99'999;
constexpr unsigned HighestGroup = 999;

constexpr std::array<Named<IOType>, 12> ClassNames{{{"general-input", IOType::GeneralInput},
                                                    {"general-output", IOType::GeneralOutput},
                                                    {"external-input", IOType::ExternalInput},
                                                    {"external-output", IOType::ExternalOutput},
                                                    {"network-input", IOType::NetworkInput},
                                                    {"network-output", IOType::NetworkOutput},
                                                    {"specific-input", IOType::SpecificInput},
                                                    {"specific-output", IOType::SpecificOutput},
                                                    {"interface-panel-input", IOType::InterfacePanelInput},
                                                    {"auxiliary-relay", IOType::AuxiliaryRelay},
                                                    {"robot-control-status", IOType::RobotControlStatus},
                                                    {"pseudo-input", IOType::PseudoInput}}};

constexpr std::array<Named<bool>, 6> OnOffNames{
    {{"on", true}, {"off", false}, {"1", true}, {"0", false}, {"true", true}, {"false", false}}};

} // namespace

SignalName ParseSignal(std::string_view text) {
    SignalName name{.text = std::string(text), .address = {}, .bit = {}};
    std::size_t const colon = text.find(':');
    if (colon == std::string_view::npos) {
        if (text.empty() || std::isdigit(static_cast<unsigned char>(text[0])) == 0) {
            throw InputError(fmt::format("'{}' is not a signal such as 10010 or general-output:1.0", text));
        }
        name.address = ParseNumber<unsigned>(text, "address of a signal");
        return name;
    }
    name.type = ParseName(ClassNames, text.substr(0, colon), "class of signals");
    std::string_view const place = text.substr(colon + 1);
    std::size_t const dot = place.find('.');
    name.group = ParseNumber<std::uint16_t>(place.substr(0, dot), "group number");
    if (dot != std::string_view::npos) {
        name.bit = ParseNumber<std::uint8_t>(place.substr(dot + 1), "bit number");
    }
    return name;
}

std::vector<SignalName> ParseSignalRange(std::string_view text) {
    std::size_t const dots = text.find("..");
    std::vector<SignalName> names{ParseSignal(text.substr(0, dots))};
    if (dots == std::string_view::npos) {
        return names;
    }
    SignalName const first = names.front();
    auto const last = ParseNumber<unsigned>(text.substr(dots + 2), "end of a range of signals");
    unsigned const start = first.address ? *first.address : first.bit ? *first.bit : first.group;
    unsigned const most = first.address ? HighestAddress : first.bit ? BitsOfGroup - 1 : HighestGroup;
    if (last < start || last > most) {
        throw InputError(fmt::format("'{}' is not a range of signals such as 10010..10017", text));
    }
    std::size_t const separator = first.text.find_last_of(":.");
    std::string const before = first.address ? "" : first.text.substr(0, separator + 1);
    for (unsigned number = start + 1; number <= last; ++number) {
        if (!first.address || number % 10 < BitsOfGroup) {
            names.push_back(ParseSignal(fmt::format("{}{}", before, number)));
        }
    }
    return names;
}

std::vector<std::uint16_t> ParseRegisterRange(std::string_view text) {
    std::size_t const dots = text.find("..");
    auto const number = [](std::string_view digits) { return ParseNumber<std::uint16_t>(digits, "register number"); };
    std::uint16_t const first = number(text.substr(0, dots));
    std::uint16_t const last = dots == std::string_view::npos ? first : number(text.substr(dots + 2));
    if (last < first) {
        throw InputError(fmt::format("'{}' is not a range of registers such as 0..9", text));
    }
    std::vector<std::uint16_t> registers(last - first + 1U);
    std::iota(registers.begin(), registers.end(), first);
    return registers;
}

StatusInfo ResolveSignals(IOInterface& io, SignalName const& name, std::vector<Signal>& signals) {
    if (name.address) {
        signals.push_back({name.text, *name.address});
        return {};
    }
    unsigned const first = name.bit.value_or(0);
    unsigned const last = name.bit ? first : BitsOfGroup - 1;
    StatusInfo status;
    for (unsigned bit = first; bit <= last && status.StatusCode == 0; ++bit) {
        unsigned const address =
            io.ConvertIOGroupToBitAddress(name.type, name.group, static_cast<unsigned char>(bit), status);
        signals.push_back({name.bit ? name.text : fmt::format("{}.{}", name.text, bit), address});
    }
    return status;
}

StatusInfo ResolveGroup(IOInterface& io, SignalName const& name, unsigned& address) {
    StatusInfo status;
    address = name.address ? *name.address : io.ConvertIOGroupToBitAddress(name.type, name.group, 0, status);
    return status;
}

bool ParseOnOff(std::string_view text) {
    return ParseName(OnOffNames, text, "state of a signal");
}

} // namespace harvlink::words
