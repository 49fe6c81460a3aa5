#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace harvlink::gateway {

struct NamedHost {
    std::string name;
    std::string host;
};

/// Spreads out "10.0.3.[1-60]" with the name "press{n}", in which {n} stands for the number. "[01-60]" has numbers of two
/// digits. A host without a range gives one. Throws InputError.
std::vector<NamedHost> SpreadHosts(std::string_view name, std::string_view host);

} // namespace harvlink::gateway
