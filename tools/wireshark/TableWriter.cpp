// harvlink_dissector_tables COMMAND-NUMBERS DISSECTOR: prints the dissector with the current tables of the library. It
// parses the header of command numbers, because C++ cannot list the names of an enumeration. The texts come from the
// tables of the library.

#include <array>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <regex>
#include <string>
#include <string_view>

#include "status/ErrorTables.h"
#include "status/MainStatusTable.h"
#include "wire/CommandNumber.h"

namespace harvlink {
namespace {

constexpr std::string_view begin = "-- BEGIN tables";
constexpr std::string_view end = "-- END tables";

std::string ReadFile(char const* path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Quoted(std::string_view text) {
    std::string result = "\"";
    for (char const character : text) {
        result += character == '"' || character == '\\' ? std::string("\\") + character : std::string(1, character);
    }
    return result + "\"";
}

/// Prints the rows `NAME = NUMBER` of an enumeration, or of constants with the same beginning.
void PrintNames(std::string_view table, std::string const& text, std::string const& row) {
    std::cout << "local " << table << " = {\n";
    std::regex const pattern(row);
    for (std::sregex_iterator match(text.begin(), text.end(), pattern); match != std::sregex_iterator(); ++match) {
        std::cout << "    [" << (*match)[2] << "] = " << Quoted((*match)[1].str()) << ",\n";
    }
    std::cout << "}\n";
}

std::string BodyOf(std::string const& header, std::string const& enumeration) {
    auto const start = header.find("enum class " + enumeration);
    return start == std::string::npos ? "" : header.substr(start, header.find("};", start) - start);
}

/// Prints the codes that fit into a reply.
template <typename Code>
void PrintTexts(std::string_view name, StatusTable<Code> const& table) {
    std::cout << "    " << name << " = {\n";
    for (std::int32_t code = 1; code <= UINT16_MAX; ++code) {
        if (auto const text = table.Find(static_cast<Code>(code))) {
            std::cout << "        [" << code << "] = " << Quoted(*text) << ",\n";
        }
    }
    std::cout << "    },\n";
}

void PrintTables(std::string const& header) {
    std::string const decimal = R"((\w+) = (\d+),)";
    PrintNames("COMMANDS", BodyOf(header, "CommandNumber"), decimal);
    PrintNames("ATTRIBUTES", BodyOf(header, "FixedField"), R"((\w+) = (\d+))");
    PrintNames("SERVICES", header, R"( Service(\w+) = (\d+);)");
    PrintNames("FILE_SERVICES", BodyOf(header, "FileServices"), R"((\w+) = (\w+),)");
    std::cout << "local STATUS_TEXTS = {\n";
    PrintTexts("main", MainStatusTable);
    PrintTexts("job", JobErrorTable);
    PrintTexts("file", FileErrorTable);
    PrintTexts("io", IOErrorTable);
    PrintTexts("motion", MotionErrorTable);
    PrintTexts("conversion", ConversionErrorTable);
    PrintTexts("control_group", ControlGroupErrorTable);
    std::cout << "}\n";
}

int Write(char const* commandNumbers, char const* dissectorPath) {
    auto const dissector = ReadFile(dissectorPath);
    auto const from = dissector.find('\n', dissector.find(begin));
    auto const to = dissector.find(end);
    if (from == std::string::npos || to == std::string::npos) {
        std::cerr << dissectorPath << ": does not contain the lines \"" << begin << "\" and \"" << end << "\"\n";
        return 1;
    }
    std::cout << dissector.substr(0, from + 1);
    PrintTables(ReadFile(commandNumbers));
    std::cout << dissector.substr(to);
    return 0;
}

} // namespace
} // namespace harvlink

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "Usage: harvlink_dissector_tables COMMAND-NUMBERS DISSECTOR\n";
        return 2;
    }
    try {
        return harvlink::Write(argv[1], argv[2]);
    } catch (std::exception const& error) {
        std::cerr << "harvlink_dissector_tables: " << error.what() << '\n';
        return 1;
    }
}
