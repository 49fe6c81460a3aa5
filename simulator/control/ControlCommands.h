#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/controller/ControllerOptions.h"
#include "simulator/controller/VirtualController.h"

namespace harvlink::simulator {

/// A command that can't be carried out; the controller is as it was.
class ControlError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What can be done to a controller while it runs, beside what a client does over the network: what an operator does at
/// the pendant, what a cell does to signals, and faults.
struct ControlCommand {
    std::string_view name;
    std::string_view arguments; ///< as the help shows them
    std::string_view meaning;
    std::string (*run)(VirtualController&, ControllerOptions const&, std::span<std::string const>);
};

std::span<ControlCommand const> ControlCommands();

/// Carries out a command, given as words: its name and its arguments. Returns the text to show, often empty. Throws
/// ControlError or SceneError that say what is wrong. `options` are those with which the controller was built.
std::string RunControlCommand(VirtualController& controller, ControllerOptions const& options,
                              std::span<std::string const> words);

} // namespace harvlink::simulator
