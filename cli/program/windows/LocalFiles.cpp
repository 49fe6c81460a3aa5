#include "cli/program/LocalFiles.h"

#include <algorithm>
#include <filesystem>

#include "cli/output/Words.h"
#include "words/text/Path.h"
#include "words/values/FileNames.h"

namespace harvlink::cli {

/// The shells of Windows leave wildcards to the program. They may stand in the last part of a path only.
std::vector<std::string> LocalFiles(std::string const& glob) {
    std::filesystem::path const pattern = PathOf(glob);
    std::string const name = TextOf(pattern.filename());
    std::filesystem::path const folder = pattern.parent_path();
    std::vector<std::string> files;
    std::error_code error;
    if (IsGlob(name)) {
        for (std::filesystem::directory_iterator each(folder.empty() ? "." : folder, error);
             !error && each != std::filesystem::directory_iterator(); each.increment(error)) {
            if (FitsGlob(name, TextOf(each->path().filename()))) {
                files.push_back(TextOf(folder / each->path().filename()));
            }
        }
    }
    std::ranges::sort(files);
    return files.empty() ? std::vector{glob} : files;
}

} // namespace harvlink::cli
