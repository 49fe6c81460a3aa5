#include "cli/snapshot/FileReader.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "harvlink/FileInterface.h"
#include "words/text/Csv.h"
#include "words/text/Encoding.h"
#include "words/text/Path.h"
#include "words/values/FileNames.h"

namespace harvlink::cli::snapshot {

namespace {

bool IsSelected(Selection const& selection, std::string const& name) {
    return selection.files.empty() || std::any_of(selection.files.begin(), selection.files.end(),
                                                  [&](std::string const& glob) { return FitsGlob(glob, name); });
}

// If one kind can't be listed, the others still are.
std::vector<std::string> ListAll(Source& source, Snapshot& snapshot) {
    std::vector<std::string> all;
    for (FileType const type : KindsOf("*")) {
        std::vector<std::string> names;
        std::string const kind = ExtensionOf(type);
        StatusInfo const status = source.Ask(fmt::format("list of {} files", kind),
                                             [&] { return source.robot.Files->ListFiles(type, names, true); });
        if (status.StatusCode != 0 && status.StatusCode != static_cast<int>(ErrorStatusCodes::NoFilesWithExtension)) {
            snapshot.missing.push_back({fmt::format("files/*.{}", kind), status});
        }
        if (source.IsGone()) {
            break;
        }
        all.insert(all.end(), names.begin(), names.end());
    }
    return all;
}

} // namespace

void ReadFiles(Source& source, Snapshot& snapshot, std::filesystem::path const& scratch) {
    for (std::string const& name : ListAll(source, snapshot)) {
        if (IsSelected(snapshot.selection, name)) {
            StatusInfo const status = source.Ask("file " + ControllerText(name), [&] {
                return source.robot.Files->SaveFromControllerToFile(name, TextOf(scratch), true);
            });
            if (status.StatusCode == 0) {
                snapshot.files[name] = ReadTextFile(TextOf(scratch));
            } else {
                snapshot.missing.push_back({"files/" + ControllerText(name), status});
            }
        }
    }
}

} // namespace harvlink::cli::snapshot
