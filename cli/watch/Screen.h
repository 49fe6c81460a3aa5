#pragma once

#include <memory>
#include <vector>

#include "cli/watch/Layout.h"

namespace harvlink::cli::watch {

/// The terminal as a canvas. Its former contents, cursor and modes come back at the end of the scope, however that ends.
class Screen {
public:
    /// Throws InputError if the terminal is of no known type.
    explicit Screen(bool hasColours);
    Screen(Screen const&) = delete;
    Screen& operator=(Screen const&) = delete;
    ~Screen();

    Size GetSize() const;

    /// Replaces the picture, sending only what differs.
    void Draw(std::vector<Line> const& lines);

    enum class Key { None, Quit, Resize };

    /// The next key that was pressed, without waiting for one.
    Key ReadKey();

private:
    struct Terminal;

    std::unique_ptr<Terminal> terminal_;
    bool hasColours_;
};

} // namespace harvlink::cli::watch
