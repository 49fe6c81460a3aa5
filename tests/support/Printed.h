#pragma once

#include <sstream>
#include <string>

namespace harvlink::test {

/// The text that an object writes to a stream.
template <typename Value>
std::string Printed(Value const& value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

} // namespace harvlink::test
