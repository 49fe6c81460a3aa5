#include "words/text/CharacterWidth.h"

#include <clocale>
#include <cwchar>

namespace harvlink::words {

CharacterWidth::CharacterWidth() {
    static locale_t const utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    former_ = utf8 == nullptr ? nullptr : ::uselocale(utf8);
}

CharacterWidth::~CharacterWidth() {
    if (former_ != nullptr) {
        ::uselocale(static_cast<locale_t>(former_));
    }
}

int CharacterWidth::Of(char32_t code) {
    bool const isAscii = code < 0x7F;
    return isAscii ? (code < ' ' ? -1 : 1) : ::wcwidth(static_cast<wchar_t>(code));
}

} // namespace harvlink::words
