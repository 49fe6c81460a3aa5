#pragma once

#include <stdexcept>

namespace harvlink::words {

/// What the user gave can't be understood. Ends the program as wrong usage, before anything is sent.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace harvlink::words
