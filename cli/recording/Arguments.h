#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/output/Output.h"
#include "recording/read/Recording.h"

namespace CLI {
class App;
}

namespace harvlink::cli::recordings {

/// A recording, and which part of it.
struct PartArguments {
    std::string file;
    std::string from;
    std::string to;
    std::vector<std::string> controllers;
    std::vector<std::string> items;

    void AddFile(CLI::App& verb);
    void AddTimes(CLI::App& verb);
    void AddChoice(CLI::App& verb);

    /// Throws InputError.
    recording::TimeRange Range(recording::Recording& source) const;

    /// The readings that are chosen, all without a choice. Throws InputError for a name that chooses none.
    std::vector<std::uint32_t> Readings(recording::Recording const& source) const;

    /// Whether a controller is chosen.
    bool IsWanted(std::string const& controller) const;
};

inline constexpr char const* TimeHelp =
    "A time is UTC, such as 2026-11-22T03:15:00Z or 2026-11-22; +90s is after the start, -1m\n"
    "before the end of the recording.";

/// Opens the recording and does the work. What can't be read or written gives exit status 1.
int WithRecording(Output& output, std::string const& file, std::function<int(recording::Recording&)> const& work);

} // namespace harvlink::cli::recordings
