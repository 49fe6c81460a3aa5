#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace harvlink::gateway::sparkplug {

/// The number of a session, bdSeq: 0 to 255, one more for each CONNECT, by which hosts know which birth a death ends. It goes on
/// after a restart, so it is kept in a file.
class SessionCounter {
public:
    /// A file that is missing or damaged begins at 0. Without a file the number lasts as long as the object.
    explicit SessionCounter(std::filesystem::path file);

    /// Takes the next number and writes it down, before the CONNECT that carries it. Returns false if it can't be written: the
    /// number is good all the same.
    bool Begin();
    /// The CONNECT was never sent: the next session has the same number.
    void TakeBack();

    std::uint8_t Number() const { return last_.value_or(0); }

private:
    bool Write() const;

    std::filesystem::path file_;
    std::optional<std::uint8_t> last_;
    std::optional<std::uint8_t> before_;
};

} // namespace harvlink::gateway::sparkplug
