#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace harvlink::cli {

enum class Stream { In, Out, Err };

/// Before anything else: standard streams that are safe to use, and UTF-8 where the system has to be asked for it.
void PrepareStreams();

/// Leaves the terminal as it was before. A signal handler may call it.
void RestoreStreams();

bool IsTerminal(Stream stream);

/// Columns of the terminal that the output goes to; 0 if there is none.
std::size_t TerminalWidth();

/// Forgets what was typed but not read.
void DiscardTyped();

/// Those of the program in UTF-8, its name first.
std::vector<std::string> ProgramArguments(int argc, char const* const* argv);

} // namespace harvlink::cli
