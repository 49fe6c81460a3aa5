#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace harvlink {

/// One row of a table that gives codes their texts.
template <typename Code>
struct StatusText {
    Code code;
    std::string_view text;
};

/// A table from code to text, sorted by code and complete at compile time, so that a status made by a static constructor
/// of the program finds it too. Does not own its rows.
template <typename Code>
class StatusTable {
public:
    constexpr explicit StatusTable(std::span<StatusText<Code> const> sortedRows) : rows(sortedRows) {}

    constexpr std::optional<std::string_view> Find(Code code) const {
        auto const row = std::ranges::lower_bound(rows, code, {}, &StatusText<Code>::code);
        if (row == rows.end() || row->code != code) {
            return std::nullopt;
        }
        return row->text;
    }

    constexpr std::size_t Size() const { return rows.size(); }

private:
    std::span<StatusText<Code> const> rows;
};

/// Sorts rows by code. Rows with the same code keep their order, because the first of them counts.
template <typename Code, std::size_t count>
consteval std::array<StatusText<Code>, count> SortRows(std::array<StatusText<Code>, count> rows) {
    for (std::size_t end = 1; end < count; ++end) {
        for (std::size_t i = end; i > 0 && rows[i].code < rows[i - 1].code; --i) {
            std::swap(rows[i], rows[i - 1]);
        }
    }
    return rows;
}

} // namespace harvlink
