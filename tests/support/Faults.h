#pragma once

#include <string>

#include "words/text/InputError.h"

namespace harvlink::words {

/// What is wrong with an input; empty if it is right.
std::string FaultsOf(auto const& parse) {
    try {
        parse();
    } catch (InputError const& error) {
        return error.what();
    }
    return "";
}

} // namespace harvlink::words
