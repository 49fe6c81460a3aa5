#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// @file
/// What is known about status codes besides their texts, as data.

namespace harvlink::words {

/// Whether the same request may be sent again.
enum class Retry {
    Yes, ///< at once
    Later, ///< the cause passes by itself
    AfterFix, ///< after the cause is removed
    ReadBackFirst, ///< it may have acted already
    No, ///< it would fail the same way
};

struct Advice {
    std::string_view cause{};
    std::string_view check{};
    Retry retry = Retry::No;
};

/// Codes of one origin. The advice is for the codes without a card of their own.
struct CodeFamily {
    std::int32_t first = 0;
    std::int32_t last = 0;
    std::string_view name{};
    Advice advice{};
};

/// A single code. It has a text only if the library's table of codes has none.
struct CodeCard {
    std::int32_t code = 0;
    std::string_view text{};
    Advice advice{}; ///< if its cause is empty, the family's is used
};

/// A subsystem in which some of the controller's numbers have another meaning. The library marks them by an offset.
struct CodeContext {
    std::string_view name{}; ///< "motion"
    std::int64_t offset = 0; ///< is subtracted from the controller's number
    std::span<CodeCard const> cards{};
};

/// Sorted by their first code, without overlap.
std::span<CodeFamily const> CodeFamilies();

/// Codes without a context, sorted. Numbers of four digits have two forms; this list has the decimal one.
std::span<CodeCard const> GeneralCards();

std::span<CodeContext const> CodeContexts();

} // namespace harvlink::words
