#include "words/text/CharacterConverter.h"

#include <array>
#include <stdexcept>

#include <fmt/format.h>
#include <iconv.h>

namespace harvlink::words {

CharacterConverter::CharacterConverter(char const* from, char const* to) : handle_(::iconv_open(to, from)) {
    if (handle_ == reinterpret_cast<iconv_t>(-1)) { // NOLINT(performance-no-int-to-ptr): as the C library defines it
        throw std::runtime_error(fmt::format("this computer can't convert {} to {}", from, to));
    }
}

CharacterConverter::~CharacterConverter() {
    ::iconv_close(handle_);
}

std::string CharacterConverter::Convert(std::string_view bytes) {
    std::array<char, 2 * LargestCharacter> to{};
    std::string from(bytes);
    char* in = from.data();
    char* out = to.data();
    std::size_t inLeft = from.size();
    std::size_t outLeft = to.size();
    ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    bool const isWhole = ::iconv(handle_, &in, &inLeft, &out, &outLeft) == 0 && inLeft == 0;
    return isWhole ? std::string(to.data(), to.size() - outLeft) : "";
}

} // namespace harvlink::words
