#pragma once

#include <algorithm>
#include <list>
#include <string>
#include <string_view>

namespace harvlink {

/// Collects a long text from short pieces. A string that grows copies itself again and again and needs three times its
/// size meanwhile; this copies once, and gives its pieces back meanwhile.
class TextCollector {
public:
    void Append(std::string_view piece) {
        if (chunks.empty() || chunks.back().capacity() - chunks.back().size() < piece.size()) {
            chunks.emplace_back().reserve(std::clamp(2 * size, smallestChunk, largestChunk));
        }
        chunks.back() += piece;
        size += piece.size();
    }

    /// Appends all to `text` and leaves this empty.
    void MoveTo(std::string& text) {
        text.reserve(text.size() + size);
        for (; !chunks.empty(); chunks.pop_front()) {
            text += chunks.front();
        }
        size = 0;
    }

private:
    static constexpr std::size_t smallestChunk = 1024;
    static constexpr std::size_t largestChunk = 128 * 1024;

    std::list<std::string> chunks;
    std::size_t size = 0;
};

} // namespace harvlink
