#include "words/text/Encoding.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <mutex>

#include <fmt/format.h>

#include "words/text/CharacterConverter.h"
#include "words/text/Text.h"
#include "words/text/Utf8.h"

namespace harvlink::words {

namespace {

constexpr std::size_t EscapeSize = 4; ///< of "\xE9"
constexpr char const* Utf8 = "UTF-8";

/// Only those of which Python and the C library have the same table, but for what Codec leaves out.
constexpr std::array<Named<char const*>, 8> Encodings{{{"utf-8", Utf8},
                                                       {"latin-1", "ISO-8859-1"},
                                                       {"cp1250", "CP1250"},
                                                       {"cp1251", "CP1251"},
                                                       {"cp1252", "CP1252"},
                                                       {"cp932", "CP932"},
                                                       {"gbk", "GBK"},
                                                       {"cp949", "CP949"}}};

/// The characters that an encoding has, as the C library and Python agree on them.
class Codec {
public:
    explicit Codec(char const* encoding)
        : decoder_(encoding, Utf8),
          encoder_(Utf8, encoding),
          isSingleByte_(std::none_of(TwoByteEncodings.begin(), TwoByteEncodings.end(),
                                     [&](std::string_view name) { return name == encoding; })) {}

    /// Takes the bytes of the first character off `bytes` and returns it in UTF-8; empty if none begins there.
    std::string TakeCharacter(std::string_view& bytes) {
        std::string_view left = bytes;
        std::string character = decoder_.TakeCharacter(left);
        std::string_view const taken = bytes.substr(0, bytes.size() - left.size());
        if (IsStray(taken) || Whole(encoder_, character) != taken) {
            return {};
        }
        bytes = left;
        return character;
    }

    /// The bytes of a character; empty if the encoding does not have it.
    std::string BytesOf(std::string_view character) {
        std::string bytes = Whole(encoder_, character);
        bool const isTaken = !IsStray(bytes) && Whole(decoder_, bytes) == character;
        return isTaken ? bytes : "";
    }

private:
    static constexpr std::array<std::string_view, 3> TwoByteEncodings{"CP932", "GBK", "CP949"};

    static std::string Whole(CharacterConverter& converter, std::string_view text) {
        std::string converted = converter.TakeCharacter(text);
        return text.empty() ? converted : "";
    }

    /// What extensions of the two-byte encodings use for one character each, and not all of them for the same one.
    bool IsStray(std::string_view bytes) const {
        constexpr unsigned char AfterLeadBytes = 0xFD;
        auto const first = static_cast<unsigned char>(bytes.empty() ? '\0' : bytes[0]);
        return !isSingleByte_ && bytes.size() == 1 && (first == 0x80 || first == 0xA0 || first >= AfterLeadBytes);
    }

    CharacterConverter decoder_;
    CharacterConverter encoder_;
    bool isSingleByte_ = false;
};

bool BeginsEscape(std::string_view text) {
    auto const isDigit = [&](std::size_t i) { return std::isxdigit(static_cast<unsigned char>(text[i])) != 0; };
    return text.size() >= EscapeSize && text[0] == '\\' && text[1] == 'x' && isDigit(2) && isDigit(3);
}

std::string Escape(char byte) {
    return fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
}

/// Decodes with `take`, which takes the first character off a text and returns it in UTF-8, or returns nothing.
template <typename Take>
std::string DecodeWith(std::string_view bytes, Take const& take) {
    std::string text;
    while (!bytes.empty()) {
        std::string character = BeginsEscape(bytes) ? std::string() : take(bytes);
        if (character.empty()) {
            character = Escape(bytes[0]);
            bytes.remove_prefix(1);
        }
        text += character;
    }
    return text;
}

std::string TakeUtf8(std::string_view& bytes) {
    Utf8Character const character = FirstUtf8Character(bytes);
    if (!character.isValid) {
        return {};
    }
    bytes.remove_prefix(character.bytes.size());
    return std::string(character.bytes);
}

/// Encodes with `convert`, which gets the bytes of one character and returns those of the encoding.
template <typename Convert>
std::string EncodeWith(std::string_view text, Convert const& convert) {
    std::string bytes;
    while (!text.empty()) {
        if (BeginsEscape(text)) {
            bytes += static_cast<char>(std::stoi(std::string(text.substr(2, 2)), nullptr, 16));
            text.remove_prefix(EscapeSize);
            continue;
        }
        Utf8Character const character = FirstUtf8Character(text);
        bytes += character.isValid && character.code > 0x7F ? convert(character.bytes) : std::string(character.bytes);
        text.remove_prefix(character.bytes.size());
    }
    return bytes;
}

struct Current {
    std::mutex mutex;
    TextEncoding encoding;
};

Current& CurrentEncoding() {
    static Current current;
    return current;
}

/// Null: that of the process.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): the texts of a thread have one encoding
thread_local TextEncoding const* encodingOfThread = nullptr;

} // namespace

std::vector<std::string_view> TextEncoding::Names() {
    std::vector<std::string_view> names;
    std::transform(Encodings.begin(), Encodings.end(), std::back_inserter(names),
                   [](auto const& named) { return named.name; });
    return names;
}

TextEncoding::TextEncoding(std::string_view name) : systemName_(ParseName(Encodings, name, "known encoding")) {
    auto const* const found =
        std::find_if(Encodings.begin(), Encodings.end(), [&](auto const& named) { return named.value == systemName_; });
    name_ = found->name;
}

std::string TextEncoding::Decode(std::string_view bytes) const {
    // Most texts are plain ASCII, which all of the encodings have as it is; a backslash may begin an escape.
    if (std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte < 0x80 && byte != '\\'; })) {
        return std::string(bytes);
    }
    if (std::string_view(systemName_) == Utf8) {
        return DecodeWith(bytes, TakeUtf8);
    }
    Codec codec(systemName_);
    return DecodeWith(bytes, [&](std::string_view& left) { return codec.TakeCharacter(left); });
}

std::string TextEncoding::Encode(std::string_view text) const {
    if (std::string_view(systemName_) == Utf8) {
        return EncodeWith(text, [](std::string_view character) { return std::string(character); });
    }
    Codec codec(systemName_);
    return EncodeWith(text, [&](std::string_view character) {
        std::string bytes = codec.BytesOf(character);
        if (bytes.empty()) {
            throw InputError(fmt::format("'{}' is not in the encoding {}", character, name_));
        }
        return bytes;
    });
}

ThreadEncoding::ThreadEncoding(TextEncoding const& encoding) : encoding_(encoding), former_(encodingOfThread) {
    encodingOfThread = &encoding_;
}

ThreadEncoding::~ThreadEncoding() {
    encodingOfThread = former_;
}

TextEncoding ControllerEncoding() {
    if (encodingOfThread != nullptr) {
        return *encodingOfThread;
    }
    Current& current = CurrentEncoding();
    std::lock_guard const lock(current.mutex);
    return current.encoding;
}

void SetControllerEncoding(TextEncoding const& encoding) {
    Current& current = CurrentEncoding();
    std::lock_guard const lock(current.mutex);
    current.encoding = encoding;
}

std::string ControllerText(std::string_view field) {
    return ControllerEncoding().Decode(TrimField(field));
}

std::string ControllerBytes(std::string_view text) {
    return ControllerEncoding().Encode(text);
}

} // namespace harvlink::words
