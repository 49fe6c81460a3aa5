#include "cli/output/CellTable.h"

#include <algorithm>
#include <cctype>

#include <fmt/color.h>
#include <fmt/format.h>

#include "cli/output/Table.h"
#include "words/text/Printable.h"

namespace harvlink::cli {

namespace {

constexpr std::string_view CellGap = "  ";

using LabelledText = std::pair<std::string, std::string>; ///< a label and the text of its value
using CellColumn = std::vector<std::string>; ///< the header comes first

/// Collects the fields of a document. Labels that come twice get numbers.
class FieldsOfDocument {
public:
    explicit FieldsOfDocument(Json const& document) { Add(document, ""); }

    std::vector<LabelledText> const& All() const { return fields_; }

private:
    void Add(Json const& value, std::string const& label) {
        if (value.is_object()) {
            for (auto const& [key, member] : value.items()) {
                Add(member, Label(key));
            }
        } else if (IsTable(value)) {
            for (Json const& row : value) {
                AddRow(row);
            }
        } else if (!label.empty()) {
            bool const isEmptyList = value.is_array() && value.empty();
            Append(label, isEmptyList ? "none" : CellText(value));
        }
    }

    void AddRow(Json const& row) {
        std::string const name = row.empty() ? "" : CellText(row.front());
        std::size_t place = 0;
        for (auto const& [key, value] : row.items()) {
            if (place++ == 0 && row.size() > 1) {
                continue;
            }
            std::string label = key;
            std::ranges::replace(label, '_', ' ');
            bool const isOnly = row.size() == 1;
            Append(isOnly ? Label(key) : row.size() == 2 ? name : fmt::format("{} {}", name, label), CellText(value));
        }
    }

    void Append(std::string const& label, std::string text) {
        std::string unique = label;
        for (int number = 2; std::ranges::count(fields_, unique, &LabelledText::first) > 0; ++number) {
            unique = fmt::format("{} ({})", label, number);
        }
        fields_.emplace_back(std::move(unique), std::move(text));
    }

    std::vector<LabelledText> fields_;
};

std::size_t CellWidth(CellColumn const& column) {
    std::size_t width = 0;
    for (std::string const& text : column) {
        width = std::max(width, ColumnsOf(text));
    }
    return width;
}

/// The labels of all cells, each once. One that a cell has between two others stands there.
CellColumn LabelsOf(std::vector<FieldsOfDocument> const& cells) {
    CellColumn labels{""};
    for (FieldsOfDocument const& fields : cells) {
        auto place = labels.begin() + 1;
        for (LabelledText const& field : fields.All()) {
            auto const found = std::ranges::find(labels, field.first);
            place = (found == labels.end() ? labels.insert(place, field.first) : found) + 1;
        }
    }
    return labels;
}

CellColumn ColumnOf(std::string const& cell, FieldsOfDocument const& fields, CellColumn const& labels) {
    CellColumn column{Printable(cell)};
    for (auto label = labels.begin() + 1; label != labels.end(); ++label) {
        auto const found = std::ranges::find(fields.All(), *label, &LabelledText::first);
        column.push_back(found == fields.All().end() ? "-" : found->second);
    }
    return column;
}

/// The columns from `first` on, as many as fit and at least one. Returns the first that did not.
std::size_t AppendBlock(std::string& text, CellColumn const& labels, std::vector<CellColumn> const& columns,
                        std::size_t first, bool bold, std::size_t width) {
    std::size_t const labelWidth = CellWidth(labels);
    std::size_t last = first;
    for (std::size_t used = labelWidth; last < columns.size(); ++last) {
        used += CellGap.size() + CellWidth(columns[last]);
        if (width > 0 && used > width && last > first) {
            break;
        }
    }
    for (std::size_t row = 0; row < labels.size(); ++row) {
        std::string line = PadRight(labels[row], labelWidth);
        for (std::size_t i = first; i < last; ++i) {
            line += CellGap;
            line += PadRight(columns[i][row], CellWidth(columns[i]));
        }
        line.resize(line.find_last_not_of(' ') + 1);
        text += (bold && row == 0 ? fmt::format(fmt::emphasis::bold, "{}", line) : line) + "\n";
    }
    return last;
}

} // namespace

std::string FormatCells(std::vector<CellDocument> const& cells, bool bold, std::size_t width) {
    std::vector<FieldsOfDocument> fields;
    fields.reserve(cells.size());
    for (CellDocument const& cell : cells) {
        fields.emplace_back(cell.second);
    }
    CellColumn labels = LabelsOf(fields);
    std::vector<CellColumn> columns;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        columns.push_back(ColumnOf(cells[i].first, fields[i], labels));
    }
    if (labels.size() == 1) { // lists without an element
        labels.emplace_back();
        for (std::size_t i = 0; i < cells.size(); ++i) {
            columns[i].emplace_back(cells[i].second.is_null() ? "-" : "none");
        }
    }
    std::string text;
    for (std::size_t next = 0; next < columns.size();) {
        text += text.empty() ? "" : "\n";
        next = AppendBlock(text, labels, columns, next, bold, width);
    }
    return text;
}

} // namespace harvlink::cli
