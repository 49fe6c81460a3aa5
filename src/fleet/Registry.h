#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "fleet/ControllerRecord.h"

namespace harvlink::fleet {

/// The controllers of a fleet by name and by id. From any thread; the engine does not use it.
class Registry {
public:
    using Record = std::shared_ptr<ControllerRecord>;

    /// The controller that has the name, or watches the address; null if none does.
    /// @{
    Record Find(std::string const& name) const;
    Record FindAddress(std::uint32_t address) const;
    /// @}
    Record Find(std::uint32_t id) const;

    /// In the order in which they were added.
    std::vector<Record> All() const;

    std::uint32_t NewId();

    /// Puts one in the place of the other; either may be null.
    void Replace(Record const& old, Record const& fresh);

private:
    mutable std::mutex mutex;
    std::vector<Record> records;
    std::unordered_map<std::uint32_t, Record> byId;
    std::uint32_t lastId = 0;
};

} // namespace harvlink::fleet
