#include "words/values/FileNames.h"

#include "words/text/Glob.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/SafeName.h"

namespace harvlink::words {

bool IsGlob(std::string_view name) {
    return name.find_first_of("*?[") != std::string_view::npos;
}

bool FitsGlob(std::string const& glob, std::string const& name) {
    return MatchesGlob(LowerCase(glob), LowerCase(name));
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

std::string LocalName(std::string_view name) {
    constexpr std::size_t LongestLocalName = 255;
#if defined(_WIN32)
    constexpr std::string_view Reserved = "/\\:*?\"<>|";
#else
    constexpr std::string_view Reserved = "/";
#endif
    bool const isPlain = !name.empty() && name[0] != '.' && name.size() <= LongestLocalName &&
                         name.find_first_of(Reserved) == std::string_view::npos && Printable(name) == name;
    return isPlain ? std::string(name) : SafeName(name);
}

} // namespace harvlink::words
