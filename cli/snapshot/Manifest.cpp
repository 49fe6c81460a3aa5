#include "cli/snapshot/Manifest.h"

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "harvlink/Version.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/values/SafeName.h"

namespace harvlink::cli::snapshot {

namespace {

constexpr char const* Format = "harvlink-snapshot";
constexpr int FormatVersion = 1;

Json SelectionJson(Selection const& selection) {
    return {{"sections", selection.sections},
            {"variables", selection.variables},
            {"parameters", selection.parameters},
            {"files", selection.files}};
}

Selection ParseSelection(Json const& json) {
    using Texts = std::vector<std::string>;
    return {json.at("sections").get<Texts>(), json.at("variables").get<Texts>(), json.at("parameters").get<Texts>(),
            json.at("files").get<Texts>()};
}

Json CountsJson(Snapshot const& snapshot) {
    Json counts = Json::object();
    for (TableKind const& kind : TableKinds) {
        auto const found = snapshot.tables.find(kind.section);
        if (found != snapshot.tables.end()) {
            counts[std::string(kind.section)] = found->second.size();
        }
    }
    if (snapshot.HasSection(FilesSection)) {
        counts[std::string(FilesSection)] = snapshot.files.size();
    }
    return counts;
}

Json MissingJson(std::vector<Missing> const& missing) {
    Json rows = Json::array();
    for (Missing const& part : missing) {
        rows.push_back({{"what", part.what}, {"code", part.status.StatusCode}, {"message", part.status.Message}});
    }
    return rows;
}

/// The whole names of the files whose stored names are shortened.
Json LongNamesJson(Snapshot const& snapshot) {
    Json names = Json::object();
    for (auto const& [name, contents] : snapshot.files) {
        std::string const stored = SafeName(name);
        if (OriginalName(stored) != name) {
            names[stored] = TextEncoding().Decode(name);
        }
    }
    return names;
}

Snapshot ParseContents(Json const& manifest) {
    Snapshot snapshot{.host = manifest.at("host"),
                      .created = manifest.at("created"),
                      .selection = ParseSelection(manifest.at("selection")),
                      .encoding = manifest.value("encoding", "utf-8"),
                      .controller = {},
                      .tables = {},
                      .files = {},
                      .missing = {},
                      .longNames = {}};
    Json const longNames = manifest.value("long_names", Json::object());
    for (auto const& [stored, name] : longNames.items()) {
        snapshot.longNames[stored] = TextEncoding().Encode(name.get<std::string>());
    }
    for (auto const& [name, value] : manifest.at("controller").items()) {
        snapshot.controller.push_back({name, value.get<std::string>()});
    }
    for (TableKind const& kind : TableKinds) {
        if (manifest.at("entries").contains(kind.section)) {
            snapshot.tables[std::string(kind.section)] = {};
        }
    }
    for (Json const& part : manifest.at("missing")) {
        snapshot.missing.push_back({part.at("what"), {part.at("code"), part.at("message")}});
    }
    return snapshot;
}

} // namespace

Json ManifestJson(Snapshot const& snapshot) {
    Json controller = Json::object();
    for (Entry const& entry : snapshot.controller) {
        controller[entry.name] = entry.value;
    }
    Json manifest{{"format", Format},
                  {"format_version", FormatVersion},
                  {"tool", HeaderVersion},
                  {"created", snapshot.created},
                  {"host", snapshot.host},
                  {"controller", controller},
                  {"complete", snapshot.IsComplete()},
                  {"entries", CountsJson(snapshot)},
                  {"missing", MissingJson(snapshot.missing)},
                  {"selection", SelectionJson(snapshot.selection)},
                  {"encoding", snapshot.encoding}};
    if (Json const longNames = LongNamesJson(snapshot); !longNames.empty()) {
        manifest["long_names"] = longNames;
    }
    return manifest;
}

Snapshot ParseManifest(Json const& manifest) {
    try {
        if (manifest.at("format") != Format) {
            throw InputError("another program has written it");
        }
        int const version = manifest.at("format_version");
        if (version != FormatVersion) {
            throw InputError(fmt::format("its format is {}, but this program reads format {}", version, FormatVersion));
        }
        return ParseContents(manifest);
    } catch (Json::exception const&) {
        throw InputError("snapshot.json lacks a part that every snapshot has, or has it in another form");
    }
}

} // namespace harvlink::cli::snapshot
