#include "FileNames.h"

#include <fnmatch.h>
#include <glob.h>

#include "Text.h"

namespace harvlink::cli {

bool IsGlob(std::string_view name) {
    return name.find_first_of("*?[") != std::string_view::npos;
}

bool FitsGlob(std::string const& glob, std::string const& name) {
    return fnmatch(LowerCase(glob).c_str(), LowerCase(name).c_str(), 0) == 0;
}

std::vector<FileType> KindsOf(std::string_view name) {
    std::size_t const dot = name.rfind('.');
    std::string const extension = LowerCase(dot == std::string_view::npos ? name : name.substr(dot + 1));
    std::vector<FileType> kinds;
    for (FileKind const& kind : FileKinds) {
        if (FitsGlob(extension, ExtensionOf(kind.type))) {
            kinds.push_back(kind.type);
        }
    }
    return kinds;
}

std::string ExtensionOf(FileType type) {
    return std::string(FileKinds.at(static_cast<std::size_t>(type)).Extension().substr(1));
}

std::vector<std::string> LocalFiles(std::string const& glob) {
    glob_t found{};
    std::vector<std::string> files;
    if (::glob(glob.c_str(), GLOB_NOCHECK, nullptr, &found) == 0) {
        files.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    }
    globfree(&found);
    return files;
}

bool IsSafeLocalName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find_first_of(std::string_view("/\0", 2)) == name.npos;
}

} // namespace harvlink::cli
