#include "words/cards/Explain.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

#include <fmt/format.h>

#include "harvlink/StatusInfo.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"

namespace harvlink::words {

namespace {

constexpr std::int32_t HighestControllerCode = 0xFFFF;
constexpr std::int32_t HighestLibraryCode = 0x5FFFF;
constexpr std::int32_t HighestOfItsKind = 0xFF; ///< in the low half of a library's code
constexpr std::int32_t LocalFileCode = 0x40000001; ///< stands for all of its family
constexpr std::int32_t HighestAlarm = 9999;
constexpr std::int32_t MotionAlarm = 8015; ///< what the library raises for a refused target
constexpr std::int32_t NoAnswer = 0x30006;

// One of each family that a refused target may come from.
constexpr std::int32_t WrongTarget = 5120;
constexpr std::int32_t WrongValue = 45056;
constexpr std::int32_t NotNow = 2010;
constexpr std::int32_t NotSetUp = 3000;

struct RetryWords {
    Retry retry;
    std::string_view name;
    std::string_view advice;
};

constexpr std::array<RetryWords, 5> RetryTable{{
    {Retry::Yes, "yes", "Yes, at once."},
    {Retry::Later, "later", "Yes, later: the cause passes by itself, nothing was done."},
    {Retry::AfterFix, "after-fix", "Yes, once the cause is removed; nothing was done."},
    {Retry::ReadBackFirst, "read-back-first", "Not blindly: it may have acted already. Read back first."},
    {Retry::No, "no", "No: it would fail the same way."},
}};

constexpr CodeFamily UnknownFamily{
    1,
    HighestControllerCode,
    "A number of the controller",
    {"The controller refused with a number that is not known here.", "The manual of the controller.", Retry::AfterFix}};

struct AlarmBlock {
    std::int32_t last;
    std::string_view name;
    Advice advice;
};

constexpr std::array<AlarmBlock, 5> AlarmBlocks{{
    {3999,
     "Alarm, major",
     {"A fault of the controller or a drive. The machine stops and loses servo power.",
      "harvlink alarms shows its text; many of these go only with the main power off and on.", Retry::AfterFix}},
    {7999,
     "Alarm, minor",
     {"Something went wrong while the machine worked: a job, a limit, a device.",
      "harvlink alarms shows its text; remove the cause, then harvlink alarms clear.", Retry::AfterFix}},
    {8499,
     "Alarm, system user",
     {"Raised by an application of the controller or through its network.",
      "harvlink alarms shows its text; find what raises it, then harvlink alarms clear.", Retry::AfterFix}},
    {8999,
     "Alarm, user",
     {"Raised by a job or a signal of this installation.", "The job or program that raises it.", Retry::AfterFix}},
    {HighestAlarm,
     "Alarm, offline",
     {"Raised while the controller was offline.", "harvlink alarms history --category offline.", Retry::AfterFix}},
}};

// The library returns a text for every code; this is the one for codes that it does not know.
std::string const& UnknownText() {
    static std::string const text = StatusInformation(std::numeric_limits<std::int32_t>::min()).Message;
    return text;
}

std::string LibraryText(std::int32_t code) {
    std::string text = StatusInformation(code).Message;
    return text == UnknownText() ? "" : text;
}

/// 2060 for 0x2060: the number that the hexadecimal digits spell. The code itself if there is no such number.
std::int32_t SpelledNumber(std::int32_t code) {
    std::int32_t number = 0;
    for (int shift = 12; shift >= 0; shift -= 4) {
        std::int32_t const digit = (code >> shift) & 0xF;
        if (digit > 9 || code > HighestControllerCode) {
            return code;
        }
        number = number * 10 + digit;
    }
    return number >= 1000 && !LibraryText(number).empty() && !LibraryText(code).empty() ? number : code;
}

CodeCard const* FindCard(std::span<CodeCard const> cards, std::int64_t code) {
    auto const found =
        std::find_if(cards.begin(), cards.end(), [&](CodeCard const& card) { return card.code == code; });
    return found == cards.end() ? nullptr : &*found;
}

CodeFamily const& FamilyOf(std::int32_t code) {
    auto const families = CodeFamilies();
    auto const found = std::find_if(families.begin(), families.end(), [&](CodeFamily const& family) {
        return code >= family.first && code <= family.last;
    });
    return found == families.end() ? UnknownFamily : *found;
}

std::optional<Explanation> ExplainGeneral(std::int32_t code) {
    bool const isLocalFile = &FamilyOf(code) == &FamilyOf(LocalFileCode);
    std::int32_t const number = isLocalFile ? LocalFileCode : SpelledNumber(code);
    CodeCard const* const card = FindCard(GeneralCards(), number);
    CodeFamily const& family = FamilyOf(number);
    std::string text = LibraryText(code);
    if (text.empty()) {
        text = card != nullptr ? card->text : "";
    }
    if (text.empty() && (code > HighestControllerCode || code < 1)) {
        return std::nullopt;
    }
    Explanation explanation{.code = code, .subsystem = std::string(family.name), .text = text, .advice = family.advice};
    if (code <= HighestControllerCode) {
        explanation.controllerCode = code;
    }
    if (text.empty()) {
        explanation.text = UnknownText();
        explanation.subsystem = UnknownFamily.name;
        explanation.advice = UnknownFamily.advice;
        explanation.match = NoMatch;
    }
    if (card != nullptr && !card->advice.cause.empty()) {
        explanation.advice = card->advice;
    }
    return explanation;
}

Explanation ExplainInContext(CodeContext const& context, CodeCard const& card) {
    Explanation explanation{.code = static_cast<std::int32_t>(card.code - context.offset),
                            .subsystem = std::string(context.name),
                            .text = std::string(card.text),
                            .advice = card.advice};
    if (card.code <= HighestControllerCode) {
        explanation.controllerCode = card.code;
    }
    return explanation;
}

std::vector<Explanation> ExplainAllCodes() {
    std::vector<Explanation> all;
    for (std::int32_t code = 1; code <= HighestLibraryCode; ++code) {
        bool const mayBe = code <= HighestControllerCode || (code & 0xFFFF) <= HighestOfItsKind;
        if (mayBe && (!LibraryText(code).empty() || FindCard(GeneralCards(), code) != nullptr)) {
            all.push_back(*ExplainGeneral(code));
        }
    }
    all.push_back(*ExplainGeneral(LocalFileCode));
    // Keeps the two forms of a number together.
    std::stable_sort(all.begin(), all.end(), [](Explanation const& left, Explanation const& right) {
        return SpelledNumber(left.code) < SpelledNumber(right.code);
    });
    for (CodeContext const& context : CodeContexts()) {
        for (CodeCard const& card : context.cards) {
            all.push_back(ExplainInContext(context, card));
        }
    }
    return all;
}

/// Which part of a code a number is; empty if it is not a part.
std::string_view PartialMatch(std::int32_t code, std::int32_t part) {
    bool const isLong = code < 0 || code > HighestControllerCode;
    if (part <= 0xFF && (code & 0xFF) == part) {
        return "low-byte";
    }
    if (part > 0xFF && isLong && (code & 0xFFFF) == part) {
        return "low-word";
    }
    return isLong && fmt::format("{:x}", code) == std::to_string(part) ? "hex-digits" : "";
}

/// An alarm shows only the last byte of a code. The likeliest codes get the lowest rank: refusals of motion, then faults
/// of an answer, faults of a target, and states in which the controller does not move.
int Rank(Explanation const& explanation) {
    if (explanation.subsystem == CodeContexts().front().name) {
        return 0;
    }
    if (explanation.subsystem == FamilyOf(NoAnswer).name) {
        return 1;
    }
    bool const isTarget =
        explanation.subsystem == FamilyOf(WrongTarget).name || explanation.subsystem == FamilyOf(WrongValue).name;
    bool const isState =
        explanation.subsystem == FamilyOf(NotNow).name || explanation.subsystem == FamilyOf(NotSetUp).name;
    return isTarget ? 2 : isState ? 3 : 4;
}

/// The codes of one subsystem, or of all, that end in the part; the likeliest first.
std::vector<Explanation> ExplainPart(std::int32_t part, std::string_view subsystem = {}) {
    // The library has no list of its codes, and asking for each takes a while without optimisation.
    static std::vector<Explanation> const all = ExplainAllCodes();
    std::vector<Explanation> found;
    for (Explanation each : all) {
        each.match = PartialMatch(each.code, part);
        if (!each.match.empty() && (subsystem.empty() || each.subsystem == subsystem)) {
            found.push_back(std::move(each));
        }
    }
    std::ranges::stable_sort(found, {}, Rank);
    return found;
}

Explanation ExplainAlarm(std::int32_t number, std::optional<std::int32_t> subcode) {
    auto const* const block = std::find_if(AlarmBlocks.begin(), AlarmBlocks.end(),
                                           [&](AlarmBlock const& each) { return number <= each.last; });
    if (number < 1 || block == AlarmBlocks.end()) {
        throw InputError(fmt::format("there is no alarm {}; they go from 1 to {}", number, HighestAlarm));
    }
    Explanation explanation{.code = number,
                            .subcode = subcode,
                            .subsystem = std::string(block->name),
                            .text = "The controller has the text, see harvlink alarms.",
                            .advice = block->advice};
    if (number == MotionAlarm) {
        explanation.text =
            "Raised by a program with this library when a target could not be sent: refused, or without an answer.";
        explanation.advice = {"The subnumber is the last byte of the code; the targets that waited were dropped.",
                              subcode ? "The code in the program's HarvlinkLog.txt, and harvlink explain of it."
                                      : "harvlink explain 8015-SUBNUMBER, and the program's HarvlinkLog.txt.",
                              Retry::AfterFix};
    }
    // The subnumber is the low byte of the status code of the refusal.
    CodeContext const& motion = CodeContexts().front();
    for (CodeCard const& card : motion.cards) {
        if (number == MotionAlarm && subcode && ((card.code - motion.offset) & 0xFF) == *subcode) {
            explanation.controllerCode = card.code;
            explanation.text = card.text;
            explanation.advice = card.advice;
        }
    }
    return explanation;
}

/// A target may have been refused with a code that is not one of motion's. The alarm shows only its last byte.
std::vector<Explanation> ExplainAlarmOf(std::string_view number, std::string_view subnumber) {
    auto const subcode = ParseNumber<std::int32_t>(subnumber, "subnumber of an alarm");
    std::vector<Explanation> all{ExplainAlarm(ParseNumber<std::int32_t>(number, "alarm number"), subcode)};
    if (all.front().code == MotionAlarm && !all.front().controllerCode && subcode > 0 && subcode <= 0xFF) {
        auto alike = ExplainPart(subcode);
        std::move(alike.begin(), alike.end(), std::back_inserter(all));
    }
    return all;
}

std::int32_t ParseCode(std::string_view text) {
    bool const isNegative = text.starts_with('-');
    auto const magnitude = ParseNumber<std::int64_t>(text.substr(isNegative ? 1 : 0), "code");
    std::int64_t const number = isNegative ? -magnitude : magnitude;
    if (number < std::numeric_limits<std::int32_t>::min() || number > std::numeric_limits<std::uint32_t>::max()) {
        throw InputError(fmt::format("code {} is out of range", text));
    }
    return static_cast<std::int32_t>(number);
}

std::vector<Explanation> ExplainNumber(std::int32_t code) {
    if (code == 0) {
        return {{.code = 0,
                 .subsystem = "Success",
                 .text = LibraryText(0),
                 .advice = {"It was done.", "Nothing.", Retry::Yes}}};
    }
    std::vector<Explanation> all;
    if (auto const general = ExplainGeneral(code); general && general->text != UnknownText()) {
        all.push_back(*general);
    }
    for (CodeContext const& context : CodeContexts()) {
        // The code as it is returned, without its sign as the log file writes it, or as the controller sent it.
        for (std::int64_t const number : {code + context.offset, context.offset - code, std::int64_t{code}}) {
            if (CodeCard const* const card = FindCard(context.cards, number)) {
                all.push_back(ExplainInContext(context, *card));
                break;
            }
        }
    }
    if (all.empty() && code > 0 && code <= HighestControllerCode) {
        all.push_back(*ExplainGeneral(code));
        if (code <= HighestAlarm) {
            all.push_back(ExplainAlarm(code, {}));
        }
        auto alike = ExplainPart(code);
        std::move(alike.begin(), alike.end(), std::back_inserter(all));
    }
    if (all.empty()) {
        throw InputError(fmt::format("there is no code {}", code));
    }
    return all;
}

std::vector<Explanation> ExplainNamed(std::string_view name, std::string_view number) {
    for (CodeContext const& context : CodeContexts()) {
        if (context.name == name) {
            std::int32_t const code = ParseCode(number);
            if (CodeCard const* const card = FindCard(context.cards, code)) {
                return {ExplainInContext(context, *card)};
            }
            auto alike = ExplainPart(code, name);
            return alike.empty() ? ExplainNumber(code) : alike;
        }
    }
    throw InputError(
        fmt::format("'{}' is not a subsystem; there are: alarm, motion, group, job, conversion, io, file", name));
}

} // namespace

std::vector<Explanation> Explain(std::string_view text) {
    std::size_t const colon = text.find(':');
    std::string_view const name = colon == std::string_view::npos ? "" : text.substr(0, colon);
    std::string_view const number = text.substr(name.empty() ? 0 : colon + 1);
    std::size_t const dash = number.find('-', 1);
    if (dash != std::string_view::npos) {
        return ExplainAlarmOf(number.substr(0, dash), number.substr(dash + 1));
    }
    if (name == "alarm") {
        return {ExplainAlarm(ParseNumber<std::int32_t>(number, "alarm number"), {})};
    }
    return name.empty() ? ExplainNumber(ParseCode(number)) : ExplainNamed(LowerCase(name), number);
}

std::vector<Explanation> ExplainAll() {
    std::vector<Explanation> all = ExplainAllCodes();
    all.push_back(ExplainAlarm(MotionAlarm, {}));
    for (AlarmBlock const& block : AlarmBlocks) {
        all.push_back(ExplainAlarm(block.last, {}));
        all.back().isLastOfBlock = true;
    }
    return all;
}

std::string_view RetryName(Retry retry) {
    return RetryTable.at(static_cast<std::size_t>(retry)).name;
}

std::string_view RetryAdvice(Retry retry) {
    return RetryTable.at(static_cast<std::size_t>(retry)).advice;
}

Json ExplanationJson(Explanation const& explanation) {
    Advice const& advice = explanation.advice;
    auto const number = [](std::optional<std::int32_t> const& value) { return value ? Json(*value) : Json(); };
    return {{"code", explanation.code},
            {"match", explanation.match},
            {"hex", fmt::format("0x{:X}", static_cast<std::uint32_t>(explanation.code))},
            {"subcode", number(explanation.subcode)},
            {"controller_code", number(explanation.controllerCode)},
            {"subsystem", explanation.subsystem},
            {"text", explanation.text},
            {"cause", advice.cause},
            {"check", advice.check},
            {"retry", RetryName(advice.retry)},
            {"retry_advice", RetryAdvice(advice.retry)}};
}

} // namespace harvlink::words
