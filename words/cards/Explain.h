#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "words/cards/ErrorCards.h"
#include "words/text/Json.h"

namespace harvlink::words {

inline constexpr std::string_view ExactMatch = "exact";
inline constexpr std::string_view NoMatch = "none";

/// All that is known of a code.
struct Explanation {
    std::int32_t code = 0; ///< as the library returns it, or the number of an alarm
    std::optional<std::int32_t> subcode{}; ///< of an alarm
    std::optional<std::int32_t> controllerCode{}; ///< as the controller sent it
    std::string subsystem{};
    std::string text{};
    Advice advice{};
    bool isLastOfBlock = false; ///< stands for all alarms after the previous block up to this one
    std::string_view match = ExactMatch; ///< or the part that was given: "low-byte", "low-word", "hex-digits"
};

inline constexpr char const* CodeHelp =
    "A code is decimal or hexadecimal, negative or not, such as 8288, 0x2060, -49934480 or 0xFD060F70.\n"
    "An alarm is NUMBER-SUBNUMBER, such as 8015-112, or alarm:NUMBER. A number of the controller that a\n"
    "subsystem reads in its own way may be given with it: motion, group, job, conversion, io, file.\n"
    "For a number that is only part of a code, such as the subnumber of alarm 8015, the codes that end in it are "
    "listed.";

/// What a code may mean, the likeliest meaning first, as a number of the controller may mean several things. If no meaning
/// has exactly this code, the codes follow of which an alarm or a log shows it as a part. Throws InputError if `text` is
/// not a code, or not one that exists.
std::vector<Explanation> Explain(std::string_view text);

/// Every code that has a text, in families and subsystems as they are sorted.
std::vector<Explanation> ExplainAll();

/// "after-fix" and so on.
std::string_view RetryName(Retry retry);
std::string_view RetryAdvice(Retry retry);

Json ExplanationJson(Explanation const& explanation);

} // namespace harvlink::words
