#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

namespace harvlink::fuzz {

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

/// Checks something that must hold for every input. A violation ends the fuzzer, which then keeps the input.
inline void Require(bool holds, char const* condition) {
    if (!holds) {
        std::fprintf(stderr, "violated: %s\n", condition);
        std::abort();
    }
}

/// The input of a fuzzer, read from front to back. Missing bytes read as zero.
class Input {
public:
    Input(std::uint8_t const* data, std::size_t size) : rest(std::as_bytes(std::span(data, size))) {}

    bool IsEmpty() const { return rest.empty(); }

    std::span<std::byte const> TakeBytes(std::size_t count) {
        auto const taken = rest.first(std::min(count, rest.size()));
        rest = rest.subspan(taken.size());
        return taken;
    }

    template <typename Record>
    Record Take() {
        static_assert(std::is_trivially_copyable_v<Record>);
        Record record{};
        auto const bytes = TakeBytes(sizeof(Record));
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<std::byte*>(&record));
        return record;
    }

    std::string_view TakeText() {
        auto const bytes = TakeBytes(rest.size());
        return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
    }

private:
    std::span<std::byte const> rest;
};

} // namespace harvlink::fuzz
