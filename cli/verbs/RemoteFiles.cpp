#include "cli/verbs/RemoteFiles.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/output/Words.h"
#include "cli/program/RepeatedRead.h"
#include "words/text/Encoding.h"
#include "words/text/Text.h"
#include "words/values/FileNames.h"

namespace harvlink::cli {

StatusInfo RemoteFiles::List(FileType type, Names& names) {
    StatusInfo status;
    auto const known = lists_.find(type);
    if (known == lists_.end()) {
        std::string const what = fmt::format("Listing {} files", ExtensionOf(type));
        Progress progress(output_, what);
        status = ReadRepeatedly(progress, what, [&] { return files_.ListFiles(type, names, true); });
        if (status.StatusCode == 0) {
            lists_.emplace(type, names);
        }
    } else {
        names = known->second;
    }
    return status;
}

StatusInfo RemoteFiles::Contains(FileType type, std::string const& name, bool& contains) {
    Names names;
    StatusInfo status = List(type, names);
    contains = std::any_of(names.begin(), names.end(),
                           [&](std::string const& other) { return LowerCase(other) == LowerCase(name); });
    return status;
}

StatusInfo RemoteFiles::Find(Names const& globs, Names& found) {
    for (std::string const& glob : globs) {
        StatusInfo status = IsGlob(glob) ? FindGlob(glob, found) : Add(ControllerBytes(glob), found);
        if (status.StatusCode != 0) {
            return status;
        }
    }
    return {};
}

StatusInfo RemoteFiles::Add(std::string const& name, Names& found) {
    if (std::find(found.begin(), found.end(), name) == found.end()) {
        found.push_back(name);
    }
    return {};
}

StatusInfo RemoteFiles::FindGlob(std::string const& glob, Names& found) {
    std::size_t const before = found.size();
    for (FileType const type : KindsOf(glob)) {
        Names names;
        StatusInfo status = List(type, names);
        if (status.StatusCode != 0) {
            return status;
        }
        for (std::string const& name : names) {
            if (FitsGlob(glob, ControllerText(name))) {
                Add(name, found);
            }
        }
    }
    return found.size() > before ? StatusInfo{} : StatusInformation(ErrorStatusCodes::NoFilesWithExtension);
}

} // namespace harvlink::cli
