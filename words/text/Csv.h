#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace harvlink::words {

struct CsvRow {
    std::size_t line = 0; ///< of the file, from 1, where the row begins
    std::vector<std::string> cells;
};

/// Reads comma separated values, or values separated by semicolons if the first line has these and no comma. Cells may be quoted, with "" for a quote and with line ends inside. Blanks around bare
/// cells, empty lines, lines that begin with '#' and a byte order mark are skipped. Throws InputError, naming `file`.
std::vector<CsvRow> ParseCsv(std::string const& file, std::string_view text);

/// A cell as ParseCsv reads it back, quoted if it must be.
std::string CsvCell(std::string_view text);

/// Calls `read` for each row. If it throws InputError for some rows, throws one InputError that names their "file:line".
void ForEachRow(std::string const& file, std::vector<CsvRow> const& rows,
                std::function<void(CsvRow const&)> const& read);

/// Throws InputError if the file can't be read.
std::string ReadTextFile(std::string const& path);

} // namespace harvlink::words
