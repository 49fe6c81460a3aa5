#include "Input.h"
#include "words/text/Csv.h"
#include "words/text/InputError.h"
#include "words/values/VariableFile.h"

// CSV, and the CSV files of variables: reading a written file gives the same values.

namespace harvlink::fuzz {

using words::CsvCell;
using words::CsvRow;
using words::FormatVariableFile;
using words::InputError;
using words::ParseCsv;
using words::ParseVariableFile;

namespace {

constexpr char const* file = "variables.csv";

std::string Format(std::vector<CsvRow> const& rows) {
    std::string text = "#\n"; // so that a byte order mark in the first cell is not at the start of the file
    for (auto const& row : rows) {
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            text += (i == 0 ? "" : ",") + CsvCell(row.cells[i]);
        }
        text += '\n';
    }
    return text;
}

template <typename Parse, typename Write>
void CheckRoundTrip(Parse const& parse, Write const& write, std::string_view text) {
    std::string written;
    try {
        written = write(parse(file, text));
    } catch (InputError const& error) {
        Require(std::string_view(error.what()).starts_with("variables.csv:"), "an error names the file");
        return;
    }
    Require(write(parse(file, written)) == written, "a written file reads back unchanged");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const text = Input(data, size).TakeText();
    CheckRoundTrip(ParseCsv, Format, text);
    CheckRoundTrip(ParseVariableFile, FormatVariableFile, text);
    return 0;
}

} // namespace harvlink::fuzz
