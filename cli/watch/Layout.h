#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/watch/Frame.h"

namespace harvlink::cli::watch {

enum class Style { Normal, Title, Faint, Good, Warning, Bad };

struct Span {
    std::string text; ///< printable, UTF-8
    Style style = Style::Normal;
};

using Line = std::vector<Span>;

struct Size {
    std::size_t rows = 0;
    std::size_t columns = 0;
};

/// The picture of a frame, never more than `size`. What does not fit is cut off, and a last line says so.
std::vector<Line> LayOut(Frame const& frame, Size size);

/// The picture as plain text, as long as it needs to be.
std::string PlainText(Frame const& frame, std::size_t columns);

} // namespace harvlink::cli::watch
