#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace harvlink::fleet {

/// Words that one thread writes and any number read. The first counts the writes: it is odd while one is under way.
using SharedWord = std::atomic<std::uint64_t>;

/// Writes a cell. `sequence` is even and higher than before. Never waits.
///
/// A reader that sees one of the new words also sees that the count was odd when it looks again, as each word is released
/// behind the count. Fences would say the same, but the thread sanitizer does not know them.
inline void WriteCell(std::span<SharedWord> cell, std::uint64_t sequence, std::span<std::uint64_t const> words) {
    cell[0].store(sequence - 1, std::memory_order_relaxed);
    for (std::size_t i = 0; i < words.size(); ++i) {
        cell[i + 1].store(words[i], std::memory_order_release);
    }
    cell[0].store(sequence, std::memory_order_release);
}

/// Reads a cell. Returns its sequence, or nothing that is even if it was written meanwhile: `words` mean nothing then.
inline std::uint64_t ReadCell(std::span<SharedWord const> cell, std::span<std::uint64_t> words) {
    std::uint64_t const before = cell[0].load(std::memory_order_acquire);
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = cell[i + 1].load(std::memory_order_acquire);
    }
    std::uint64_t const after = cell[0].load(std::memory_order_relaxed);
    return before == after ? before : 1;
}

} // namespace harvlink::fleet
