#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/Faults.h"
#include "words/text/Csv.h"
#include "words/text/Encoding.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/FileNames.h"
#include "words/values/PositionText.h"
#include "words/values/SafeName.h"
#include "words/values/SignalText.h"
#include "words/values/VariableFile.h"
#include "words/values/VariableText.h"

namespace harvlink::words {
namespace {

using Texts = std::vector<std::string>;

std::string Join(Texts const& texts) {
    std::string joined;
    for (std::string const& text : texts) {
        joined += (joined.empty() ? "" : "|") + text;
    }
    return joined;
}

/// The result of `parse` for a text, or "error" if it refuses the text.
std::string Outcome(std::function<std::string(std::string const&)> const& parse, std::string const& text) {
    try {
        return parse(text);
    } catch (InputError const&) {
        return "error";
    }
}

struct Row {
    char const* description;
    std::function<std::string(std::string const&)> parse;
    std::string text;
    std::string outcome;
};

std::string Group(std::string const& text) {
    return GroupName(ParseGroup(text));
}
std::string Position(std::string const& text) {
    return FormatPosition(ParsePosition(text));
}
std::string ShortPosition(std::string const& text) {
    return FormatPosition(ParsePosition(text, 1));
}
std::string Byte(std::string const& text) {
    return std::to_string(ParseNumber<std::uint8_t>(text, "byte"));
}
std::string Double(std::string const& text) {
    return fmt::format("{}", ParseNumber<double>(text, "number"));
}
std::string Range(std::string const& text) {
    Texts names;
    for (VariableAddress const address : ParseVariableRange(text)) {
        names.push_back(VariableName(address));
    }
    return Join(names);
}
std::string Assignment(std::string const& text) {
    Texts assignments;
    for (VariableAssignment const& assignment : ParseVariableAssignment(text)) {
        assignments.push_back(VariableName(assignment.address) + "=" + FormatVariableValue(assignment.value));
    }
    return Join(assignments);
}
std::string SignalOf(std::string const& text) {
    SignalName const name = ParseSignal(text);
    return name.address
               ? std::to_string(*name.address)
               : fmt::format("{}:{}.{}", static_cast<int>(name.type), name.group, name.bit ? int{*name.bit} : -1);
}
std::string Kinds(std::string const& text) {
    Texts kinds;
    for (FileType const type : KindsOf(text)) {
        kinds.push_back(ExtensionOf(type));
    }
    return Join(kinds);
}
std::string Cells(std::string const& text) {
    std::string rows;
    for (CsvRow const& row : ParseCsv("f", text)) {
        rows += fmt::format("{}:{};", row.line, Join(row.cells));
    }
    return rows;
}

TEST(TextForms, AreReadOrRefused) {
    std::string const eight = "base:1.5,-2,3,180,0,1e-3,7,8";
    std::vector<Row> const rows{
        {"group", Group, "r1", "R1"},
        {"last groups", Group, "B8", "B8"},
        {"station", Group, "s24", "S24"},
        {"no such robot", Group, "R9", "error"},
        {"no such station", Group, "S25", "error"},
        {"group zero", Group, "R0", "error"},
        {"group without number", Group, "R", "error"},
        {"empty group", Group, "", "error"},
        {"byte", Byte, "0xFf", "255"},
        {"binary", Byte, "0b101", "5"},
        {"byte too large", Byte, "256", "error"},
        {"negative byte", Byte, "-1", "error"},
        {"trailing text", Byte, "1x", "error"},
        {"no digits", Byte, "0x", "error"},
        {"number", Double, "-1.5e3", "-1500"},
        {"not finite", Double, "nan", "error"},
        {"too large", Double, "1e999", "error"},
        {"position", Position, eight, "base:1.5,-2,3,180,0,0.001,7,8,figure=front+upper+flip"},
        {"figure and tool", Position, "USER:3:1,2,3,4,5,6,tool=2,figure=noflip+back+s180+W180",
         "user:3:1,2,3,4,5,6,0,0,tool=2,figure=back+upper+noflip+s180+w180"},
        {"pulses have no figure", Position, "pulse: 1, 2 ,3,4,5,6", "pulse:1,2,3,4,5,6,0,0"},
        {"too few axes", Position, "base:1,2,3,4,5", "error"},
        {"few axes where allowed", ShortPosition, "pulse:7", "pulse:7,0,0,0,0,0,0,0"},
        {"nine axes", Position, eight + ",9", "error"},
        {"no coordinate", Position, "1,2,3,4,5,6", "error"},
        {"user without number", Position, "user:1,2,3,4,5,6", "error"},
        {"number without user", Position, "base:1:1,2,3,4,5,6", "error"},
        {"empty axis", Position, "base:1,,3,4,5,6", "error"},
        {"unknown figure", Position, eight + ",figure=sideways", "error"},
        {"unknown part", Position, eight + ",colour=1", "error"},
        {"one variable", Range, "bp7", "BP7"},
        {"station by its other name", Range, "ex1..SP2", "SP1|SP2"},
        {"range", Range, "B8..B10", "B8|B9|B10"},
        {"short range", Range, "S0..1", "S0|S1"},
        {"backward range", Range, "B2..B1", "error"},
        {"range of two kinds", Range, "B0..I1", "error"},
        {"highest number", Range, "D65535", "D65535"},
        {"number too large", Range, "D65536", "error"},
        {"unknown kind", Range, "X1", "error"},
        {"no number", Range, "B", "error"},
        {"assigned range", Assignment, "B1..2=255", "B1=255|B2=255"},
        {"integer", Assignment, "I1=-32768", "I1=-32768"},
        {"integer too small", Assignment, "I1=-32769", "error"},
        {"short real", Assignment, "R1=0.1", "R1=0.1"},
        {"text with equals sign", Assignment, "S1=a=b", "S1=a=b"},
        {"empty text", Assignment, "S1=", "S1="},
        {"text of 32 bytes", Assignment, "S1=" + std::string(32, 'x'), "S1=" + std::string(32, 'x')},
        {"text of 33 bytes", Assignment, "S1=" + std::string(33, 'x'), "error"},
        {"base position of one axis", Assignment, "BP1=base:5", "BP1=base:5,0,0,0,0,0,0,0,figure=front+upper+flip"},
        {"no assignment", Assignment, "B1", "error"},
        {"address", SignalOf, "10010", "10010"},
        {"class and group", SignalOf, "General-Output:12", "1:12.-1"},
        {"class, group and bit", SignalOf, "pseudo-input:3.7", "11:3.7"},
        {"unknown class", SignalOf, "lamp:1", "error"},
        {"class without group", SignalOf, "general-input:", "error"},
        {"kind by name", Kinds, "main.jbi", "JBI"},
        {"kind alone", Kinds, "dat", "DAT"},
        {"kinds of a glob", Kinds, "*.L*", "LST|LOG"},
        {"unknown kind of file", Kinds, "a.txt", ""},
        {"rows", Cells,
         "\xEF\xBB\xBF"
         "a, b ,\r\n\n# note\n1,2,3",
         "1:a|b|;4:1|2|3;"},
        {"quotes", Cells, "\"a,\"\"b\"\"\",\"c\nd\"\ne", "1:a,\"b\"|c\nd;3:e;"},
        {"quoted number sign", Cells, "\"#a\",1\n#b\nc,#d\n #e", "1:#a|1;3:c|#d;4:#e;"},
        {"open quote", Cells, "a\n\"b", "error"},
        {"text behind a quote", Cells, "\"a\"b", "error"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(Outcome(row.parse, row.text), row.outcome) << row.description << ": " << row.text;
    }
}

TEST(TextForms, ReadBackWhatAVariableFileHolds) {
    std::string const all(reinterpret_cast<char const*>("\x01\xFF a\"b,\r\n#\0 "), 12);
    std::vector<VariableAssignment> const written{{{VariableKind::String, 1}, all},
                                                  {{VariableKind::String, 2}, std::string()},
                                                  {{VariableKind::String, 3}, std::string("#x")},
                                                  {{VariableKind::Real, 4}, 1.0F / 3.0F},
                                                  {{VariableKind::Byte, 5}, std::uint8_t{200}}};
    std::vector<VariableAssignment> const read = ParseVariableFile("f", FormatVariableFile(written));
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].address, written[i].address);
        EXPECT_EQ(FormatVariableValue(read[i].value), FormatVariableValue(written[i].value));
        EXPECT_EQ(read[i].value.index(), written[i].value.index());
    }
}

