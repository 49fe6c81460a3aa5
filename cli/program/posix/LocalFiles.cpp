#include "cli/program/LocalFiles.h"

#include <glob.h>

namespace harvlink::cli {

std::vector<std::string> LocalFiles(std::string const& glob) {
    glob_t found{};
    std::vector<std::string> files;
    if (::glob(glob.c_str(), GLOB_NOCHECK, nullptr, &found) == 0) {
        files.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    }
    globfree(&found);
    return files;
}

} // namespace harvlink::cli
