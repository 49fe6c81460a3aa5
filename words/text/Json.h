#pragma once

#include <nlohmann/json.hpp>

namespace harvlink::words {

/// Keeps the order in which the fields are named.
using Json = nlohmann::ordered_json;

} // namespace harvlink::words
