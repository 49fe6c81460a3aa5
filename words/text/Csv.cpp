#include "words/text/Csv.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include <fmt/format.h>

#include "words/text/InputError.h"
#include "words/text/Path.h"
#include "words/text/Text.h"

namespace harvlink::words {

namespace {

constexpr std::size_t MostFaultsShown = 20;

std::string WithoutQuoted(std::string_view line) {
    std::string bare;
    bool isQuoted = false;
    for (char const character : line) {
        isQuoted = isQuoted != (character == '"');
        bare += isQuoted ? "" : std::string(1, character);
    }
    return bare;
}

/// Where a comma is the decimal sign, spreadsheets separate cells by semicolons, as the header line shows.
char SeparatorOf(std::string_view text) {
    for (std::string_view const line : Split(text, '\n')) {
        bool const isHeader = !line.starts_with('#') && !TrimBlanks(line).empty();
        if (isHeader) {
            std::string const bare = WithoutQuoted(line);
            return bare.find(';') != bare.npos && bare.find(',') == bare.npos ? ';' : ',';
        }
    }
    return ',';
}

class CsvReader {
public:
    CsvReader(std::string const& file, std::string_view text)
        : file_(file), text_(text), separator_(SeparatorOf(text)), cellEnd_{separator_, '\n'} {}

    std::vector<CsvRow> Read() {
        std::vector<CsvRow> rows;
        while (at_ < text_.size()) {
            if (text_[at_] == '#') {
                SkipLine();
                continue;
            }
            CsvRow row = ReadRow();
            if (row.cells.size() > 1 || !row.cells[0].empty()) {
                rows.push_back(std::move(row));
            }
        }
        return rows;
    }

private:
    void SkipLine() {
        at_ = std::min(text_.find('\n', at_), text_.size() - 1) + 1;
        ++line_;
    }

    CsvRow ReadRow() {
        CsvRow row{line_, {}};
        bool more = true;
        while (more) {
            row.cells.push_back(ReadCell());
            more = at_ < text_.size() && text_[at_] == separator_;
            at_ += at_ < text_.size() ? 1 : 0;
        }
        ++line_;
        return row;
    }

    std::string ReadCell() {
        std::size_t const start = text_.find_first_not_of(" \t", at_);
        if (start != std::string_view::npos && text_[start] == '"') {
            at_ = start + 1;
            return ReadQuoted();
        }
        std::size_t const end = std::min(text_.find_first_of(cellEnd_, at_), text_.size());
        std::string_view const cell = text_.substr(at_, end - at_);
        at_ = end;
        return std::string(TrimBlanks(cell));
    }

    std::string ReadQuoted() {
        std::string cell;
        std::size_t const firstLine = line_;
        for (; at_ < text_.size(); ++at_) {
            if (text_[at_] == '"') {
                if (text_.substr(at_, 2) != "\"\"") {
                    return FinishQuoted(std::move(cell));
                }
                ++at_;
            }
            line_ += text_[at_] == '\n' ? 1 : 0;
            cell += text_[at_];
        }
        throw InputError(fmt::format("{}:{}: a quote is not closed", file_, firstLine));
    }

    std::string FinishQuoted(std::string cell) {
        ++at_;
        std::size_t const end = std::min(text_.find_first_of(cellEnd_, at_), text_.size());
        if (!TrimBlanks(text_.substr(at_, end - at_)).empty()) {
            throw InputError(fmt::format("{}:{}: text after a closing quote", file_, line_));
        }
        at_ = end;
        return cell;
    }

    std::string const& file_;
    std::string_view text_;
    char separator_;
    std::string cellEnd_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
};

} // namespace

std::vector<CsvRow> ParseCsv(std::string const& file, std::string_view text) {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(ByteOrderMark)) {
        text.remove_prefix(ByteOrderMark.size());
    }
    return CsvReader(file, text).Read();
}

std::string CsvCell(std::string_view text) {
    bool const isBare = text.find_first_of(",;\"\n\r#") == std::string_view::npos && TrimBlanks(text) == text;
    if (isBare) {
        return std::string(text);
    }
    std::string quoted = "\"";
    for (char const character : text) {
        quoted += character == '"' ? "\"\"" : std::string(1, character);
    }
    return quoted + "\"";
}

void ForEachRow(std::string const& file, std::vector<CsvRow> const& rows,
                std::function<void(CsvRow const&)> const& read) {
    std::string faults;
    std::size_t count = 0;
    for (CsvRow const& row : rows) {
        try {
            read(row);
        } catch (InputError const& error) {
            if (++count <= MostFaultsShown) {
                faults += fmt::format("{}{}:{}: {}", faults.empty() ? "" : "\n", file, row.line, error.what());
            }
        }
    }
    if (count > MostFaultsShown) {
        faults += fmt::format("\nand {} more", count - MostFaultsShown);
    }
    if (!faults.empty()) {
        throw InputError(faults);
    }
}

std::string ReadTextFile(std::string const& path) {
    std::error_code error;
    if (std::filesystem::is_directory(PathOf(path), error)) {
        throw InputError(fmt::format("can't read {}: it is a folder", path));
    }
    errno = 0;
    std::ifstream file(PathOf(path), std::ios::binary);
    std::ostringstream text;
    if (file.is_open() && file.peek() != std::ifstream::traits_type::eof()) {
        text << file.rdbuf();
    }
    if (!file.is_open() || file.bad() || text.fail()) {
        std::string const reason = errno == 0 ? "" : ": " + std::generic_category().message(errno);
        throw InputError(fmt::format("can't read {}{}", path, reason));
    }
    return text.str();
}

} // namespace harvlink::words
