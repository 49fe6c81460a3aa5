#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/output/Output.h"
#include "harvlink/FileInterface.h"

namespace harvlink::cli {

/// The files of the controller. Each kind is listed at most once.
class RemoteFiles {
public:
    using Names = std::vector<std::string>;

    RemoteFiles(FileInterface& files, Output& output) : files_(files), output_(output) {}

    StatusInfo List(FileType type, Names& names);

    /// Whether there is such a file; upper and lower case are the same.
    StatusInfo Contains(FileType type, std::string const& name, bool& contains);

    /// A file was stored since it was listed.
    void Note(FileType type, std::string const& name) { lists_[type].push_back(name); }

    /// The names that fit any of the globs, each once. A name without wildcards needs no listing.
    StatusInfo Find(Names const& globs, Names& found);

private:
    static StatusInfo Add(std::string const& name, Names& found);
    StatusInfo FindGlob(std::string const& glob, Names& found);

    FileInterface& files_;
    Output& output_;
    std::map<FileType, Names> lists_;
};

} // namespace harvlink::cli
