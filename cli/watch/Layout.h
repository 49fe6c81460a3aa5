#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/watch/Sample.h"

namespace harvlink::cli::watch {

enum class Style { Normal, Title, Faint, Good, Warning, Bad, Chosen };

struct Span {
    std::string text; ///< printable, UTF-8
    Style style = Style::Normal;
};

using Line = std::vector<Span>;

struct Size {
    std::size_t rows = 0;
    std::size_t columns = 0;
};

/// The lines that show a sample, never more than `size`. If there are more, the first stays and the others begin after as many as
/// `scrolled` says; the last line tells which are shown. A larger number than there is to scroll becomes the largest.
/// `keys` begins the last line.
std::vector<Line> LayOut(Sample const& sample, Size size, std::size_t& scrolled, std::string_view keys = "q quits");

/// The same as plain text, with as many lines as it takes.
std::string PlainText(Sample const& sample, std::size_t columns);

} // namespace harvlink::cli::watch
