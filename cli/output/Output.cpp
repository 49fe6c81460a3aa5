#include "cli/output/Output.h"

#include <cstdlib>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include <fmt/color.h>
#include <fmt/format.h>

#include "cli/output/Table.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

bool ColourAllowed() {
    char const* const noColour = std::getenv("NO_COLOR");
    char const* const terminal = std::getenv("TERM");
    bool const refused = noColour != nullptr && *noColour != '\0';
    return !refused && (terminal == nullptr || std::string_view(terminal) != "dumb");
}

// Texts of a controller may hold any bytes. Bytes that are not UTF-8 are replaced, so that every document can be parsed.
std::string Dump(Json const& document, int indent) {
    return PrintableJson(document.dump(indent, ' ', false, Json::error_handler_t::replace));
}

} // namespace

Output::Output(Console& console, OutputSink* sink)
    : console_(console),
      sink_(sink),
      colour_(console.outputIsTerminal && ColourAllowed()),
      errorColour_(console.errorIsTerminal && ColourAllowed()) {}

void Output::Show(Json const& document) {
    if (sink_ != nullptr) {
        sink_->Document(document);
        return;
    }
    console_.out << (json ? Dump(document, 2) + "\n" : FormatTable(document, colour_)) << std::flush;
}

void Output::ShowEvent(Json const& event, std::string_view text) {
    if (sink_ != nullptr) {
        sink_->Event(event, text);
        return;
    }
    console_.out << (json ? Dump(event, -1) : std::string(text)) << '\n' << std::flush;
    // A series goes on until Ctrl-C, or until the reader of the output is gone.
    if (!console_.out) {
        throw std::runtime_error("the reader of the output is gone");
    }
}

StatusInfo Output::Done(StatusInfo status) {
    if (status.StatusCode == 0) {
        Show(json ? Json{{"code", status.StatusCode}, {"message", status.Message}} : Json(status.Message));
    }
    return status;
}

void Output::ShowText(std::string_view text) {
    console_.out << (console_.outputIsTerminal ? PrintableLines(text) : std::string(text)) << std::flush;
}

void Output::Failure(StatusInfo const& status, std::string_view subject) {
    hasFailed_ = true;
    std::ostringstream line;
    line << subject << (subject.empty() ? "" : ": ") << status;
    std::string const text = Printable(line.str());
    if (sink_ != nullptr) {
        sink_->Problem(text);
        return;
    }
    console_.err << (errorColour_ ? fmt::format(fmt::fg(fmt::terminal_color::red), "{}", text) : text) << std::endl;
    if (console_.errorIsTerminal) {
        console_.err << fmt::format("What it means: harvlink explain {}", status.StatusCode) << std::endl;
    }
}

void Output::Problem(std::string_view message) {
    hasFailed_ = true;
    std::string const text = PrintableLines(message);
    if (sink_ != nullptr) {
        sink_->Problem(text);
        return;
    }
    console_.err << "harvlink: " << text << std::endl;
}

bool Output::Interactive() const {
    return !json && console_.outputIsTerminal && console_.errorIsTerminal;
}

} // namespace harvlink::cli
