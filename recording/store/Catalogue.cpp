#include "recording/store/Catalogue.h"

#include <algorithm>

#include <fmt/format.h>

#include "recording/store/Schema.h"
#include "words/text/Path.h"

namespace harvlink::recording {

using words::TextOf;

namespace {

[[noreturn]] void Contradiction(Database const& database, char const* table) {
    throw RecordingError(
        fmt::format("{}: the file is damaged: its table {} contradicts itself", TextOf(database.Path()), table));
}

bool IsWidth(int width) {
    return std::find(FrameWidths.begin(), FrameWidths.end(), width) != FrameWidths.end();
}

std::int32_t Small(Statement const& statement, int column) {
    return static_cast<std::int32_t>(statement.Integer(column));
}

} // namespace

Catalogue::Catalogue(Database& database) {
    Statement controller(database, fmt::format("SELECT id, name, address, {} FROM controllers ORDER BY id",
                                               HasEncodings(database) ? "encoding" : "'utf-8'"));
    while (controller.Step()) {
        controllers.push_back({controller.Text(1), controller.Text(2), controller.Text(3)});
        if (controller.Integer(0) != static_cast<std::int64_t>(controllers.size())) {
            Contradiction(database, "controllers");
        }
    }
    Statement block(database, "SELECT id, controller, width FROM blocks ORDER BY id");
    while (block.Step()) {
        blocks.push_back({static_cast<std::uint32_t>(block.Integer(1)), Small(block, 2)});
        if (block.Integer(0) != static_cast<std::int64_t>(blocks.size()) || !IsWidth(blocks.back().width)) {
            Contradiction(database, "blocks");
        }
    }
    LoadReadings(database);
    LoadItems(database);
    Check(database);
}

void Catalogue::LoadReadings(Database& database) {
    Statement row(database, "SELECT id, controller, name, kind, number, control_group, coordinate, tool, user_frame, "
                            "axis, detail, block, slot FROM readings ORDER BY id");
    while (row.Step()) {
        RecordedReading reading;
        reading.controller = static_cast<std::uint32_t>(row.Integer(1));
        reading.name = row.Text(2);
        reading.kind = row.Text(3);
        reading.index = static_cast<std::uint32_t>(row.Integer(4));
        reading.group = Small(row, 5);
        reading.coordinate = Small(row, 6);
        reading.tool = Small(row, 7);
        reading.user = Small(row, 8);
        reading.axis = Small(row, 9);
        reading.detail = Small(row, 10);
        readings.push_back(std::move(reading));
        places.push_back({static_cast<std::uint32_t>(row.Integer(11)), Small(row, 12)});
        if (row.Integer(0) != static_cast<std::int64_t>(readings.size())) {
            Contradiction(database, "readings");
        }
    }
}

void Catalogue::LoadItems(Database& database) {
    Statement row(database, "SELECT reading, field, unit, type, divisor FROM items ORDER BY block, slot");
    while (row.Step()) {
        auto const reading = static_cast<std::size_t>(row.Integer(0));
        if (reading < 1 || reading > readings.size()) {
            Contradiction(database, "items");
        }
        auto const type = std::clamp<std::int64_t>(row.Integer(3), 0, static_cast<std::int64_t>(RecordedType::Truth));
        readings[reading - 1].items.push_back(
            {row.Text(1), row.Text(2), static_cast<RecordedType>(type), std::max<std::int64_t>(row.Integer(4), 1)});
    }
}

void Catalogue::Check(Database& database) const {
    for (std::size_t i = 0; i < readings.size(); ++i) {
        auto const& place = places[i];
        bool const isPlaced = place.block >= 1 && place.block <= blocks.size() && place.slot >= 0;
        if (!isPlaced || readings[i].controller < 1 || readings[i].controller > controllers.size() ||
            place.slot + static_cast<std::int64_t>(readings[i].items.size()) > blocks[place.block - 1].width) {
            Contradiction(database, "readings");
        }
    }
}

} // namespace harvlink::recording
