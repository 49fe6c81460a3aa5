#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/watch/Sample.h"

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

/// The lines that show a sample, never more than `size`. What does not fit is cut off, and the last line says so.
std::vector<Line> LayOut(Sample const& sample, Size size);

/// The same as plain text, with as many lines as it takes.
std::string PlainText(Sample const& sample, std::size_t columns);

} // namespace harvlink::cli::watch
