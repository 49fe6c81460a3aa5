#pragma once

#include <span>

#include "simulator/protocol/Reply.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// Answers the commands of one interface.
///
/// Before a request reaches a handler, the dispatcher has refused everything that the catalogue
/// (protocol/Catalogue.cpp) forbids: a command that the generation doesn't know, an instance out of range, an attribute
/// or service that the command doesn't have, a payload of a wrong size. The handler refuses what depends on the model:
/// a missing group, a variable beyond the last, a wrong mode.
///
/// Handlers run on the server's thread with the controller locked. They don't block.
class CommandHandler {
public:
    CommandHandler() = default;
    CommandHandler(CommandHandler const&) = delete;
    CommandHandler& operator=(CommandHandler const&) = delete;
    virtual ~CommandHandler() = default;

    /// The commands of this handler. A command belongs to one handler only. The handler of the file port names none,
    /// because it gets every request of that port.
    virtual std::span<CommandNumber const> Commands() const = 0;

    /// Fills `reply`, which is at first a success without payload.
    virtual void Handle(Request const& request, Reply& reply) = 0;
};

} // namespace harvlink::simulator
