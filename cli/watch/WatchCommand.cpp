#include "cli/watch/WatchCommand.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <poll.h>
#include <unistd.h>

#include "cli/program/Help.h"
#include "cli/program/Interrupt.h"
#include "cli/program/Session.h"
#include "cli/watch/BoardCommand.h"
#include "cli/watch/Feed.h"
#include "cli/watch/Layout.h"
#include "cli/watch/Reader.h"
#include "cli/watch/SampleJson.h"
#include "cli/watch/Screen.h"
#include "words/text/InputError.h"
#include "words/values/PositionText.h"

namespace harvlink::cli::watch {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t PlainColumns = 80;

constexpr char const* WatchNotes =
    "Key q or Ctrl-C quits; arrows, page keys, Home and End scroll what does not fit. No key changes\n"
    "anything on the controller, and watch sends nothing but reads.\n"
    "If the controller stops answering, the screen says so, and watch asks until it answers\n"
    "again. With --json each reading prints one line.\n"
    "With --all, or several --cell, it shows a table of all controllers, the worst first: arrows choose\n"
    "one, Enter opens it, Backspace goes back.";

struct WatchArguments {
    std::vector<std::string> groups{"R1"};
    std::vector<std::string> variables;
    std::vector<std::string> signals;
    unsigned interval = 250;
    bool once = false;
};

Selection ParseSelection(WatchArguments const& arguments) {
    Selection selection;
    for (std::string const& name : arguments.groups) {
        selection.groups.push_back(ParseGroup(name));
    }
    for (std::string const& name : arguments.variables) {
        std::vector<VariableAddress> const range = ParseVariableRange(name);
        selection.variables.insert(selection.variables.end(), range.begin(), range.end());
    }
    for (std::string const& name : arguments.signals) {
        std::vector<SignalName> const range = ParseSignalRange(name);
        selection.signals.insert(selection.signals.end(), range.begin(), range.end());
    }
    return selection;
}

StatusInfo ShowOnce(Reader& reader, Output& output) {
    Sample const& sample = reader.Read();
    if (sample.lost) {
        return *sample.lost;
    }
    if (output.json) {
        output.ShowEvent(SampleJson(sample), "");
    } else {
        output.console().out << PlainText(sample, PlainColumns) << std::flush;
    }
    return {};
}

StatusInfo ShowLines(Reader& reader, Output& output, milliseconds interval) {
    Interrupt const interrupt;
    do {
        output.ShowEvent(SampleJson(reader.Read()), "");
    } while (output.console().out && !interrupt.Wait(interval));
    return {};
}

// Waits for a key, a signal, a new sample or another size of the window. Returns false if the program shall end. A change
// of size may come just before the wait and would be missed, so the wait is short.
bool WaitForNews(Interrupt const& interrupt, Feed const& feed) {
    constexpr int LongestWait = 250;
    std::array<pollfd, 3> sources{
        {{interrupt.Descriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}, {feed.Descriptor(), POLLIN, 0}}};
    if (poll(sources.data(), sources.size(), LongestWait) < 0) {
        return errno == EINTR;
    }
    bool const isTerminalGone = (sources[1].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
    return sources[0].revents == 0 && !isTerminalGone;
}

StatusInfo ShowOnScreen(Reader& reader, Output& output, milliseconds interval) {
    Interrupt const interrupt;
    Feed feed(reader, interval);
    // Made after the feed and so destroyed first: the end of the feed may take a time-out, the terminal must come back now.
    Screen screen(output.HasColour());
    Sample sample;
    std::size_t scrolled = 0;
    while (WaitForNews(interrupt, feed)) {
        Screen::Key const key = screen.ReadKey();
        if (key == Screen::Key::Quit || key == Screen::Key::Escape) {
            break;
        }
        std::optional<Sample> const newest = feed.Take();
        sample = newest.value_or(sample);
        scrolled = Scroll(scrolled, key, screen.GetSize().rows / 2);
        if (sample.number > 0 && (newest || key != Screen::Key::None)) {
            screen.Draw(LayOut(sample, screen.GetSize(), scrolled));
        }
    }
    return {};
}

void CheckTerminal(WatchArguments const& arguments, Output& output) {
    Console const& console = output.console();
    if (!arguments.once && !output.json && !(console.inputIsTerminal && console.outputIsTerminal)) {
        throw InputError("watch needs a terminal to draw on; give --once to print everything once, or --json for one "
                         "line for each reading");
    }
}

} // namespace

} // namespace harvlink::cli::watch

namespace harvlink::cli {

void AddWatchCommand(CLI::App& app, Session& session) {
    auto arguments = std::make_shared<watch::WatchArguments>();
    CLI::App* const verb = app.add_subcommand("watch", "Show state, positions, alarms and chosen values, live");
    verb->add_option("--group", arguments->groups, "Control groups")->type_name("GROUP")->default_str("R1");
    verb->add_option("--var", arguments->variables, "Variables and ranges, such as B5 S4 P12 B0..B9")
        ->type_name("VARIABLE");
    verb->add_option("--io", arguments->signals, "Signals and ranges, such as 10010, 10010..10017 or general-output:1")
        ->type_name("SIGNAL");
    verb->add_option("--interval", arguments->interval, "Milliseconds between two readings")
        ->check(CLI::Range(1U, 3'600'000U))
        ->type_name("MS")
        ->capture_default_str();
    verb->add_flag("--once", arguments->once, "Print everything once as text and end; needs no terminal");
    SetExamples(
        *verb,
        {"watch", "watch --group R1 S1 --var B0..B9 D0 --io 10010 general-input:1", "watch --once", "watch --all"},
        watch::WatchNotes);
    verb->callback([arguments, &session] {
        watch::Selection const selection = watch::ParseSelection(*arguments);
        watch::CheckTerminal(*arguments, session.output());
        if (session.NamesSeveralCells()) {
            session.LocallyForAllCells([arguments, selection, &session](Output& output) {
                std::chrono::milliseconds const interval(arguments->interval);
                return watch::ShowBoard(session, output, {selection, interval, arguments->once});
            });
            return;
        }
        session.OnConnection(Access::Observe,
                             [arguments, selection, &session](QuorvanController& robot, Output& output) {
                                 watch::Reader reader(robot, session.settings().host, selection);
                                 StatusInfo prepared = reader.Prepare();
                                 std::chrono::milliseconds const interval(arguments->interval);
                                 if (prepared.StatusCode != 0) {
                                     return prepared;
                                 }
                                 return arguments->once ? watch::ShowOnce(reader, output)
                                        : output.json   ? watch::ShowLines(reader, output, interval)
                                                        : watch::ShowOnScreen(reader, output, interval);
                             });
    });
}

} // namespace harvlink::cli
