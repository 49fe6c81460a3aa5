#include "simulator/files/FileName.h"

#include <algorithm>

#include "simulator/model/JobName.h"
#include "wire/Packets.h"

namespace harvlink::simulator {

namespace {

constexpr std::size_t ExtensionLength = 4;

} // namespace

std::optional<std::string> FileNameFrom(std::string_view text) {
    if (text.size() <= ExtensionLength || text.size() > FileNameSize) {
        return std::nullopt;
    }
    auto name = UpperCase(text);
    if (!IsJobName(name) || !FileTypeOf(name)) {
        return std::nullopt;
    }
    return name;
}

std::optional<FileType> FileTypeOf(std::string_view name) {
    auto const length = std::min(name.size(), ExtensionLength);
    auto const extension = UpperCase(name.substr(name.size() - length));
    auto const found = std::ranges::find(FileKinds, extension, &FileKind::Extension);
    if (found == FileKinds.end()) {
        return std::nullopt;
    }
    return found->type;
}

bool IsWritable(FileType type) {
    return FileKinds.at(static_cast<std::size_t>(type)).writable;
}

bool IsFilePattern(std::string_view pattern) {
    auto const dot = pattern.rfind('.');
    auto const extension = dot == std::string_view::npos ? pattern : pattern.substr(dot);
    return FileTypeOf(pattern).has_value() || extension.find_first_of("*?") != std::string_view::npos;
}

bool MatchesPattern(std::string_view pattern, std::string_view name) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::string_view::npos; ///< the last '*', which takes one more character after each mismatch
    std::size_t starIn = 0;
    while (in < name.size()) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            starIn = in;
        } else if (at < pattern.size() && (pattern[at] == '?' || pattern[at] == name[in])) {
            ++at;
            ++in;
        } else if (star != std::string_view::npos) {
            at = star + 1;
            in = ++starIn;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

} // namespace harvlink::simulator
