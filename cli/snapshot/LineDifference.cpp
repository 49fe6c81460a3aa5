#include "cli/snapshot/LineDifference.h"

#include <algorithm>
#include <cstddef>

#include <dtl/dtl.hpp>

#include "cli/output/Words.h"
#include "words/text/Text.h"

namespace harvlink::cli::snapshot {

namespace {

using Lines = std::vector<std::string_view>;

std::string Shown(std::string_view line) {
    return std::string(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
}

std::vector<LineChange> CompareLines(Lines const& before, Lines const& after, std::size_t offset) {
    // Its limit on memory stays on: for long texts of which hardly a line is the same, the result is not the shortest.
    dtl::Diff<std::string_view, Lines> difference(before, after);
    difference.compose();
    std::vector<LineChange> changes;
    std::size_t former = offset;
    std::size_t latter = offset;
    for (auto const& [line, step] : difference.getSes().getSequence()) {
        former += step.type == dtl::SES_ADD ? 0 : 1;
        latter += step.type == dtl::SES_DELETE ? 0 : 1;
        if (step.type == dtl::SES_DELETE) {
            changes.push_back({'-', former, Shown(line)});
        } else if (step.type == dtl::SES_ADD) {
            changes.push_back({'+', latter, Shown(line)});
        }
    }
    return changes;
}

} // namespace

std::vector<LineChange> LineDifference(std::string_view before, std::string_view after) {
    if (before.find('\0') != before.npos || after.find('\0') != after.npos) {
        return {};
    }
    Lines const former = Split(before, '\n');
    Lines const latter = Split(after, '\n');
    std::size_t const shorter = std::min(former.size(), latter.size());
    std::size_t head = 0;
    while (head < shorter && former[head] == latter[head]) {
        ++head;
    }
    std::size_t tail = 0;
    while (tail < shorter - head && former[former.size() - 1 - tail] == latter[latter.size() - 1 - tail]) {
        ++tail;
    }
    auto const middle = [&](Lines const& lines) {
        auto const begin = lines.begin() + static_cast<std::ptrdiff_t>(head);
        return Lines(begin, lines.end() - static_cast<std::ptrdiff_t>(tail));
    };
    return CompareLines(middle(former), middle(latter), head);
}

} // namespace harvlink::cli::snapshot