TEST(TextForms, NameEveryWrongLineOfAFile) {
    std::string const faults = FaultsOf([] { ParseVariableFile("v", "variable,value\nB1,1\n\nB1,256\nQ,1\nB1\n"); });
    for (char const* const line : {"v:4: ", "v:5: ", "v:6: "}) {
        EXPECT_NE(faults.find(line), std::string::npos) << line << faults;
    }
    EXPECT_EQ(faults.find("v:2"), std::string::npos);
}

TEST(TextForms, KeepAControllersNamesFromLeadingElsewhere) {
    for (std::string const& name : {std::string(".."), std::string("."), std::string(), std::string("a/b.JBI"),
                                    std::string("/etc/x.DAT"), std::string("a\0.JBI", 6)}) {
        std::string const local = LocalName(name);
        EXPECT_TRUE(local.empty() || local[0] == '%' || local[1] == '%') << local;
        EXPECT_EQ(OriginalName(local), name);
    }
    EXPECT_EQ(LocalName("A..B.JBI"), "A..B.JBI");
    EXPECT_EQ(LocalName("\u6EB6.JBI"), "\u6EB6.JBI");
    EXPECT_EQ(LocalName("\u009b.JBI"), "%C2%9B.JBI");
    EXPECT_EQ(LocalName(std::string(300, 'A')).size(), LongestSafeName);
    EXPECT_NE(LocalName(std::string(300, 'A')), LocalName(std::string(301, 'A')));
}

