#include "cli/watch/GroupLines.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/watch/LineMaker.h"
#include "words/text/Printable.h"

namespace harvlink::cli::watch {

namespace {

constexpr std::array<std::string_view, 8> BaseNames{"X", "Y", "Z", "Rx", "Ry", "Rz", "Re", "Rw"};
constexpr std::size_t Narrowest = 8;
constexpr std::size_t Widest = 12;
constexpr std::size_t WholePart = 7; ///< of a value in mm: a gap, a sign, four digits and the point

/// Number and width of the columns of axes.
struct AxisColumns {
    std::size_t axes;
    std::size_t width;
};

AxisColumns AxisColumnsOf(GroupSample const& group, std::size_t columns) {
    std::size_t const axes = group.axes.empty() ? group.torque.value.size() : group.axes.size();
    std::size_t const room = columns > LabelWidth ? columns - LabelWidth : 0;
    return {axes, std::clamp(room / axes, Narrowest, Widest)};
}

Span Label(std::string_view label, Style style) {
    return {fmt::format("{:<{}}", label, LabelWidth), style};
}

template <typename Text>
Line Row(AxisColumns table, Span label, Style style, Text const& text) {
    Line line{std::move(label)};
    for (std::size_t axis = 0; axis < table.axes; ++axis) {
        line.push_back({fmt::format("{:>{}}", text(axis), table.width), style});
    }
    return line;
}

Line ValueRow(AxisColumns table, std::string_view name, Reading<GroupSample::Axes> const& reading,
              std::size_t decimals) {
    Span label = Label(name, Style::Faint);
    if (!reading.IsValid()) {
        return {std::move(label), FailureSpan(reading.status)};
    }
    return Row(table, std::move(label), Style::Normal,
               [&](std::size_t axis) { return fmt::format("{:.{}f}", reading.value.at(axis), decimals); });
}

} // namespace

std::vector<Line> GroupLines(GroupSample const& group, std::size_t columns) {
    AxisColumns const table = AxisColumnsOf(group, columns);
    std::vector<Line> lines;
    lines.push_back(Row(table, Label(group.name, Style::Title), Style::Faint, [&](std::size_t axis) {
        return group.axes.empty() ? fmt::format("{}", axis + 1) : Printable(group.axes.substr(axis, 1));
    }));
    lines.push_back(ValueRow(table, "Pulses", group.pulses, 0));
    lines.push_back(ValueRow(table, "Torque", group.torque, 0));
    if (group.base && group.base->IsValid()) {
        lines.push_back(
            Row(table, Label("", Style::Faint), Style::Faint, [](std::size_t axis) { return BaseNames.at(axis); }));
    }
    if (group.base) {
        std::size_t const decimals = std::min<std::size_t>(table.width - WholePart, 3);
        lines.push_back(ValueRow(table, "Base", *group.base, decimals));
    }
    return lines;
}

} // namespace harvlink::cli::watch
