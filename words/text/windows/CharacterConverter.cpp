#include "words/text/CharacterConverter.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>
#include <windows.h>

namespace harvlink::words {
namespace {

constexpr std::array<std::pair<std::string_view, unsigned>, 8> Pages{{{"UTF-8", CP_UTF8},
                                                                      {"ISO-8859-1", 28591},
                                                                      {"CP1250", 1250},
                                                                      {"CP1251", 1251},
                                                                      {"CP1252", 1252},
                                                                      {"CP932", 932},
                                                                      {"GBK", 936},
                                                                      {"CP949", 949}}};

/// Throws std::runtime_error if the system has no such page.
unsigned PageOf(std::string_view encoding) {
    auto const* const page = std::ranges::find(Pages, encoding, [](auto const& each) { return each.first; });
    if (page == Pages.end() || ::IsValidCodePage(page->second) == 0) {
        throw std::runtime_error(fmt::format("this computer can't convert {}", encoding));
    }
    return page->second;
}

std::wstring Widen(unsigned page, std::string_view bytes) {
    std::array<wchar_t, 8> wide{};
    int const size = ::MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    return {wide.data(), static_cast<std::size_t>(std::max(size, 0))};
}

/// Empty if the page does not have the character; one that only looks like it does not count.
std::string Narrow(unsigned page, std::wstring const& wide) {
    std::array<char, 16> bytes{};
    bool const isUtf8 = page == CP_UTF8;
    BOOL isOther = FALSE;
    int const size = ::WideCharToMultiByte(page, isUtf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS, wide.data(),
                                           static_cast<int>(wide.size()), bytes.data(), static_cast<int>(bytes.size()),
                                           nullptr, isUtf8 ? nullptr : &isOther);
    return isOther != FALSE ? std::string() : std::string(bytes.data(), static_cast<std::size_t>(std::max(size, 0)));
}

/// What the tables of this system give to bytes that stand for no character in those of others: a control character, or one
/// of private use.
bool IsPlaceholder(unsigned page, std::wstring const& wide) {
    constexpr unsigned Latin1 = 28591;
    wchar_t const first = wide.front();
    return page != CP_UTF8 &&
           ((page != Latin1 && first >= 0x80 && first < 0xA0) || (first >= 0xE000 && first < 0xF900));
}

/// Characters in UTF-16: one unit, or a pair.
bool IsOne(std::wstring const& wide) {
    return wide.size() == 1 || (wide.size() == 2 && IS_SURROGATE_PAIR(wide[0], wide[1]));
}

} // namespace

CharacterConverter::CharacterConverter(char const* from, char const* to) : from_(PageOf(from)), to_(PageOf(to)) {}

CharacterConverter::~CharacterConverter() = default;

std::string CharacterConverter::Convert(std::string_view bytes) {
    std::wstring const wide = Widen(from_, bytes);
    bool const isCharacter = IsOne(wide) && !IsPlaceholder(from_, wide) && !IsPlaceholder(to_, wide);
    return isCharacter ? Narrow(to_, wide) : "";
}

} // namespace harvlink::words
