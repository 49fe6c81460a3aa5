#pragma once

#include <stdexcept>

namespace harvlink::simulator {

/// The error in a scene, in one line: "cell.toml:12: variables.B.600: there are only the numbers 0 to 511".
class SceneError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace harvlink::simulator
