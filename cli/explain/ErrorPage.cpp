#include "cli/explain/ErrorPage.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include <fmt/format.h>

#include "cli/output/Words.h"
#include "words/cards/Explain.h"

namespace harvlink::cli {

namespace {

constexpr char const* Head = R"(# Error cards

What a status code means, where it comes from, what to check, and whether the request may be sent again. The same
cards are in the tool, for any form of a code: `harvlink explain -49934480`. This page is written by
`harvlink explain --all --markdown`; do not edit it.

)";

std::string Title(std::string const& subsystem) {
    std::string title = subsystem;
    title[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(title[0])));
    return title;
}

std::string Legend() {
    std::string legend = "| again? | |\n|---|---|\n";
    for (Retry const retry : {Retry::Yes, Retry::Later, Retry::AfterFix, Retry::ReadBackFirst, Retry::No}) {
        legend += fmt::format("| {} | {} |\n", RetryName(retry), RetryAdvice(retry));
    }
    return legend + "\nA number of four digits comes as it is or as the number whose hexadecimal digits spell it. "
                    "Where a subsystem\nsubtracts an offset, the controller's own number follows in brackets.\n";
}

std::string CodeCell(Explanation const& explanation) {
    if (explanation.code < 0) {
        return fmt::format("{} ({})", explanation.code, *explanation.controllerCode);
    }
    if (explanation.isLastOfBlock) {
        return fmt::format("up to {}", explanation.code);
    }
    return explanation.code > 4095 ? fmt::format("{} (0x{:X})", explanation.code, explanation.code)
                                   : fmt::format("{}", explanation.code);
}

/// What is true for a whole family stands above its table only.
CodeFamily const* FamilyNamed(std::string const& name) {
    auto const families = CodeFamilies();
    auto const found =
        std::find_if(families.begin(), families.end(), [&](CodeFamily const& family) { return family.name == name; });
    return found == families.end() ? nullptr : &*found;
}

std::string Section(std::string const& subsystem) {
    std::string section = fmt::format("\n## {}\n\n", Title(subsystem));
    if (CodeFamily const* const family = FamilyNamed(subsystem)) {
        section += fmt::format("{} Check: {} Again: {}.\n\n", family->advice.cause, family->advice.check,
                               RetryName(family->advice.retry));
    }
    return section + "| code | text | likely cause | check | again? |\n|---|---|---|---|---|\n";
}

std::string Row(std::string const& codes, Explanation const& explanation) {
    CodeFamily const* const family = FamilyNamed(explanation.subsystem);
    bool const isGeneral = family != nullptr && family->advice.cause == explanation.advice.cause;
    Advice const advice = isGeneral ? Advice{"", "", explanation.advice.retry} : explanation.advice;
    return fmt::format("| {} | {} | {} | {} | {} |\n", codes, explanation.text, advice.cause, advice.check,
                       RetryName(advice.retry));
}

} // namespace

std::string ErrorPage() {
    std::string page = Head + Legend();
    std::vector<Explanation> const all = ExplainAll();
    std::string codes;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (i == 0 || all[i].subsystem != all[i - 1].subsystem) {
            page += Section(all[i].subsystem);
        }
        codes += (codes.empty() ? "" : ", ") + CodeCell(all[i]);
        // The two forms of a number share a row, unless their texts differ.
        bool const isPair = i + 1 < all.size() && all[i + 1].subsystem == all[i].subsystem &&
                            all[i + 1].text == all[i].text && all[i].code < 10000 && all[i].code > 999 &&
                            fmt::format("{:x}", all[i + 1].code) == std::to_string(all[i].code);
        if (!isPair) {
            page += Row(codes, all[i]);
            codes.clear();
        }
    }
    return page;
}

} // namespace harvlink::cli
