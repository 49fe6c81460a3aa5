#include <algorithm>
#include <bit>
#include <deque>

#include "files/FileSession.h"

// What goes wrong with the blocks of a transfer, as designed and by the rule.

namespace harvlink::test {
namespace {

constexpr int blockMissing = 0x50004;
constexpr int tooLarge = 0x50005;

std::string Save(FileHandler& files, StatusInfo& status) {
    std::string text;
    status = files.SaveFromControllerToString("A.DAT", text);
    return text;
}

std::string List(FileHandler& files, StatusInfo& status) {
    std::vector<std::string> names;
    status = files.ListFiles(FileType::JobFile, names, false);
    return names.empty() ? "" : names.front();
}

std::string Load(FileHandler& files, StatusInfo& status) {
    status = files.LoadToControllerFromString("A.DAT", std::string(500, 'x')); // two blocks
    return "";
}

/// The answers to the first teach that the controller numbers them.
std::string LoadTwice(FileHandler& files, StatusInfo& status) {
    EXPECT_EQ(files.LoadToControllerFromString("A.DAT", "x").StatusCode, 0);
    status = files.LoadToControllerFromString("B.DAT", "x");
    return "";
}

struct Result {
    int code;
    std::string text;
    std::size_t requests;
};

struct Transfer {
    char const* name;
    std::string (*run)(FileHandler& files, StatusInfo& status);
    std::vector<Replies> answers; ///< to each request
    Result designed;
    Result strict;
    std::uint64_t largestFile = 1000;
};

std::vector<Transfer> const transfers{
    {"in order", Save, {{Block(1, "a")}, {Block(2, "b")}, {Block(lastBlock + 3, "c")}}, {0, "abc", 4}, {0, "abc", 4}},
    {"doubled", // of which as designed one is added twice and acknowledged twice
     Save,
     {{Block(1, "a"), Block(1, "a")}, {Block(lastBlock + 2, "b")}},
     {0, "aab", 4},
     {0, "ab", 3}},
    {"one before the last again",
     Save,
     {{Block(1, "a")}, {Block(2, "b")}, {Block(1, "a"), Block(lastBlock + 3, "c")}},
     {0, "abac", 5},
     {0, "abc", 4}},
    {"gap", Save, {{Block(1, "a")}, {Block(lastBlock + 3, "c")}}, {0, "ac", 3}, {blockMissing, "a", 2}},
    {"first one missing", Save, {{Block(lastBlock + 2, "b")}}, {0, "b", 2}, {blockMissing, "", 1}},
    {"one without a number",
     Save,
     {{Block(1, "a")}, {Block(0, "x")}, {Block(lastBlock + 2, "b")}},
     {0, "axb", 4},
     {blockMissing, "a", 2}},
    {"a refusal of an acknowledgement",
     Save,
     {{Block(1, "a")}, {{.status = 0x1f, .addedStatusSize = 2, .addedStatus = 57996, .block = 1}}},
     {57996, "a", 2},
     {57996, "a", 2}},
    {"as large as allowed",
     Save,
     {{Block(1, "abc")}, {Block(lastBlock + 2, "de")}},
     {0, "abcde", 3},
     {0, "abcde", 3},
     5},
    {"larger than allowed",
     Save,
     {{Block(1, "abc")}, {Block(lastBlock + 2, "def")}},
     {0, "abcdef", 3},
     {tooLarge, "abc", 2},
     5},
    {"empty blocks without end",
     Save,
     {{Block(1, "")}, {Block(2, "")}, {Block(3, "")}, {Block(lastBlock + 4, "")}},
     {0, "", 5},
     {tooLarge, "", 3},
     2},
    {"a list with a gap",
     List,
     {{Block(1, "A.JBI ")}, {Block(lastBlock + 3, "")}},
     {0, "A.JBI", 3},
     {blockMissing, "", 2}},
    {"a refused list that has a block",
     List,
     {{{.payload = Text("A."), .status = 0x1f, .addedStatusSize = 2, .addedStatus = 57996, .block = 1}},
      {Block(lastBlock + 2, "JBI")}},
     {0, "A.JBI", 3},
     {0, "A.JBI", 3}},
    {"a refused list that has none",
     List,
     {{Refusal(57996)}, {Block(lastBlock + 1, "A.JBI")}},
     {0, "A.JBI", 3},
     {57996, "", 1}},
    // As designed, the doubled answer to the first block hides that the second was refused.
    {"a doubled answer to a block",
     Load,
     {{{}}, {{.block = 1}, {.block = 1}}, {{.status = 0x1f, .addedStatusSize = 2, .addedStatus = 57996}}},
     {0, "", 3},
     {57996, "", 3}},
    // As designed, the doubled answer to the opening request hides that the only block was refused.
    {"a doubled answer to an opening request",
     LoadTwice,
     {{{}}, {{.block = lastBlock + 1}}, {{}, {}}, {Refusal(57996)}},
     {0, "", 4},
     {57996, "", 4}},
};

constexpr Rules rules = NoRules.With(Rule::BlockOrder).With(Rule::Deadline);

TEST(BlockOrder, IsOnlyHeldWhereItIsEnforced) {
    for (Transfer const& transfer : transfers) {
        bool const isBreach =
            transfer.designed.requests != transfer.strict.requests || transfer.designed.code != transfer.strict.code;
        struct {
            char const* name;
            ConnectionPolicy policy;
            Result const& result;
            bool counts;
        } const ways[] = {
            {"designed", {}, transfer.designed, false},
            {"strict", {.enforced = rules, .largestFile = transfer.largestFile}, transfer.strict, isBreach},
            {"audit", {.audited = rules, .largestFile = transfer.largestFile}, transfer.designed, isBreach},
        };
        for (auto const& way : ways) {
            SCOPED_TRACE(testing::Message() << transfer.name << ", " << way.name);
            std::size_t asked = 0;
            ScriptedController controller;
            auto const manager = controller.Connect("YA1.00", 0, way.policy);
            controller.AnswerRest([&](Datagram const&) {
                return asked < transfer.answers.size() ? transfer.answers[asked++] : Replies{};
            });
            FileHandler files(manager.get());
            StatusInfo status;
            EXPECT_EQ(transfer.run(files, status), way.result.text);
            EXPECT_EQ(status.StatusCode, way.result.code) << status.Message;
            EXPECT_EQ(status.Message.ends_with(" (rule BlockOrder)"), status.StatusCode >= blockMissing) << status;
            EXPECT_EQ(controller.Received(1 + way.result.requests).size(), 1 + way.result.requests);
            auto const counts = manager->Statistics().Snapshot().ruleCounts;
            EXPECT_EQ(counts[std::countr_zero(static_cast<std::uint32_t>(Rule::BlockOrder))] > 0, way.counts);
        }
    }
}

/// Answers at once, the opening request twice, and the block with a refusal. Nothing is numbered.
class DoublingTransport final : public DatagramTransport {
public:
    void Send(Division, std::span<std::byte const> datagram) override {
        ++sent;
        std::vector<std::byte> answer(datagram.begin(), datagram.begin() + HeaderSize);
        std::fill(answer.begin() + 12, answer.begin() + 16, std::byte{});
        std::fill(answer.begin() + 24, answer.end(), std::byte{});
        answer[25] = std::byte(sent == 3 ? 0x1f : 0);
        waiting.insert(waiting.end(), sent == 2 ? 2 : 1, answer);
    }
    Arrival Receive(Division, std::span<std::byte> buffer, std::chrono::microseconds) override {
        if (waiting.empty()) {
            return {};
        }
        auto const datagram = std::move(waiting.front());
        waiting.pop_front();
        std::ranges::copy(datagram, buffer.begin());
        return datagram.size();
    }

private:
    int sent = 0;
    std::deque<std::vector<std::byte>> waiting;
};

TEST(BlockOrder, WhatWaitsBeforeABlockLeavesIsNotItsAnswer) {
    for (bool const isStrict : {false, true}) {
        StatusInfo status;
        NetworkManager manager(std::make_unique<DoublingTransport>(), 100, 0, status,
                               {.enforced = isStrict ? rules : NoRules});
        FileHandler files(&manager);
        EXPECT_EQ(files.LoadToControllerFromString("A.DAT", "x").StatusCode, isStrict ? 0x1f : 0);
        EXPECT_EQ(manager.Statistics().Snapshot().doubledAnswers, isStrict ? 1U : 0U);
    }
}

/// The first answer to the first block waits for a further one, as long as the controller has not numbered any.
TEST(BlockOrder, WhatComesBehindABlockIsNotItsAnswerIfAnotherFollows) {
    using std::chrono::milliseconds;
    Replies const twice{{}, {.delay = milliseconds(30)}}; // the second when the block is on its way
    Reply const refusal{.status = 0x1f, .addedStatusSize = 2, .addedStatus = 57996, .delay = milliseconds(60)};
    struct {
        char const* name;
        std::size_t size; ///< of the file: one block or two
        std::vector<Replies> answers; ///< to the opening request and its blocks
        int designed, strict;
        std::uint64_t doubled;
    } const cases[] = {
        {"refused", 1, {twice, {refusal}}, 0, 57996, 1},
        {"numbered", 500, {twice, {{.block = 1, .delay = milliseconds(60)}}, {{.block = lastBlock + 2}}}, 0, 0, 1},
        {"not numbered", 500, {twice, {{.delay = milliseconds(60)}}, {{}}}, 0, 0, 1},
        {"not doubled", 500, {{{}}, {{}}, {{}}}, 0, 0, 0},
    };
    for (auto const& example : cases) {
        for (bool const isStrict : {false, true}) {
            SCOPED_TRACE(testing::Message() << example.name << (isStrict ? ", strict" : ", designed"));
            std::size_t asked = 0;
            ScriptedController controller;
            auto const manager = controller.Connect("YA1.00", 0, {.enforced = isStrict ? rules : NoRules});
            manager->ResetTimeout();
            manager->ResetTimeout(); // half a second
            controller.AnswerRest([&](Datagram const&) {
                return asked < example.answers.size() ? example.answers[asked++] : Replies{{}};
            });
            FileHandler files(manager.get());
            StatusInfo const status = files.LoadToControllerFromString("A.DAT", std::string(example.size, 'x'));
            EXPECT_EQ(status.StatusCode, isStrict ? example.strict : example.designed) << status.Message;
            if (isStrict) {
                EXPECT_EQ(manager->Statistics().Snapshot().doubledAnswers, example.doubled);
            }
        }
    }
}

TEST(BlockOrder, AFileWithoutEndTakesNoMoreMemoryThanAllowed) {
    constexpr std::uint64_t largest = 300'000;
    ScriptedController controller;
    auto const manager = controller.Connect("YA1.00", 0, {.enforced = rules, .largestFile = largest});
    controller.AnswerRest([](Datagram const& request) {
        return Replies{Block(request.bytes[12] + 256U * request.bytes[13] + 1, std::string(479, 'x'))};
    });
    FileHandler files(manager.get());
    std::string text;
    EXPECT_EQ(files.SaveFromControllerToString("A.DAT", text).StatusCode, tooLarge);
    EXPECT_EQ(text.size(), largest / 479 * 479);
    EXPECT_LE(text.capacity(), largest);
}

} // namespace
} // namespace harvlink::test
