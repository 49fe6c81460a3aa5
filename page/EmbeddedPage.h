#pragma once

#include <span>
#include <string_view>

namespace harvlink::page {

/// A file of the page, as it stands in dist/.
struct File {
    std::string_view name; ///< without a folder, such as "app.js"
    std::string_view contentType;
    std::string_view tag; ///< changes with the content
    std::span<unsigned char const> content;
    std::span<unsigned char const> compressed; ///< the same, by gzip
};

/// All files; "index.html" is the one to begin with.
std::span<File const> Files();

} // namespace harvlink::page
