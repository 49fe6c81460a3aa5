#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// @file
/// What is known of status codes beside their texts, as data.

namespace harvlink::words {

/// Whether the same request may be sent again.
enum class Retry {
    Yes, ///< at once
    Later, ///< the cause passes by itself
    AfterFix, ///< somebody has to remove the cause first
    ReadBackFirst, ///< it may have acted already
    No, ///< it would fail the same way
};

struct Advice {
    std::string_view cause{};
    std::string_view check{};
    Retry retry = Retry::No;
};

/// Codes of one origin. What is true of all of them goes for those without a card of their own.
struct CodeFamily {
    std::int32_t first = 0;
    std::int32_t last = 0;
    std::string_view name{};
    Advice advice{};
};

/// A code that people meet. A text stands here only if the library's table of codes has none.
struct CodeCard {
    std::int32_t code = 0;
    std::string_view text{};
    Advice advice{}; ///< an empty cause: that of the family
};

/// A subsystem that gives some of the controller's numbers a meaning of its own, and marks them by an offset.
struct CodeContext {
    std::string_view name{}; ///< "motion"
    std::int64_t offset = 0; ///< what is subtracted from the controller's number; 0: the number stays
    std::span<CodeCard const> cards{};
};

/// Sorted by their first code, without overlap.
std::span<CodeFamily const> CodeFamilies();

/// Of codes without a context, sorted. Of the four-digit numbers, which have two forms, the decimal one stands here.
std::span<CodeCard const> GeneralCards();

std::span<CodeContext const> CodeContexts();

} // namespace harvlink::words
