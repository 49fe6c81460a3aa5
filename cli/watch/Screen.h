#pragma once

#include <memory>
#include <vector>

#include "cli/watch/Layout.h"

namespace harvlink::cli::watch {

/// Draws on the whole terminal. The destructor restores its former contents, cursor and modes.
class Screen {
public:
    /// Throws InputError if the type of the terminal is unknown.
    explicit Screen(bool hasColours);
    Screen(Screen const&) = delete;
    Screen& operator=(Screen const&) = delete;
    ~Screen();

    Size GetSize() const;

    /// Replaces what is shown; only the differences are sent to the terminal.
    void Draw(std::vector<Line> const& lines);

    enum class Key { None, Quit, Escape, Enter, Back, Resize, Up, Down, PageUp, PageDown, Home, End };

    /// The next key that was pressed. Does not wait for one.
    Key ReadKey();

private:
    struct Terminal;

    std::unique_ptr<Terminal> terminal_;
    bool hasColours_;
};

} // namespace harvlink::cli::watch
