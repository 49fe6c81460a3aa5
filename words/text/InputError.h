#pragma once

#include <stdexcept>

namespace harvlink::words {

/// The text or file that a user gave is wrong. Thrown before anything is sent to a controller.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace harvlink::words