TEST(Printable, LeavesNothingThatSteersATerminal) {
    struct Case {
        std::string_view text;
        std::string_view printable;
        std::size_t columns;
    };
    std::array<Case, 9> const cases{{{"a\x1b[2J\x7f", "a?[2J?", 6},
                                     {"a\u009b31m", "a?31m", 5}, // C1, two bytes in UTF-8
                                     {"x\u202Ey\u2066z\u200F", "x?y?z?", 6},
                                     {"caf\xE9", "caf\\xE9", 7},
                                     {"\xC0\x9B\xED\xA0\x80", "\\xC0\\x9B\\xED\\xA0\\x80", 20},
                                     {"\xF0\x9F", "\\xF0\\x9F", 8},
                                     {"Z\u00FCrich", "Z\u00FCrich", 6},
                                     {"\u6EB6\u63A5", "\u6EB6\u63A5", 4},
                                     {"e\u0301\U000E0041", "e\u0301?", 2}}};
    for (Case const& each : cases) {
        std::string const printable = Printable(each.text);
        EXPECT_EQ(printable, each.printable);
        EXPECT_EQ(ColumnsOf(printable), each.columns) << printable;
        EXPECT_EQ(ColumnsOf(PadRight(printable, 30)), 30U) << printable;
    }
    EXPECT_EQ(PrintableLines("a\r\n\tb\rc\n"), "a\n\tb?c\n");
    EXPECT_EQ(FirstColumns("\u6EB6\u63A5", 3), "\u6EB6");
}

TEST(Encoding, GivesEveryByteBack) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    bytes += "\\x41 \\\\xE9 \\\xE9 \\x";
    for (std::string_view const name : TextEncoding::Names()) {
        TextEncoding const encoding(name);
        EXPECT_EQ(encoding.Encode(encoding.Decode(bytes)), bytes) << name;
    }
    struct Case {
        char const* encoding;
        std::string_view bytes;
        std::string_view text;
    };
    std::array<Case, 9> const cases{{{"utf-8", "Z\u00FC \xE9\\x41", "Z\u00FC \\xE9\\x5Cx41"},
                                     {"latin-1", "\xE9\xC3\xBC", "\u00E9\u00C3\u00BC"},
                                     {"CP932", "\x97n\x90\xDA\x81", "\u6EB6\u63A5\\x81"},
                                     {"cp932", "\x80\xA0\xFD\xFE\xFF", "\\x80\\xA0\\xFD\\xFE\\xFF"},
                                     {"cp932", "\xFA@\xEE\xEF", "\u2170\\xEE\\xEF"},
                                     {"gbk", "\x80", "\\x80"},
                                     {"gbk", "\xBA\xB8\xBD\xD3", "\u710A\u63A5"},
                                     {"cp949", "\xBF\xEB\xC1\xA2", "\uC6A9\uC811"},
                                     {"cp1252", "\x80\x81", "\u20AC\\x81"}}};
    for (Case const& each : cases) {
        EXPECT_EQ(TextEncoding(each.encoding).Decode(each.bytes), each.text);
        EXPECT_EQ(TextEncoding(each.encoding).Encode(each.text), each.bytes);
    }
    EXPECT_THROW(TextEncoding("latin-1").Encode("\u6EB6"), InputError);
    for (char const* const nearlyThere : {"\u00A5", "\u301C", "\u0080", "\uF8F1"}) {
        EXPECT_THROW(TextEncoding("cp932").Encode(nearlyThere), InputError) << nearlyThere;
    }
    EXPECT_THROW(TextEncoding("ebcdic"), InputError);
}

TEST(Csv, MayBeSeparatedBySemicolons) {
    auto const variables =
        ParseVariableFile("v", "# made by a spreadsheet, with care\nvariable;value\nB1;2\nS1;\"a;b,c\"\n");
    ASSERT_EQ(variables.size(), 2U);
    EXPECT_EQ(std::get<std::string>(variables[1].value), "a;b,c");
    for (auto const& [text, part] : std::array<std::pair<char const*, char const*>, 2>{
             {{"variable;value\nR1;0,5\n", "v:2: '0,5' is not a valid real number; the decimal sign is a point"},
              {"variable,value\nB1;2\n", "v:2: 1 cells instead of 2; the header line separates them by a comma"}}}) {
        try {
            ParseVariableFile("v", text);
            ADD_FAILURE() << text;
        } catch (InputError const& error) {
            EXPECT_STREQ(error.what(), part);
        }
    }
    std::string const commented = FormatVariableFile({{{VariableKind::String, 1}, std::string("#1")}});
    EXPECT_EQ(std::get<std::string>(ParseVariableFile("v", commented)[0].value), "#1");
    EXPECT_EQ(Cells("\"a;b\"\n" + CsvCell("c;d") + "\n"), "1:a;b;2:c;d;") << "a quoted semicolon separates nothing";
}

} // namespace
} // namespace harvlink::words
