#include "wire/HostName.h"

#include <algorithm>
#include <future>
#include <string_view>
#include <thread>

#include "system/Endpoint.h"
#include "system/NameService.h"
#include "wire/UdpTransport.h"

namespace harvlink {
namespace {

constexpr std::size_t longestLabel = 63;

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

bool IsOfLabel(char character) {
    return IsDigit(character) || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           character == '-' || character == '_';
}

/// The system takes 127.1 and 127.0x1 for addresses.
bool IsNumber(std::string_view label) {
    bool const isHexadecimal = label.starts_with("0x") || label.starts_with("0X");
    return std::ranges::all_of(isHexadecimal ? label.substr(2) : label, [&](char character) {
        return IsDigit(character) ||
               (isHexadecimal && ((character >= 'a' && character <= 'f') || (character >= 'A' && character <= 'F')));
    });
}

StatusInfo NotResolved(std::string const& name, std::string const& why) {
    return StatusInformation(ErrorStatusCodes::NameNotResolved,
                             "The name " + name + " could not be resolved: " + why + ".");
}

} // namespace

bool IsHostName(std::string const& text) {
    std::string_view rest = text;
    std::string_view label;
    if (rest.ends_with('.')) {
        rest.remove_suffix(1);
    }
    do {
        label = rest.substr(0, rest.find('.'));
        if (label.empty() || label.size() > longestLabel || !std::ranges::all_of(label, IsOfLabel)) {
            return false;
        }
        rest.remove_prefix(std::min(label.size() + 1, rest.size()));
    } while (!rest.empty());
    return !IsNumber(label);
}

HostAddress LookUp(std::string const& name) {
    NameAnswer const answer = AskNameService(name);
    if (!answer.failure.empty()) {
        return {"", answer.failure};
    }
    for (std::uint32_t const each : answer.addresses) {
        if (auto address = AddressText(each); UdpTransport::IsHostAddress(address)) {
            return {std::move(address), ""};
        }
    }
    return {"", "its address is not that of a host"};
}

StatusInfo ResolveHost(std::string& host, std::chrono::milliseconds limit, HostAddress (*lookUp)(std::string const&)) {
    if (UdpTransport::IsHostAddress(host)) {
        return StatusInformation(ErrorStatusCodes::Ok);
    }
    // Nothing ends a lookup early. One that takes too long is left to itself and owns all that it touches; its code stays
    // loaded.
    StayLoaded();
    std::packaged_task<HostAddress(std::string const&)> task(lookUp);
    auto answer = task.get_future();
    std::thread([name = host, task = std::move(task)]() mutable { task(name); }).detach();
    if (answer.wait_for(limit) != std::future_status::ready) {
        return NotResolved(host, "no answer within " + std::to_string(limit.count()) + " ms");
    }
    auto found = answer.get();
    if (found.address.empty()) {
        return NotResolved(host, found.failure);
    }
    host = std::move(found.address);
    return StatusInformation(ErrorStatusCodes::Ok);
}

} // namespace harvlink
