#pragma once

#include <string>

namespace harvlink::test {

/// A name that no system resolves, and that it does not ask a name server for: it is longer than names can be.
inline std::string UnknownName() {
    std::string const label(60, 'a');
    return label + '.' + label + '.' + label + '.' + label + '.' + label;
}

} // namespace harvlink::test
