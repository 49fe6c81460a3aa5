#include "recording/store/Schema.h"

#include <algorithm>

#include <fmt/format.h>

#include "words/text/Path.h"

namespace harvlink::recording {

using words::TextOf;

namespace {

constexpr char const* Tables = R"sql(
CREATE TABLE controllers(
    id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, address TEXT NOT NULL,
    encoding TEXT NOT NULL DEFAULT 'utf-8');
CREATE TABLE blocks(
    id INTEGER PRIMARY KEY, controller INTEGER NOT NULL REFERENCES controllers(id), width INTEGER NOT NULL);
CREATE TABLE readings(
    id INTEGER PRIMARY KEY, controller INTEGER NOT NULL REFERENCES controllers(id), name TEXT NOT NULL,
    kind TEXT NOT NULL, number INTEGER NOT NULL, control_group INTEGER NOT NULL, coordinate INTEGER NOT NULL,
    tool INTEGER NOT NULL, user_frame INTEGER NOT NULL, axis INTEGER NOT NULL, detail INTEGER NOT NULL,
    block INTEGER NOT NULL REFERENCES blocks(id), slot INTEGER NOT NULL, UNIQUE(controller, name));
CREATE TABLE items(
    id INTEGER PRIMARY KEY, reading INTEGER NOT NULL REFERENCES readings(id), name TEXT NOT NULL,
    field TEXT NOT NULL, kind TEXT NOT NULL, unit TEXT NOT NULL, type INTEGER NOT NULL, divisor INTEGER NOT NULL,
    block INTEGER NOT NULL, slot INTEGER NOT NULL, reading_slot INTEGER NOT NULL, UNIQUE(block, slot));
CREATE INDEX items_of_reading ON items(reading);
CREATE TABLE segments(
    id INTEGER PRIMARY KEY, first_sequence INTEGER NOT NULL, last_sequence INTEGER NOT NULL,
    begin_us INTEGER NOT NULL, end_us INTEGER NOT NULL, begin_monotonic_us INTEGER NOT NULL,
    end_monotonic_us INTEGER NOT NULL, samples INTEGER NOT NULL, item_values INTEGER NOT NULL, events INTEGER NOT NULL,
    gaps INTEGER NOT NULL, missing INTEGER NOT NULL);
CREATE TABLE events(
    sequence INTEGER PRIMARY KEY, utc_us INTEGER NOT NULL, monotonic_us INTEGER NOT NULL,
    controller INTEGER NOT NULL REFERENCES controllers(id), kind TEXT NOT NULL, before INTEGER NOT NULL,
    after INTEGER NOT NULL, code INTEGER NOT NULL, text TEXT NOT NULL, card TEXT NOT NULL);
CREATE TABLE gaps(
    sequence INTEGER PRIMARY KEY, utc_us INTEGER NOT NULL, monotonic_us INTEGER NOT NULL,
    duration_us INTEGER NOT NULL, count INTEGER NOT NULL, reason TEXT NOT NULL);
)sql";

std::string Columns(char letter, int width) {
    std::string columns;
    for (int place = 0; place < width; ++place) {
        columns += fmt::format(", {}{}", letter, place);
    }
    return columns;
}

std::string FrameTableSql(int width) {
    return fmt::format("CREATE TABLE {}(sequence INTEGER PRIMARY KEY, block INTEGER NOT NULL, utc_us INTEGER NOT NULL, "
                       "monotonic_us INTEGER NOT NULL, round_trip_us INTEGER NOT NULL, picture INTEGER NOT NULL, "
                       "reading INTEGER, quality INTEGER NOT NULL, code INTEGER NOT NULL{}{});",
                       FrameTable(width), Columns('v', width), Columns('t', width));
}

std::string Choice(std::string_view slot, char letter, int width) {
    std::string cases = fmt::format("CASE {}", slot);
    for (int place = 0; place < width; ++place) {
        cases += fmt::format(" WHEN {0} THEN f.{1}{0}", place, letter);
    }
    return cases + " END";
}

/// The values of the rows of one table, one for each item.
std::string ValuesSql(int width) {
    return fmt::format(
        "SELECT f.sequence, f.utc_us, f.monotonic_us, f.round_trip_us, f.picture, f.quality, f.code, i.id AS item, "
        "i.type, i.divisor, {} AS v, {} AS t FROM {} AS f JOIN items AS i ON i.block = f.block "
        "WHERE (f.reading IS NULL OR f.reading = i.reading) AND (v IS NOT NULL OR f.quality <> 0)",
        Choice("i.slot", 'v', width), Choice("i.reading_slot", 't', width), FrameTable(width));
}

constexpr char const* Iso =
    "strftime('%Y-%m-%dT%H:%M:%S', {0} / 1000000, 'unixepoch') || printf('.%06dZ', {0} % 1000000)";

std::string ViewsSql() {
    std::string values;
    for (int const width : FrameWidths) {
        values += (values.empty() ? "" : " UNION ALL ") + ValuesSql(width);
    }
    std::string const request = fmt::format("utc_us + coalesce(t >> {}, 0)", RoundTripBits);
    std::string const round =
        fmt::format("CASE WHEN t IS NULL THEN round_trip_us ELSE t & {} END", (1 << RoundTripBits) - 1);
    std::string sql = fmt::format(
        "CREATE VIEW item_values AS SELECT sequence, item, picture, quality, code, {0} AS request_us, "
        "{0} + {1} AS answer_us, monotonic_us + ({0} - utc_us) + ({1}) - round_trip_us AS monotonic_us, "
        "CASE WHEN type = 1 AND typeof(v) = 'integer' THEN v * 1.0 / divisor ELSE v END AS value FROM ({2});",
        request, round, values);
    sql += "CREATE VIEW samples AS SELECT s.sequence, c.name AS controller, i.name AS item, i.unit, i.kind, s.value, "
           "s.quality, s.code, s.answer_us AS utc_us, s.monotonic_us, s.request_us, s.answer_us, s.picture, " +
           fmt::format(fmt::runtime(Iso), "s.answer_us") +
           " AS time FROM item_values AS s JOIN items AS i ON i.id = s.item JOIN readings AS r ON r.id = i.reading "
           "JOIN controllers AS c ON c.id = r.controller;";
    sql +=
        "CREATE VIEW history AS SELECT e.sequence, " + fmt::format(fmt::runtime(Iso), "e.utc_us") +
        " AS time, e.utc_us, e.monotonic_us, c.name AS controller, e.kind, e.before, e.after, e.code, e.text, e.card "
        "FROM events AS e JOIN controllers AS c ON c.id = e.controller UNION ALL SELECT sequence, " +
        fmt::format(fmt::runtime(Iso), "utc_us") +
        ", utc_us, monotonic_us, '', 'gap', 0, count, 0, reason, duration_us || ' us' FROM gaps;";
    sql += "CREATE VIEW alarms AS SELECT * FROM history WHERE kind IN ('alarm-raised', 'alarm-cleared');";
    return sql;
}

} // namespace

