#include "recording/write/Layout.h"

#include <algorithm>

#include <fmt/format.h>

#include "recording/store/Schema.h"

namespace harvlink::recording {

namespace {

bool IsSameReading(RecordedReading const& left, RecordedReading const& right) {
    return left.kind == right.kind && left.index == right.index && left.group == right.group &&
           left.coordinate == right.coordinate && left.tool == right.tool && left.user == right.user &&
           left.axis == right.axis && left.detail == right.detail && left.items == right.items;
}

} // namespace

Layout::Layout(Database& database) : database_(database) {
    Catalogue catalogue(database);
    controllers_ = std::move(catalogue.controllers);
    readings_ = std::move(catalogue.readings);
    blocks_ = std::move(catalogue.blocks);
    places_ = std::move(catalogue.places);
    for (std::size_t i = 0; i < controllers_.size(); ++i) {
        controllerIds_[controllers_[i].name] = static_cast<std::uint32_t>(i + 1);
    }
    for (std::size_t i = 0; i < readings_.size(); ++i) {
        readingIds_[{readings_[i].controller, readings_[i].name}] = static_cast<std::uint32_t>(i + 1);
    }
    storedControllers_ = controllers_.size();
    storedReadings_ = readings_.size();
    storedBlocks_ = blocks_.size();
}

std::uint32_t Layout::AddController(RecordedController const& controller) {
    auto const [found, isNew] =
        controllerIds_.try_emplace(controller.name, static_cast<std::uint32_t>(controllers_.size() + 1));
    std::size_t const place = found->second - 1;
    if (isNew) {
        controllers_.push_back(controller);
    } else if (!(controllers_[place] == controller)) { // continued with another address or encoding
        controllers_[place] = controller;
        storedControllers_ = std::min(storedControllers_, place);
    }
    return found->second;
}

std::uint32_t Layout::AddReading(RecordedReading reading) {
    if (reading.controller == 0 || reading.controller > controllers_.size() || reading.items.empty() ||
        reading.items.size() > RecordedReading::MostItems) {
        throw RecordingError(fmt::format("the reading '{}' has no controller, or not 1 to {} items", reading.name,
                                         RecordedReading::MostItems));
    }
    std::string const name = reading.name;
    for (int number = 2;; ++number) {
        auto const [found, isNew] = readingIds_.try_emplace({reading.controller, reading.name},
                                                            static_cast<std::uint32_t>(readings_.size() + 1));
        if (isNew) {
            readings_.push_back(std::move(reading));
            places_.emplace_back();
            return found->second;
        }
        if (IsSameReading(readings_[found->second - 1], reading)) {
            return found->second;
        }
        reading.name = fmt::format("{} ({})", name, number);
    }
}

void Layout::Store() {
    if (IsStored()) {
        return;
    }
    PlaceNew();
    StoreControllers();
    Statement insert(database_, "INSERT INTO blocks VALUES(?, ?, ?)");
    for (; storedBlocks_ < blocks_.size(); ++storedBlocks_) {
        insert.Bind(0, static_cast<std::int64_t>(storedBlocks_ + 1));
        insert.Bind(1, std::int64_t{blocks_[storedBlocks_].controller});
        insert.Bind(2, std::int64_t{blocks_[storedBlocks_].width});
        insert.Run();
    }
    StoreReadings();
}

void Layout::PlaceNew() {
    std::map<std::uint32_t, std::vector<std::uint32_t>> open;
    std::map<std::uint32_t, std::size_t> used;
    for (std::size_t i = storedReadings_; i < readings_.size(); ++i) {
        auto const controller = readings_[i].controller;
        if (used[controller] + readings_[i].items.size() > RecordedReading::MostItems) {
            CloseBlock(open[controller], controller);
            used[controller] = 0;
        }
        open[controller].push_back(static_cast<std::uint32_t>(i + 1));
        used[controller] += readings_[i].items.size();
    }
    for (auto& [controller, members] : open) {
        CloseBlock(members, controller);
    }
}

void Layout::CloseBlock(std::vector<std::uint32_t>& members, std::uint32_t controller) {
    std::size_t slot = 0;
    auto const block = static_cast<std::uint32_t>(blocks_.size() + 1);
    for (std::uint32_t const reading : members) {
        places_[reading - 1] = {block, static_cast<int>(slot)};
        slot += readings_[reading - 1].items.size();
    }
    blocks_.push_back({controller, FrameWidthFor(slot)});
    members.clear();
}

void Layout::StoreControllers() {
    Statement insert(database_,
                     "INSERT INTO controllers(id, name, address, encoding) VALUES(?, ?, ?, ?) "
                     "ON CONFLICT(id) DO UPDATE SET address = excluded.address, encoding = excluded.encoding");
    for (; storedControllers_ < controllers_.size(); ++storedControllers_) {
        insert.Bind(0, static_cast<std::int64_t>(storedControllers_ + 1));
        insert.Bind(1, controllers_[storedControllers_].name);
        insert.Bind(2, controllers_[storedControllers_].address);
        insert.Bind(3, controllers_[storedControllers_].encoding);
        insert.Run();
    }
}

void Layout::StoreReadings() {
    Statement insert(database_, "INSERT INTO readings VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    Statement insertItem(database_, "INSERT INTO items VALUES(NULL, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (; storedReadings_ < readings_.size(); ++storedReadings_) {
        RecordedReading const& reading = readings_[storedReadings_];
        Place const& place = places_[storedReadings_];
        auto const id = static_cast<std::int64_t>(storedReadings_ + 1);
        insert.Bind(0, id);
        insert.Bind(1, std::int64_t{reading.controller});
        insert.Bind(2, reading.name);
        insert.Bind(3, reading.kind);
        int column = 4;
        for (std::int64_t const number :
             {std::int64_t{reading.index}, std::int64_t{reading.group}, std::int64_t{reading.coordinate},
              std::int64_t{reading.tool}, std::int64_t{reading.user}, std::int64_t{reading.axis},
              std::int64_t{reading.detail}, std::int64_t{place.block}, std::int64_t{place.slot}}) {
            insert.Bind(column++, number);
        }
        insert.Run();
        for (std::size_t i = 0; i < reading.items.size(); ++i) {
            RecordedItem const& item = reading.items[i];
            insertItem.Bind(0, id);
            insertItem.Bind(1, item.field.empty() ? reading.name : reading.name + "." + item.field);
            insertItem.Bind(2, item.field);
            insertItem.Bind(3, reading.kind);
            insertItem.Bind(4, item.unit);
            insertItem.Bind(5, static_cast<std::int64_t>(item.type));
            insertItem.Bind(6, item.divisor);
            insertItem.Bind(7, std::int64_t{place.block});
            insertItem.Bind(8, place.slot + static_cast<std::int64_t>(i));
            insertItem.Bind(9, std::int64_t{place.slot});
            insertItem.Run();
        }
    }
}

} // namespace harvlink::recording
