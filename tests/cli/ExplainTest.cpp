#include "words/cards/Explain.h"

#include <algorithm>
#include <array>
#include <string>

#include <gtest/gtest.h>

#include "RunTool.h"
#include "cli/explain/ErrorPage.h"
#include "cli/output/Output.h"
#include "status/AddedStatusTable.h"
#include "status/ErrorTables.h"
#include "status/MainStatusTable.h"
#include "support/ScratchFolder.h"

namespace harvlink::cli {
namespace {

TEST(Explain, UnderstandsEveryFormOfACode) {
    struct Case {
        char const* code;
        std::size_t meanings;
        char const* subsystem; ///< of the first of this match
        char const* text;
        char const* retry;
        char const* match = "exact";
    };
    std::array<Case, 27> const cases{{
        {"0", 1, "Success", "OK", "yes"},
        {"2060", 1, "State of the controller", "There is an active Error or Alarm.", "after-fix"},
        {"0x2060", 1, "State of the controller", "There is an active Error or Alarm.", "after-fix"},
        {"0x30006", 1, "Library: arguments and answers", "Controller response timed out. Check ", "read-back-first"},
        {"-49934480", 1, "motion", "Timeout", "yes"},
        {"0xFD060F70", 1, "motion", "Timeout", "yes"},
        {"49934480", 1, "motion", "Timeout", "yes"},
        {"65520", 2, "General refusal", "System error", "after-fix"},
        {"motion:65520", 1, "motion", "Timeout", "yes"},
        {"40961", 3, "What was asked for", "Instance value is invalid", "no"},
        {"-59959039", 1, "group", "Invalid Control Group Id", "no"},
        {"-79983552", 1, "job", "Invalid job name.", "no"},
        {"-1878982658", 1, "conversion", "Conversion impossible.", "no"},
        {"0x30013", 1, "Library: arguments and answers", "The header version and the library", "after-fix"},
        {"0x40000002", 1, "Library: a file of this computer", "Open file error on your computer.", "after-fix"},
        {"8015-112", 1, "Alarm, system user", "Timeout", "yes"},
        {"8015", 2, "A number of the controller", "Could not find", "after-fix", "none"},
        {"alarm:4107", 1, "Alarm, minor", "The controller has the text", "after-fix"},
        {"5120", 1, "Contents of a file", "Position data error", "after-fix"},
        {"54321", 1, "A number of the controller", "Could not find", "after-fix", "none"},
        {"motion:112", 1, "motion", "Timeout", "yes", "low-byte"},
        {"112", 10, "motion", "Timeout", "yes", "low-byte"},
        {"0xF70", 3, "motion", "Timeout", "yes", "low-word"},
        {"30006", 2, "Library: arguments and answers", "Controller response timed out", "read-back-first",
         "hex-digits"},
        {"8015-32", 14, "Contents of a file", "Position data error", "after-fix", "low-byte"},
        {"8015-6", 5, "Library: arguments and answers", "Controller response timed", "read-back-first", "low-byte"},
        {"9", 1, "Status byte of the controller", "", "no"},
    }};
    for (Case const& expected : cases) {
        Result const result = RunTool(std::string("explain --json ") + expected.code);
        ASSERT_EQ(result.exit, 0) << expected.code << result.err;
        Json const cards = Json::parse(result.out);
        EXPECT_EQ(cards.size(), expected.meanings) << expected.code << result.out;
        auto const card =
            std::find_if(cards.begin(), cards.end(), [&](Json const& each) { return each["match"] == expected.match; });
        ASSERT_NE(card, cards.end()) << expected.code << result.out;
        EXPECT_EQ((*card)["subsystem"], expected.subsystem) << expected.code;
        EXPECT_EQ((*card)["text"].get<std::string>().rfind(expected.text, 0), 0U) << expected.code << result.out;
        EXPECT_EQ((*card)["retry"], expected.retry) << expected.code;
        EXPECT_NE((*card)["cause"], "") << expected.code;
    }
    for (char const* const wrong : {"", "x", "0x", "12 --all", "-12", "0x60000", "99999999999", "motor:1", "8015-x",
                                    "--markdown", "alarm:12345"}) {
        EXPECT_EQ(RunTool(std::string("explain ") + wrong).exit, 2) << wrong;
    }
}

template <typename Code>
void ExpectSameTexts(CodeContext const& context, StatusTable<Code> const& table) {
    EXPECT_EQ(context.cards.size(), table.Size()) << context.name;
    for (CodeCard const& card : context.cards) {
        EXPECT_EQ(table.Find(static_cast<Code>(card.code)), card.text) << context.name << card.code;
    }
}

TEST(Explain, AgreesWithTheLibrary) {
    auto const contexts = CodeContexts();
    ExpectSameTexts(contexts[0], MotionErrorTable);
    ExpectSameTexts(contexts[1], ControlGroupErrorTable);
    ExpectSameTexts(contexts[2], JobErrorTable);
    ExpectSameTexts(contexts[3], ConversionErrorTable);
    ExpectSameTexts(contexts[4], IOErrorTable);
    ExpectSameTexts(contexts[5], FileErrorTable);
    EXPECT_EQ(contexts[0].offset, MotionErrorOffset);
    EXPECT_EQ(contexts[1].offset, ControlGroupErrorOffset);
    EXPECT_EQ(contexts[2].offset, JobErrorOffset);
    EXPECT_EQ(contexts[3].offset, ConversionErrorOffset);
    for (CodeCard const& card : GeneralCards()) {
        bool const hasText = MainStatusTable.Find(card.code) || AddedStatusTable.Find(card.code);
        EXPECT_NE(hasText, !card.text.empty()) << card.code;
    }
    for (Explanation const& explanation : ExplainAll()) {
        EXPECT_NE(explanation.subsystem, "A number of the controller") << explanation.code;
    }
}

TEST(Explain, WroteThePageThatIsInTheDocuments) {
    EXPECT_TRUE(test::ContentOf(HARVLINK_DOCUMENTS "/error-cards.md") == ErrorPage())
        << "harvlink explain --all --markdown > docs/error-cards.md";
}

} // namespace
} // namespace harvlink::cli
