#pragma once

namespace harvlink::words {

/// While it lives, this thread has the widths of UTF-8, whatever locale the user has.
class CharacterWidth {
public:
    CharacterWidth();
    CharacterWidth(CharacterWidth const&) = delete;
    CharacterWidth& operator=(CharacterWidth const&) = delete;
    ~CharacterWidth();

    /// Columns of a character; -1 for what can't be printed.
    static int Of(char32_t code);

private:
    void* former_ = nullptr;
};

} // namespace harvlink::words
