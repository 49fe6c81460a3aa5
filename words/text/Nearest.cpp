#include "words/text/Nearest.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace harvlink::words {

namespace {

constexpr std::size_t MostListed = 10;

/// How many letters must be inserted, removed or changed to make one word into the other.
std::size_t EditDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (char const letter : from) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < to.size(); ++j) {
            std::size_t const changed = diagonal + (letter == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

} // namespace

std::string Suggestion(std::string_view word, std::vector<std::string> const& names) {
    auto const distance = [&](std::string const& name) {
        return name.starts_with(word) ? 0 : EditDistance(word, name);
    };
    auto const nearest = std::min_element(names.begin(), names.end(), [&](auto const& left, auto const& right) {
        return distance(left) < distance(right);
    });
    if (nearest != names.end() && distance(*nearest) <= 2 && distance(*nearest) < word.size() - 1) {
        return fmt::format("; is {} meant?", *nearest);
    }
    return names.empty() || names.size() > MostListed ? "" : fmt::format("; there are: {}", fmt::join(names, ", "));
}

} // namespace harvlink::words
