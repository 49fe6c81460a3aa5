#pragma once

#include <string>
#include <string_view>

#include "cli/output/Console.h"
#include "cli/output/Words.h"
#include "harvlink/StatusInfo.h"
#include "words/text/Json.h"

namespace harvlink::cli {

/// What a command found out, said once as JSON and shown as such or, for people, as a table made of it:
/// an array of objects is a table with a header, an object a list of its fields, a list in a field follows it as a table.
/// Keys in snake case ("servo_on") become labels ("Servo on").
class Output {
public:
    explicit Output(Console& console);

    bool json = false;

    void Show(Json const& document);

    /// One of a series of records that go out as they come: JSON on one line, or `text` for people.
    void ShowEvent(Json const& event, std::string_view text);

    /// The end of a command that has nothing to show but its success, and the note that this may carry. Shows nothing of a
    /// failure, and hands the status on.
    StatusInfo Done(StatusInfo status);

    /// The library's own status line, on the error stream, behind what it is about if several things were asked for.
    void Failure(StatusInfo const& status, std::string_view subject = {});

    /// Anything else that went wrong, on the error stream.
    void Problem(std::string_view message);

    /// Whether a failure or problem was shown.
    bool HasFailed() const { return hasFailed_; }

    /// Whether somebody watches who would like to see progress.
    bool Interactive() const;

    /// Whether standard output may be coloured.
    bool HasColour() const { return colour_; }

    Console& console() { return console_; }

private:
    Console& console_;
    bool colour_ = false;
    bool errorColour_ = false;
    bool hasFailed_ = false;
};

} // namespace harvlink::cli