int FrameWidthFor(std::size_t values) {
    auto const found = std::find_if(FrameWidths.begin(), FrameWidths.end(),
                                    [&](int width) { return values <= static_cast<std::size_t>(width); });
    return found == FrameWidths.end() ? FrameWidths.back() : *found;
}

std::string FrameTable(int width) {
    return fmt::format("frames_{}", width);
}

bool HasEncodings(Database& database) {
    return database.Number("SELECT count(*) FROM pragma_table_info('controllers') WHERE name = 'encoding'") != 0;
}

void PrepareSchema(Database& database) {
    if (database.Number("SELECT count(*) FROM sqlite_schema") != 0) {
        CheckSchema(database);
        if (!HasEncodings(database)) {
            database.Run("ALTER TABLE controllers ADD COLUMN encoding TEXT NOT NULL DEFAULT 'utf-8'");
        }
        return;
    }
    std::string sql = "BEGIN IMMEDIATE;";
    sql += Tables;
    for (int const width : FrameWidths) {
        sql += FrameTableSql(width);
    }
    sql += ViewsSql();
    sql += fmt::format("PRAGMA application_id = {}; PRAGMA user_version = {}; COMMIT;", ApplicationId, SchemaVersion);
    database.Run(sql);
}

void CheckSchema(Database& database) {
    if (database.Number("PRAGMA application_id") != ApplicationId) {
        throw RecordingError(fmt::format("{}: this is not a recording", TextOf(database.Path())));
    }
    auto const version = database.Number("PRAGMA user_version");
    if (version > SchemaVersion) {
        throw RecordingError(fmt::format("{}: the recording has version {} of the schema, this program reads up to "
                                         "version {}. Use a newer program",
                                         TextOf(database.Path()), version, SchemaVersion));
    }
    if (version < 1) {
        throw RecordingError(
            fmt::format("{}: version {} of the schema does not exist", TextOf(database.Path()), version));
    }
}

} // namespace harvlink::recording
