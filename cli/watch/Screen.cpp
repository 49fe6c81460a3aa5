#include "cli/watch/Screen.h"

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include <curses.h>
#include <fmt/format.h>
#include <langinfo.h>

#include "cli/output/Words.h"
#include "words/text/InputError.h"
#include "words/text/Printable.h"
#include "words/text/Utf8.h"

namespace harvlink::cli::watch {

namespace {

constexpr int Escape = 27;
constexpr int Delete = 127; ///< what the backspace key of many terminals sends

struct Attributes {
    Style style;
    attr_t attributes;
    short colour; ///< -1: the terminal's own
};

constexpr std::array<Attributes, 7> StyleAttributes{{{Style::Normal, A_NORMAL, -1},
                                                     {Style::Title, A_BOLD, -1},
                                                     {Style::Faint, A_DIM, -1},
                                                     {Style::Good, A_NORMAL, COLOR_GREEN},
                                                     {Style::Warning, A_NORMAL, COLOR_YELLOW},
                                                     {Style::Bad, A_BOLD, COLOR_RED},
                                                     {Style::Chosen, A_REVERSE, -1}}};

void PrepareColours() {
    start_color();
    use_default_colors();
    for (std::size_t i = 0; i < StyleAttributes.size(); ++i) {
        init_pair(static_cast<short>(i + 1), StyleAttributes.at(i).colour, -1);
    }
}

/// A terminal that is not set to UTF-8 gets '?' for each column of another character than ASCII.
std::string ForTerminal(std::string_view text) {
    if (std::string_view(nl_langinfo(CODESET)) == "UTF-8") {
        return std::string(text);
    }
    std::string ascii;
    ForEachUtf8Character(text, [&](Utf8Character const& character) {
        bool const isAscii = character.code < 0x80;
        ascii += isAscii ? std::string(character.bytes) : std::string(ColumnsOf(character.bytes), '?');
    });
    return ascii;
}

} // namespace

/// The screen that curses draws on.
struct Screen::Terminal {
    explicit Terminal(SCREEN* opened) : screen(opened) {}
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;
    ~Terminal() {
        endwin();
        delscreen(screen);
    }

    SCREEN* screen;
};

Screen::Screen(bool hasColours) : hasColours_(hasColours) {
    std::setlocale(LC_CTYPE, "");
    SCREEN* const screen = newterm(nullptr, stdout, stdin);
    if (screen == nullptr) {
        char const* const type = std::getenv("TERM");
        throw InputError(fmt::format("can't draw on a terminal of type '{}'; set TERM, or give --once for plain text",
                                     type == nullptr ? "" : type));
    }
    terminal_ = std::make_unique<Terminal>(screen);
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(25);
    curs_set(0);
    hasColours_ = hasColours_ && has_colors();
    if (hasColours_) {
        PrepareColours();
    }
}

Screen::~Screen() = default;

Size Screen::GetSize() const {
    return {static_cast<std::size_t>(getmaxy(stdscr)), static_cast<std::size_t>(getmaxx(stdscr))};
}

void Screen::Draw(std::vector<Line> const& lines) {
    werase(stdscr);
    for (std::size_t row = 0; row < lines.size(); ++row) {
        wmove(stdscr, static_cast<int>(row), 0);
        for (Span const& span : lines[row]) {
            auto const style = static_cast<std::size_t>(span.style);
            wattr_set(stdscr, StyleAttributes.at(style).attributes, static_cast<short>(hasColours_ ? style + 1 : 0),
                      nullptr);
            std::string const text = ForTerminal(span.text);
            waddnstr(stdscr, text.c_str(), static_cast<int>(text.size()));
        }
    }
    wrefresh(stdscr);
}

Screen::Key Screen::ReadKey() {
    while (true) {
        switch (wgetch(stdscr)) {
        case 'q':
        case 'Q':
            return Key::Quit;
        case Escape:
            return Key::Escape;
        case '\n':
        case '\r':
        case KEY_ENTER:
            return Key::Enter;
        case '\b':
        case Delete:
        case KEY_BACKSPACE:
        case KEY_LEFT:
            return Key::Back;
        case KEY_RESIZE:
            return Key::Resize;
        case KEY_UP:
        case 'k':
            return Key::Up;
        case KEY_DOWN:
        case 'j':
            return Key::Down;
        case KEY_PPAGE:
            return Key::PageUp;
        case KEY_NPAGE:
        case ' ':
            return Key::PageDown;
        case KEY_HOME:
            return Key::Home;
        case KEY_END:
            return Key::End;
        case ERR:
            return Key::None;
        default:
            break;
        }
    }
}

} // namespace harvlink::cli::watch
