#pragma once

#include <string>
#include <string_view>

namespace harvlink::cli {

/// Names of files may hold invalid UTF-16. Each invalid unit becomes the replacement character U+FFFD.
std::string Utf8(std::wstring_view wide);

} // namespace harvlink::cli
