#include "cli/watch/BoardCommand.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>
#include <unistd.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Interrupt.h"
#include "cli/watch/Board.h"
#include "cli/watch/BoardText.h"
#include "cli/watch/CellReader.h"
#include "cli/watch/Feed.h"
#include "words/text/Encoding.h"

namespace harvlink::cli::watch {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t PlainWidth = 132;

int ExitOf(std::vector<CellRow> const& rows) {
    bool const isFine =
        std::ranges::none_of(rows, [](CellRow const& row) { return row.HowBad() == CellRow::Rank::NoAnswer; });
    return isFine ? ExitStatus::Success : ExitStatus::Failure;
}

int ShowRowsOnce(Board& board, Output& output) {
    board.AwaitAll();
    std::vector<CellRow> const rows = board.Rows();
    if (output.json) {
        output.ShowEvent(RowsJson(rows), "");
    } else {
        output.console().out << PlainText(rows, PlainWidth) << std::flush;
    }
    return ExitOf(rows);
}

int ShowRowsAsLines(Board& board, Output& output) {
    Interrupt const interrupt;
    board.AwaitAll();
    do {
        output.ShowEvent(RowsJson(board.Rows()), "");
    } while (output.console().out && !interrupt.Wait(board.Interval()));
    return ExitStatus::Success;
}

/// A controller that was chosen in the table, on the whole screen.
struct Opened {
    Opened(Session const& session, std::string const& cell, BoardArguments const& arguments)
        : reader(session, cell, arguments.selection), sample(reader.First()), feed(reader, arguments.interval) {}

    void Draw(Screen& screen, Screen::Key key) {
        ThreadEncoding const encoding{TextEncoding(reader.Encoding())};
        sample = feed.Take().value_or(std::move(sample));
        scrolled = Scroll(scrolled, key, screen.GetSize().rows / 2);
        screen.Draw(LayOut(sample, screen.GetSize(), scrolled, "Backspace goes back, q quits"));
    }

    CellReader reader;
    Sample sample;
    std::size_t scrolled = 0;
    Feed feed;
};

/// The table on the terminal, and the controller that is opened from it.
class BoardScreen {
public:
    BoardScreen(Session const& session, Output& output, Board& board, BoardArguments const& arguments)
        : session_(session), arguments_(arguments), board_(board), rows_(board.Rows()), screen_(output.HasColour()) {}

    void Run(Interrupt const& interrupt) {
        while (WaitForNews(interrupt)) {
            Screen::Key const key = screen_.ReadKey();
            if (key == Screen::Key::Quit || (key == Screen::Key::Escape && !opened_)) {
                break;
            }
            opened_ ? TakeKeyOfOpened(key) : TakeKey(key);
            opened_ ? opened_->Draw(screen_, key) : DrawTable();
        }
    }

private:
    void TakeKey(Screen::Key key) {
        rows_ = board_.Rows();
        std::size_t const chosen = Scroll(Chosen(), key, screen_.GetSize().rows / 2);
        chosen_ = rows_[std::min(chosen, rows_.size() - 1)].cell;
        if (key == Screen::Key::Enter) {
            opened_ = std::make_unique<Opened>(session_, chosen_, arguments_);
        }
    }

    void TakeKeyOfOpened(Screen::Key key) {
        if (key == Screen::Key::Back || key == Screen::Key::Escape) {
            opened_->feed.Stop();
            closed_.push_back(std::move(opened_));
            std::erase_if(closed_, [](auto const& each) { return each->feed.HasEnded(); });
        }
    }

    void DrawTable() { screen_.Draw(LayOut(rows_, screen_.GetSize(), Chosen())); }

    /// The place of the row that is marked. It stays with its cell when others get worse.
    std::size_t Chosen() const {
        auto const found = std::ranges::find(rows_, chosen_, &CellRow::cell);
        return found == rows_.end() ? 0 : static_cast<std::size_t>(found - rows_.begin());
    }

    /// Waits for a key, a signal, a new sample or the next look at the table; false if the program shall end. Another size of
    /// the window may come just before the wait and would be missed, so the wait is short.
    bool WaitForNews(Interrupt const& interrupt) const {
        constexpr milliseconds LongestWait(250);
        auto const wait = static_cast<int>(std::min(arguments_.interval, LongestWait).count());
        int const feed = opened_ ? opened_->feed.Descriptor() : -1; // -1: poll passes it over
        std::array<pollfd, 3> sources{
            {{interrupt.Descriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}, {feed, POLLIN, 0}}};
        if (poll(sources.data(), sources.size(), wait) < 0) {
            return errno == EINTR;
        }
        return sources[0].revents == 0 && (sources[1].revents & (POLLHUP | POLLERR | POLLNVAL)) == 0;
    }

    Session const& session_;
    BoardArguments const& arguments_;
    Board& board_;
    std::vector<CellRow> rows_;
    std::string chosen_;
    std::vector<std::unique_ptr<Opened>> closed_; ///< their last exchange may take a time-out
    std::unique_ptr<Opened> opened_;
    Screen screen_; ///< last: the terminal comes back before anything is waited for
};

} // namespace

std::size_t Scroll(std::size_t scrolled, Screen::Key key, std::size_t page) {
    switch (key) {
    case Screen::Key::Up:
        return scrolled - std::min<std::size_t>(scrolled, 1);
    case Screen::Key::Down:
        return scrolled + 1;
    case Screen::Key::PageUp:
        return scrolled - std::min(scrolled, page);
    case Screen::Key::PageDown:
        return scrolled + page;
    case Screen::Key::Home:
        return 0;
    case Screen::Key::End:
        return std::numeric_limits<std::size_t>::max(); // whoever lays it out makes it the end
    default:
        return scrolled;
    }
}

int ShowBoard(Session& session, Output& output, BoardArguments const& arguments) {
    Board board(FleetCells(session), arguments.interval);
    if (arguments.once) {
        return ShowRowsOnce(board, output);
    }
    if (output.json) {
        return ShowRowsAsLines(board, output);
    }
    Interrupt const interrupt;
    BoardScreen(session, output, board, arguments).Run(interrupt);
    return ExitStatus::Success;
}

} // namespace harvlink::cli::watch
