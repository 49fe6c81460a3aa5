#pragma once

#include <cstdlib>
#include <string>

namespace harvlink::test {

/// Sets a variable of this process. An empty one is as good as none.
inline void SetVariable(std::string const& name, std::string const& value) {
#if defined(_WIN32)
    ::_putenv_s(name.c_str(), value.c_str());
#else
    ::setenv(name.c_str(), value.c_str(), 1);
#endif
}

} // namespace harvlink::test
