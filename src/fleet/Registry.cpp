#include "fleet/Registry.h"

#include <algorithm>

namespace harvlink::fleet {
namespace {

template <typename Matches>
Registry::Record FindIf(std::vector<Registry::Record> const& records, Matches const& matches) {
    auto const found = std::ranges::find_if(records, matches);
    return found != records.end() ? *found : nullptr;
}

} // namespace

Registry::Record Registry::Find(std::string const& name) const {
    std::scoped_lock const lock(mutex);
    return FindIf(records, [&](Record const& record) { return record->name == name; });
}

Registry::Record Registry::FindAddress(std::uint32_t address) const {
    std::scoped_lock const lock(mutex);
    return FindIf(records, [&](Record const& record) { return record->endpoint.address == address; });
}

Registry::Record Registry::Find(std::uint32_t id) const {
    std::scoped_lock const lock(mutex);
    auto const found = byId.find(id);
    return found != byId.end() ? found->second : nullptr;
}

std::vector<Registry::Record> Registry::All() const {
    std::scoped_lock const lock(mutex);
    return records;
}

std::uint32_t Registry::NewId() {
    std::scoped_lock const lock(mutex);
    return ++lastId;
}

void Registry::Replace(Record const& old, Record const& fresh) {
    std::scoped_lock const lock(mutex);
    if (fresh) {
        records.reserve(records.size() + 1); // what may fail comes first
        byId.emplace(fresh->id, fresh);
    }
    auto const place = old ? std::ranges::find(records, old) : records.end();
    if (place == records.end()) {
        records.push_back(fresh);
    } else if (fresh) {
        *place = fresh;
    } else {
        records.erase(place);
    }
    if (old) {
        byId.erase(old->id);
    }
}

} // namespace harvlink::fleet
