#include "words/text/Printable.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "words/text/CharacterWidth.h"
#include "words/text/Utf8.h"

namespace harvlink::words {

namespace {

/// Marks that turn or hide what stands beside them, and separators of lines. The C library gives them a width, as they print.
constexpr std::array<std::pair<char32_t, char32_t>, 8> Marks{{{0x61C, 0x61C},
                                                              {0x180E, 0x180E},
                                                              {0x200B, 0x200F},
                                                              {0x2028, 0x202E},
                                                              {0x2060, 0x206F},
                                                              {0xFEFF, 0xFEFF},
                                                              {0xFFF9, 0xFFFB},
                                                              {0xE0000, 0xE007F}}};

bool IsMark(char32_t code) {
    return std::any_of(Marks.begin(), Marks.end(),
                       [code](auto const& range) { return code >= range.first && code <= range.second; });
}

bool IsUnprintable(char32_t code) {
    return IsMark(code) || CharacterWidth::Of(code) < 0;
}

void AppendPrintable(std::string& printable, Utf8Character const& character) {
    if (!character.isValid) {
        printable += fmt::format("\\x{:02X}", static_cast<unsigned char>(character.bytes[0]));
    } else if (IsUnprintable(character.code)) {
        printable += '?';
    } else {
        printable += character.bytes;
    }
}

} // namespace

std::string Printable(std::string_view text) {
    CharacterWidth const widths;
    std::string printable;
    ForEachUtf8Character(text, [&](Utf8Character const& character) { AppendPrintable(printable, character); });
    return printable;
}

std::string PrintableLines(std::string_view text) {
    CharacterWidth const widths;
    std::string printable;
    ForEachUtf8Character(text, [&](Utf8Character const& character) {
        bool const isLineEnd = character.bytes == "\r" && character.bytes.data() + 1 != text.data() + text.size() &&
                               *std::next(character.bytes.data()) == '\n';
        if (character.bytes == "\n" || character.bytes == "\t") {
            printable += character.bytes;
        } else if (!isLineEnd) {
            AppendPrintable(printable, character);
        }
    });
    return printable;
}

std::string PrintableJson(std::string_view json) {
    constexpr char32_t FirstOfPairs = 0x10000;
    CharacterWidth const widths;
    std::string printable;
    ForEachUtf8Character(json, [&](Utf8Character const& character) {
        if (character.bytes == "\n" || !IsUnprintable(character.code)) {
            printable += character.bytes;
        } else if (character.code < FirstOfPairs) {
            printable += fmt::format("\\u{:04x}", static_cast<unsigned>(character.code));
        } else { // as JSON has it: the two halves of UTF-16
            unsigned const rest = static_cast<unsigned>(character.code) - FirstOfPairs;
            printable += fmt::format("\\u{:04x}\\u{:04x}", 0xD800 + (rest >> 10U), 0xDC00 + (rest & 0x3FFU));
        }
    });
    return printable;
}

std::size_t ColumnsOf(std::string_view text) {
    CharacterWidth const widths;
    std::size_t columns = 0;
    ForEachUtf8Character(text, [&](Utf8Character const& character) {
        columns += static_cast<std::size_t>(std::max(0, CharacterWidth::Of(character.code)));
    });
    return columns;
}

std::string_view FirstColumns(std::string_view text, std::size_t columns) {
    CharacterWidth const widths;
    std::size_t size = 0;
    std::size_t used = 0;
    ForEachUtf8Character(text, [&](Utf8Character const& character) {
        used += static_cast<std::size_t>(std::max(0, CharacterWidth::Of(character.code)));
        size += used <= columns ? character.bytes.size() : 0;
    });
    return text.substr(0, size);
}

std::string PadRight(std::string_view text, std::size_t columns) {
    std::size_t const used = ColumnsOf(text);
    return std::string(text) + std::string(columns > used ? columns - used : 0, ' ');
}

std::string PadLeft(std::string_view text, std::size_t columns) {
    std::size_t const used = ColumnsOf(text);
    return std::string(columns > used ? columns - used : 0, ' ') + std::string(text);
}

} // namespace harvlink::words
