#include "cli/snapshot/Folder.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/program/WholeFile.h"
#include "cli/snapshot/Manifest.h"
#include "words/text/Csv.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"
#include "words/values/SafeName.h"

namespace harvlink::cli::snapshot {

namespace {

namespace filesystem = std::filesystem;

constexpr char const* ManifestName = "snapshot.json";
constexpr char const* AttributesName = ".gitattributes";
// The lines of a job end in CR LF, and must still do so after it is restored.
constexpr char const* Attributes = "# Keeps git from changing line ends.\n* -text\n";

std::string TableFile(std::string_view section) {
    return fmt::format("{}.csv", section);
}

std::string TableText(TableKind const& kind, Entries const& table) {
    std::string text = fmt::format("{},{}\n", kind.name, kind.value);
    for (Entry const& entry : table) {
        text += fmt::format("{},{}\n", CsvCell(entry.name), CsvCell(entry.value));
    }
    return text;
}

Entries ReadTable(filesystem::path const& path) {
    std::vector<CsvRow> rows = ParseCsv(TextOf(path), ReadTextFile(TextOf(path)));
    if (rows.empty()) {
        throw InputError(fmt::format("{}:1: the header line is missing", TextOf(path)));
    }
    rows.erase(rows.begin());
    Entries table;
    ForEachRow(TextOf(path), rows, [&](CsvRow const& row) {
        if (row.cells.size() != 2) {
            throw InputError(fmt::format("{} cells instead of 2", row.cells.size()));
        }
        table.push_back({row.cells[0], row.cells[1]});
    });
    return table;
}

Json ParseJson(std::string const& text) {
    try {
        return Json::parse(text);
    } catch (Json::parse_error const& error) {
        auto const end = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
        throw InputError(
            fmt::format("{} is not valid JSON, near line {}", ManifestName, 1 + std::count(text.begin(), end, '\n')));
    }
}

void ReadFiles(filesystem::path const& folder, Snapshot& snapshot) {
    if (!filesystem::exists(folder)) {
        return; // git does not keep empty folders
    }
    for (auto const& entry : filesystem::directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            std::string const stored = TextOf(entry.path().filename());
            auto const longName = snapshot.longNames.find(stored);
            std::string const name = longName == snapshot.longNames.end() ? OriginalName(stored) : longName->second;
            snapshot.files[name] = ReadTextFile(TextOf(entry.path()));
        }
    }
}

} // namespace

void Write(Snapshot const& snapshot, filesystem::path const& folder) {
    for (TableKind const& kind : TableKinds) {
        auto const table = snapshot.tables.find(kind.section);
        if (table != snapshot.tables.end()) {
            WriteNewFile(folder / TableFile(kind.section), TableText(kind, table->second));
        }
    }
    if (snapshot.HasSection(FilesSection)) {
        filesystem::create_directory(folder / FilesSection);
    }
    for (auto const& [name, contents] : snapshot.files) {
        WriteNewFile(folder / FilesSection / SafeName(name), contents);
    }
    WriteNewFile(folder / AttributesName, Attributes);
    WriteNewFile(folder / ManifestName,
                 ManifestJson(snapshot).dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

Snapshot Read(filesystem::path const& folder) {
    filesystem::path const path = folder / ManifestName;
    if (!IsSnapshot(folder)) {
        throw InputError(fmt::format("{} is not a snapshot: it has no {}", TextOf(folder), ManifestName));
    }
    try {
        Snapshot snapshot = ParseManifest(ParseJson(ReadTextFile(TextOf(path))));
        for (auto& [section, table] : snapshot.tables) {
            table = ReadTable(folder / TableFile(section));
        }
        if (snapshot.HasSection(FilesSection)) {
            ReadFiles(folder / FilesSection, snapshot);
        }
        return snapshot;
    } catch (std::exception const& error) {
        throw InputError(fmt::format("can't read the snapshot {}: {}", TextOf(folder), error.what()));
    }
}

bool IsSnapshot(filesystem::path const& folder) {
    std::error_code ignored;
    return filesystem::is_regular_file(folder / ManifestName, ignored);
}

filesystem::path ForeignEntry(filesystem::path const& folder) {
    for (auto const& entry : filesystem::directory_iterator(folder)) {
        std::string const name = TextOf(entry.path().filename());
        bool const isTable = std::any_of(TableKinds.begin(), TableKinds.end(),
                                         [&](TableKind const& kind) { return TableFile(kind.section) == name; });
        if (!isTable && name != ManifestName && name != AttributesName && name != FilesSection) {
            return entry.path();
        }
    }
    return {};
}

} // namespace harvlink::cli::snapshot
