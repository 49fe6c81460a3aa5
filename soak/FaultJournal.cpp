#include "soak/FaultJournal.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include <nlohmann/json.hpp>

namespace harvlink::soak {

namespace {

/// In the order of Damage.
constexpr std::array<std::string_view, DamageCounts::Kinds> DamageNames{"flip-bits", "refuse", "silence", "restart"};

} // namespace

DamageCounts& DamageCounts::operator+=(DamageCounts const& other) {
    std::ranges::transform(hits, other.hits, hits.begin(), std::plus<>());
    return *this;
}

DamageCounts FaultJournal::Counts() {
    std::scoped_lock const lock(mutex_);
    file_.clear(); // the end that was reached before may not be the end any more
    for (std::string line; std::getline(file_, line);) {
        rest_ += line;
        if (file_.eof()) {
            break;
        }
        Take(rest_);
        rest_.clear();
    }
    return counts_;
}

void FaultJournal::Take(std::string const& line) {
    auto const entry = nlohmann::json::parse(line);
    for (auto const& fault : entry.at("faults")) {
        auto const name = fault.get<std::string>();
        auto const kind = static_cast<std::size_t>(std::ranges::find(DamageNames, name) - DamageNames.begin());
        if (kind < DamageNames.size()) {
            ++counts_.hits.at(kind);
        }
    }
}

} // namespace harvlink::soak
