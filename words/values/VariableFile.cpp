#include "words/values/VariableFile.h"

#include <fmt/format.h>

#include "words/text/Csv.h"

namespace harvlink::words {

namespace {

bool IsHeader(CsvRow const& row) {
    return row.cells.size() == 2 && LowerCase(row.cells[0]) == "variable" && LowerCase(row.cells[1]) == "value";
}

VariableAssignment ReadRow(CsvRow const& row) {
    if (row.cells.size() != 2) {
        bool const isOtherSeparator = row.cells.size() == 1 && row.cells[0].find(';') != std::string::npos;
        throw InputError(fmt::format("{} cells instead of 2{}", row.cells.size(),
                                     isOtherSeparator ? "; the header line separates them by a comma" : ""));
    }
    VariableAddress const address = ParseVariable(row.cells[0]);
    return {address, ParseVariableValue(address.kind, row.cells[1])};
}

} // namespace

std::vector<VariableAssignment> ParseVariableFile(std::string const& file, std::string_view text) {
    std::vector<CsvRow> rows = ParseCsv(file, text);
    if (rows.empty() || !IsHeader(rows.front())) {
        throw InputError(fmt::format("{}:1: the header line 'variable,value' is missing", file));
    }
    rows.erase(rows.begin());
    std::vector<VariableAssignment> variables;
    ForEachRow(file, rows, [&](CsvRow const& row) { variables.push_back(ReadRow(row)); });
    return variables;
}

std::string FormatVariableFile(std::vector<VariableAssignment> const& variables) {
    std::string text = "variable,value\n";
    for (VariableAssignment const& variable : variables) {
        text += fmt::format("{},{}\n", VariableName(variable.address), CsvCell(FormatVariableValue(variable.value)));
    }
    return text;
}

} // namespace harvlink::words
