#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace harvlink::words {

/// The text on one line and without anything that could control the user's terminal or change the order of what is read:
/// control characters (C0, DEL and C1), direction marks and what has no glyph become '?', and a byte that is not part of
/// UTF-8 becomes "\x" and two hexadecimal digits.
std::string Printable(std::string_view text);

/// The same for a text of several lines: line feeds and tabs stay, and a carriage return before a line feed is left out.
std::string PrintableLines(std::string_view text);

/// The text of a JSON document with such characters as escapes: the values stay the same.
std::string PrintableJson(std::string_view json);

/// The columns that a printable text takes on a terminal: two for a wide character, none for a combining one.
std::size_t ColumnsOf(std::string_view text);

/// As much of the start of a printable text as fits into so many columns, never half a character.
std::string_view FirstColumns(std::string_view text, std::size_t columns);

/// Fills a printable text up with blanks.
std::string PadRight(std::string_view text, std::size_t columns);
std::string PadLeft(std::string_view text, std::size_t columns);

} // namespace harvlink::words
