#include "words/text/CharacterWidth.h"

#include <algorithm>
#include <array>
#include <utility>

#include <windows.h>

namespace harvlink::words {
namespace {

/// What takes two columns, as the C++ standard estimates it for std::format.
constexpr std::array<std::pair<char32_t, char32_t>, 14> Wide{{{0x1100, 0x115F},
                                                              {0x2329, 0x232A},
                                                              {0x2E80, 0x303E},
                                                              {0x3040, 0xA4CF},
                                                              {0xAC00, 0xD7A3},
                                                              {0xF900, 0xFAFF},
                                                              {0xFE10, 0xFE19},
                                                              {0xFE30, 0xFE6F},
                                                              {0xFF00, 0xFF60},
                                                              {0xFFE0, 0xFFE6},
                                                              {0x1F300, 0x1F64F},
                                                              {0x1F900, 0x1F9FF},
                                                              {0x20000, 0x2FFFD},
                                                              {0x30000, 0x3FFFD}}};

/// The classes of a character that Windows knows. @param kind one of CT_CTYPE1, CT_CTYPE2 and CT_CTYPE3
WORD TypeOf(char32_t code, DWORD kind) {
    auto const unit = static_cast<wchar_t>(code);
    WORD type = 0;
    return code <= 0xFFFF && ::GetStringTypeW(kind, &unit, 1, &type) != 0 ? type : WORD{0};
}

} // namespace

CharacterWidth::CharacterWidth() = default;
CharacterWidth::~CharacterWidth() = default;

int CharacterWidth::Of(char32_t code) {
    if (code < 0x80) {
        return code < ' ' || code == 0x7F ? -1 : 1;
    }
    if ((TypeOf(code, CT_CTYPE1) & C1_CNTRL) != 0) {
        return -1;
    }
    // A letter with an accent counts as such a mark too.
    if ((TypeOf(code, CT_CTYPE3) & (C3_NONSPACING | C3_ALPHA)) == C3_NONSPACING) {
        return 0;
    }
    bool const isWide =
        std::ranges::any_of(Wide, [code](auto const& range) { return code >= range.first && code <= range.second; });
    return isWide ? 2 : 1;
}

} // namespace harvlink::words
