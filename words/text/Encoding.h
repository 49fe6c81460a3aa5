#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace harvlink::words {

/// The encoding in which a controller has its texts: string variables, names of jobs and files, alarms, contents of files.
/// Inside the program and in all that it shows and reads, texts are UTF-8. A byte that is not part of the encoding, or of the
/// second form of a character that it has twice, is written "\x" and two hexadecimal digits, and reading that gives the byte
/// back; so is a backslash before such an "x", which would otherwise be read as one. So Encode(Decode(bytes)) are the same
/// bytes, whatever they are. Of the two-byte encodings, no single byte from 0x80 on is a character but half-width katakana.
class TextEncoding {
public:
    /// The names, as the setting has them and as Python knows them: "utf-8", which is the default, "latin-1" and so on.
    static std::vector<std::string_view> Names();

    /// Throws InputError if there is no such encoding; upper and lower case are the same.
    explicit TextEncoding(std::string_view name = "utf-8");

    std::string_view Name() const { return name_; }

    /// The text of a controller in UTF-8.
    std::string Decode(std::string_view bytes) const;

    /// The bytes for a controller. Bytes that are not UTF-8 stay as they are. Throws InputError for a character that the
    /// encoding does not have.
    std::string Encode(std::string_view text) const;

private:
    std::string_view name_;
    char const* systemName_; ///< as the C library knows it
};

/// The encoding of the controller that the program works with. One for the whole process, because every text of the
/// controller passes through it and most programs ask one controller at a time. It may be called from any thread.
TextEncoding ControllerEncoding();
void SetControllerEncoding(TextEncoding const& encoding);

/// While it lives, its thread works with a controller of another encoding than that of the process. For programs that ask
/// several controllers at once. They end in the reverse order, on the thread that made them.
class ThreadEncoding {
public:
    explicit ThreadEncoding(TextEncoding const& encoding);
    ThreadEncoding(ThreadEncoding const&) = delete;
    ThreadEncoding& operator=(ThreadEncoding const&) = delete;
    ~ThreadEncoding();

private:
    TextEncoding encoding_;
    TextEncoding const* former_;
};

/// A text of a controller in UTF-8: its field without the zero bytes that fill it up.
std::string ControllerText(std::string_view field);

/// The bytes of a text for a controller.
std::string ControllerBytes(std::string_view text);

} // namespace harvlink::words
