#include "cli/program/Environment.h"

#include <cstdlib>
#include <string_view>

#include "cli/program/windows/Utf8.h"

namespace harvlink::cli {

std::string EnvironmentVariable(char const* name) {
    std::string_view const ascii = name;
    wchar_t const* const value = ::_wgetenv(std::wstring(ascii.begin(), ascii.end()).c_str());
    return value == nullptr ? "" : Utf8(value);
}

} // namespace harvlink::cli
