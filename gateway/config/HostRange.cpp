#include "gateway/config/HostRange.h"

#include <fmt/format.h>

#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

constexpr std::string_view Place = "{n}";
constexpr unsigned MostHosts = 10'000;

std::string Replace(std::string_view text, std::string const& number) {
    std::string replaced(text);
    for (std::size_t at = replaced.find(Place); at != std::string::npos; at = replaced.find(Place, at)) {
        replaced.replace(at, Place.size(), number);
        at += number.size();
    }
    return replaced;
}

} // namespace

std::vector<NamedHost> SpreadHosts(std::string_view name, std::string_view host) {
    std::size_t const open = host.find('[');
    bool const hasPlace = name.find(Place) != std::string_view::npos;
    if (open == std::string_view::npos) {
        if (hasPlace) {
            throw words::InputError("the name has {n}, but the host has no range such as 10.0.3.[1-60]");
        }
        return {{std::string(name), std::string(host)}};
    }
    std::size_t const close = host.find(']', open);
    std::string_view const range = host.substr(open + 1, close == std::string_view::npos ? 0 : close - open - 1);
    std::size_t const dash = range.find('-');
    if (dash == std::string_view::npos || host.find('[', open + 1) != std::string_view::npos) {
        throw words::InputError(fmt::format("'{}' has no range, or more than one; it is written 10.0.3.[1-60]", host));
    }
    auto const first = words::ParseNumber<unsigned>(range.substr(0, dash), "start of a range");
    auto const last = words::ParseNumber<unsigned>(range.substr(dash + 1), "end of a range");
    if (last < first || last - first >= MostHosts) {
        throw words::InputError(fmt::format("the range {} is empty, or has more than {} hosts", range, MostHosts));
    }
    if (!hasPlace) {
        throw words::InputError("the host is a range, so the name needs {n} for its number, such as press{n}");
    }
    std::size_t const width = range.front() == '0' ? dash : 0;
    // A part of an address has no leading zeros.
    bool const isAddress = host.find_first_not_of("0123456789.[]-") == std::string_view::npos;
    std::vector<NamedHost> hosts;
    for (unsigned number = first; number <= last; ++number) {
        std::string const digits = fmt::format("{:0{}}", number, width);
        hosts.push_back(
            {Replace(name, digits), fmt::format("{}{}{}", host.substr(0, open),
                                                isAddress ? std::to_string(number) : digits, host.substr(close + 1))});
    }
    return hosts;
}

} // namespace harvlink::gateway
