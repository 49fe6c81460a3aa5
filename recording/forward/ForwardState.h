#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace harvlink::recording {

/// What a queue knows besides its entries.
struct ForwardState {
    std::uint64_t acknowledged = 0; ///< number of the last entry that needs not be sent any more
    std::uint64_t next = 1; ///< number of the entry that is committed next
    std::uint64_t droppedForSize = 0;
    std::uint64_t droppedForAge = 0;
    std::uint64_t damaged = 0;
};

/// Keeps the state twice, with check sums: one of the two survives a cut of power and changed bytes.
class ForwardStateFile {
public:
    explicit ForwardStateFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// The newest that is undamaged; nothing if there is none.
    std::optional<ForwardState> Load();

    /// Returns 0 or the error of the system.
    int Store(ForwardState const& state);

private:
    std::filesystem::path path_;
    std::uint64_t generation_ = 0;
};

} // namespace harvlink::recording
