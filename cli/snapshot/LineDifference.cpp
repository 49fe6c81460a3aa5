#include "cli/snapshot/LineDifference.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "cli/output/Words.h"
#include "words/text/Text.h"

namespace harvlink::cli::snapshot {

namespace {

using Lines = std::vector<std::string_view>;

constexpr std::size_t MostCells = 4'000'000; ///< of the table below, 16 MB

/// The length of the longest common subsequence of each pair of tails of two texts, by the lines at which these begin.
class CommonLengths {
public:
    CommonLengths(std::span<std::string_view const> before, std::span<std::string_view const> after)
        : width_(after.size() + 1), lengths_((before.size() + 1) * width_) {
        for (std::size_t i = before.size(); i-- > 0;) {
            for (std::size_t j = after.size(); j-- > 0;) {
                lengths_[i * width_ + j] =
                    before[i] == after[j] ? At(i + 1, j + 1) + 1 : std::max(At(i + 1, j), At(i, j + 1));
            }
        }
    }

    std::uint32_t At(std::size_t before, std::size_t after) const { return lengths_[before * width_ + after]; }

private:
    std::size_t width_;
    std::vector<std::uint32_t> lengths_;
};

std::string Shown(std::string_view line) {
    return std::string(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
}

std::vector<LineChange> Walk(std::span<std::string_view const> before, std::span<std::string_view const> after,
                             std::size_t offset) {
    CommonLengths const common(before, after);
    std::vector<LineChange> changes;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < before.size() || j < after.size()) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            ++i;
            ++j;
        } else if (j == after.size() || (i < before.size() && common.At(i + 1, j) >= common.At(i, j + 1))) {
            changes.push_back({'-', offset + i + 1, Shown(before[i])});
            ++i;
        } else {
            changes.push_back({'+', offset + j + 1, Shown(after[j])});
            ++j;
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
    std::size_t const formerCount = former.size() - head - tail;
    std::size_t const latterCount = latter.size() - head - tail;
    if ((formerCount + 1) * (latterCount + 1) > MostCells) {
        return {};
    }
    return Walk(std::span(former).subspan(head, formerCount), std::span(latter).subspan(head, latterCount), head);
}

} // namespace harvlink::cli::snapshot
