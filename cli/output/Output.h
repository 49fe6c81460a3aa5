#pragma once

#include <string>
#include <string_view>

#include "cli/output/Console.h"
#include "cli/output/Words.h"
#include "harvlink/StatusInfo.h"
#include "words/text/Json.h"

namespace harvlink::cli {

/// Takes what a command shows, for one of several cells whose results are shown together.
class OutputSink {
public:
    OutputSink() = default;
    OutputSink(OutputSink const&) = delete;
    OutputSink& operator=(OutputSink const&) = delete;
    virtual ~OutputSink() = default;

    virtual void Document(Json const& document) = 0;
    virtual void Event(Json const& event, std::string_view text) = 0;
    virtual void Problem(std::string_view line) = 0;
};

/// Shows the result of a command. The command makes one JSON document, which is shown as it is or, for people, as tables:
/// an array of objects is a table with a header, an object is a list of its fields, and a list in a field becomes a table
/// after it. Keys in snake case ("servo_on") become labels ("Servo on").
class Output {
public:
    /// With a sink, only what the command writes to the console itself goes there.
    explicit Output(Console& console, OutputSink* sink = nullptr);

    bool json = false;

    void Show(Json const& document);

    /// Shows one record of a series at once: JSON on one line, or `text` for people.
    void ShowEvent(Json const& event, std::string_view text);

    /// Shows a text of several lines as it is; on a terminal without what could control it.
    void ShowText(std::string_view text);

    /// Ends a command that has no result but its success: shows the status, with the note that it may carry. Shows nothing
    /// if the command failed. Returns the status.
    StatusInfo Done(StatusInfo status);

    /// Shows the library's status line on the error stream. `subject` stands before it if the command was for several things.
    void Failure(StatusInfo const& status, std::string_view subject = {});

    /// Shows any other error on the error stream.
    void Problem(std::string_view message);

    /// Whether a failure or problem was shown.
    bool HasFailed() const { return hasFailed_; }

    /// Whether to show progress: the output is for people and goes to a terminal.
    bool Interactive() const;

    /// Whether standard output may be coloured.
    bool HasColour() const { return colour_; }

    Console& console() { return console_; }

private:
    Console& console_;
    OutputSink* sink_;
    bool colour_ = false;
    bool errorColour_ = false;
    bool hasFailed_ = false;
};

} // namespace harvlink::cli
