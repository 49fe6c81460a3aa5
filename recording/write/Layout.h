#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "recording/model/Records.h"
#include "recording/store/Catalogue.h"

namespace harvlink::recording {

/// The controllers and readings of a file, and their places. Ids count from 1.
class Layout {
public:
    /// Takes over what the file has.
    explicit Layout(Database& database);

    /// The id of the controller, which is the one that the file has under its name if it has one.
    std::uint32_t AddController(RecordedController const& controller);

    /// The same for a reading. One that the file has under the same name, but with other contents, gets another name.
    std::uint32_t AddReading(RecordedReading reading);

    /// Gives places to readings that have none, and stores all that is new. Within a transaction.
    void Store();

    bool IsStored() const { return storedControllers_ == controllers_.size() && storedReadings_ == readings_.size(); }
    std::vector<RecordedController> const& Controllers() const { return controllers_; }
    std::vector<RecordedReading> const& Readings() const { return readings_; }
    Place const& PlaceOf(std::uint32_t reading) const { return places_[reading - 1]; }
    Block const& BlockOf(std::uint32_t block) const { return blocks_[block - 1]; }
    std::size_t BlockCount() const { return blocks_.size(); }

private:
    void PlaceNew();
    void CloseBlock(std::vector<std::uint32_t>& members, std::uint32_t controller);
    void StoreControllers();
    void StoreReadings();

    Database& database_;
    std::vector<RecordedController> controllers_;
    std::vector<RecordedReading> readings_;
    std::vector<Place> places_;
    std::vector<Block> blocks_;
    std::map<std::string, std::uint32_t> controllerIds_;
    std::map<std::pair<std::uint32_t, std::string>, std::uint32_t> readingIds_;
    std::size_t storedControllers_ = 0;
    std::size_t storedReadings_ = 0;
    std::size_t storedBlocks_ = 0;
};

} // namespace harvlink::recording
