#pragma once

#include <chrono>

#include "cli/program/Session.h"
#include "cli/watch/Reader.h"
#include "cli/watch/Screen.h"

namespace harvlink::cli::watch {

struct BoardArguments {
    Selection selection; ///< of a controller that is opened
    std::chrono::milliseconds interval{};
    bool once = false;
};

/// Shows the named cells in one table. Returns the exit status: without a screen 1 if one of them did not answer.
int ShowBoard(Session& session, Output& output, BoardArguments const& arguments);

/// How far the screen is scrolled after a key, or which row is chosen.
std::size_t Scroll(std::size_t scrolled, Screen::Key key, std::size_t page);

} // namespace harvlink::cli::watch
