#include "cli/watch/LineMaker.h"

#include <algorithm>
#include <sstream>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "words/text/Printable.h"

namespace harvlink::cli::watch {

namespace {

constexpr std::size_t Gap = 3;

} // namespace

Span FailureSpan(StatusInfo const& status) {
    std::ostringstream text;
    text << status;
    return {Printable(text.str()), Style::Bad};
}

std::string ClockText(Sample::Time time) {
    return fmt::format("{:%H:%M:%S}", fmt::localtime(std::chrono::system_clock::to_time_t(time)));
}

std::size_t WidthOf(Line const& line) {
    std::size_t width = 0;
    for (Span const& span : line) {
        width += ColumnsOf(span.text);
    }
    return width;
}

Line Clip(Line line, std::size_t columns) {
    std::size_t left = columns;
    for (Span& span : line) {
        span.text = FirstColumns(span.text, left);
        left -= ColumnsOf(span.text);
    }
    return line;
}

std::vector<Line> Flow(std::string_view label, std::vector<Line> const& items, std::size_t columns) {
    std::size_t width = 0;
    for (Line const& item : items) {
        width = std::max(width, WidthOf(item));
    }
    std::size_t const room = columns > LabelWidth ? columns - LabelWidth : 0;
    std::size_t const perLine = std::max<std::size_t>(1, (room + Gap) / (width + Gap));
    std::vector<Line> lines;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i % perLine == 0) {
            lines.push_back({{fmt::format("{:<{}}", i == 0 ? label : "", LabelWidth), Style::Faint}});
        }
        Line& line = lines.back();
        line.insert(line.end(), items[i].begin(), items[i].end());
        if (i % perLine + 1 < perLine && i + 1 < items.size()) {
            line.push_back({std::string(width + Gap - WidthOf(items[i]), ' ')});
        }
    }
    return lines;
}

} // namespace harvlink::cli::watch
