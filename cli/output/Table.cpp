#include "cli/output/Table.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <vector>

#include <fmt/color.h>
#include <fmt/format.h>

#include "words/text/Printable.h"
#include "words/text/Text.h"

namespace harvlink::cli {

std::string Label(std::string_view key) {
    std::string label(key);
    std::replace(label.begin(), label.end(), '_', ' ');
    if (!label.empty()) {
        label[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(label[0])));
    }
    return label;
}

std::string CellText(Json const& value) {
    if (value.is_null()) {
        return "-";
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "yes" : "no";
    }
    if (value.is_string()) {
        return Printable(value.get<std::string>());
    }
    if (value.is_number_float()) {
        return fmt::format("{}", value.get<double>());
    }
    if (value.is_array()) {
        std::string text;
        for (Json const& element : value) {
            text += (text.empty() ? "" : ", ") + CellText(element);
        }
        return text;
    }
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool IsTable(Json const& value) {
    return value.is_array() && !value.empty() && value.front().is_object();
}

namespace {

constexpr std::string_view Gap = "  ";

using Cells = std::vector<std::string>;

struct Column {
    std::size_t width = 0;
    bool isNumeric = true;
};

std::string Line(Cells const& cells, std::vector<Column> const& columns) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        std::string_view const gap = i == 0 ? "" : Gap;
        bool const isLast = i + 1 == cells.size();
        line += gap;
        line += columns[i].isNumeric ? PadLeft(cells[i], columns[i].width)
                                     : PadRight(cells[i], isLast ? 0 : columns[i].width);
    }
    return line;
}

std::string Rows(Json const& rows, bool bold) {
    Cells header;
    for (auto const& [key, value] : rows.front().items()) {
        header.push_back(Label(key));
    }
    std::vector<Column> columns(header.size());
    std::vector<Cells> lines{header};
    for (Json const& row : rows) {
        Cells cells;
        for (auto const& [key, value] : row.items()) {
            columns.at(cells.size()).isNumeric &= value.is_number() || value.is_null();
            cells.push_back(CellText(value));
        }
        lines.push_back(cells);
    }
    for (Cells const& cells : lines) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            columns[i].width = std::max(columns[i].width, ColumnsOf(cells[i]));
        }
    }
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string const line = Line(lines[i], columns);
        text += (bold && i == 0 ? fmt::format(fmt::emphasis::bold, "{}", line) : line) + "\n";
    }
    return text;
}

void CollectFields(Json const& record, std::vector<std::pair<std::string, std::string>>& fields) {
    for (auto const& [key, value] : record.items()) {
        if (value.is_object()) {
            CollectFields(value, fields);
        } else if (!IsTable(value)) {
            fields.emplace_back(Label(key), CellText(value));
        }
    }
}

std::string Fields(Json const& record, bool bold) {
    std::vector<std::pair<std::string, std::string>> fields;
    CollectFields(record, fields);
    std::size_t width = 0;
    for (auto const& [label, text] : fields) {
        width = std::max(width, label.size());
    }
    std::string lines;
    for (auto const& [label, text] : fields) {
        lines += (text.empty() ? label : fmt::format("{:<{}}{}{}", label, width, Gap, text)) + "\n";
    }
    for (auto const& [key, value] : record.items()) {
        if (IsTable(value)) {
            lines += (lines.empty() ? "" : "\n") + Rows(value, bold);
        }
    }
    return lines;
}

} // namespace

std::string FormatTable(Json const& document, bool bold) {
    if (document.is_object()) {
        return Fields(document, bold);
    }
    if (IsTable(document)) {
        return Rows(document, bold);
    }
    return document.empty() && document.is_array() ? "none\n" : CellText(document) + "\n";
}

} // namespace harvlink::cli
