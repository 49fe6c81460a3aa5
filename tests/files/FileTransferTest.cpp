#include <chrono>

#include "files/FileSession.h"

namespace harvlink::test {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto settlingTime = std::chrono::seconds(3);

std::string Pattern(std::size_t length) {
    std::string text(length, '\0');
    for (std::size_t i = 0; i < length; ++i) {
        text[i] = static_cast<char>('!' + i % 89);
    }
    return text;
}

class FileTransfer : public FileSession {};

TEST_F(FileTransfer, ReceivedBlocksAreEchoedAndCutAtZeroBytes) {
    controller.Expect(FileRequest(saveFile, Text("a.dat")), Block(7, std::string("seven\0lost", 10)));
    ExpectAcknowledgement(saveFile, 7, {Block(3, "")});
    ExpectAcknowledgement(saveFile, 3, {Block(3, " three")});
    ExpectAcknowledgement(saveFile, 3, {Reply{.payload = Bytes(600, 'x'), .block = lastBlock + 9}}); // cut at 479
    ExpectAcknowledgement(saveFile, lastBlock + 9);
    EXPECT_EQ(files.SaveFromControllerToString("a.dat", text).StatusCode, 0);
    EXPECT_EQ(text, "seven three" + std::string(479, 'x'));
    ExpectOneIdSince(1);
}

TEST_F(FileTransfer, OnlyAStreamOfAMultipleEndsInAnEmptyBlock) {
    for (std::size_t const length : {0U, 1U, 478U, 479U, 480U, 600U, 958U, 959U}) {
        std::string const content = Pattern(length);
        WriteFile("test.dat", content);
        for (bool const isStream : {false, true}) {
            std::vector<std::string> blocks;
            for (std::size_t first = 0; first < length + isStream; first += 479) {
                blocks.push_back(content.substr(first, 479));
            }
            std::size_t const before = controller.Received().size();
            ExpectLoad("TEST.DAT", blocks);
            StatusInfo const status = isStream ? files.LoadToControllerFromPath("./test.dat")
                                               : files.LoadToControllerFromString("Test.dat", content);
            EXPECT_EQ(status.StatusCode, 0) << length;
            EXPECT_EQ(controller.Received().size(), before + 1 + blocks.size());
            ExpectOneIdSince(before);
        }
    }
}

TEST_F(FileTransfer, SettlesAfterNoOtherRefusal) {
    auto const start = Clock::now();
    Bytes const request = FileRequest(loadFile, Text("A.CND"));
    controller.Expect(request, Refusal(58014));
    EXPECT_EQ(files.LoadToControllerFromString("a.cnd", Pattern(600)).Message, "File is not writable.");
    controller.Expect(request);
    controller.Expect(FileRequest(loadFile, Text(Pattern(479)), 1, 1), Refusal(57996));
    EXPECT_EQ(files.LoadToControllerFromString("a.cnd", Pattern(600)).StatusCode, 57996);
    EXPECT_LT(Clock::now() - start, settlingTime);
}

TEST_F(FileTransfer, SettlesAfterARefusedWriteAndAToolFile) {
    auto start = Clock::now();
    controller.Expect(FileRequest(loadFile, Text("A.CND")));
    controller.Expect(FileRequest(loadFile, Text("x", 479), 1, lastBlock + 1), Refusal(58014));
    EXPECT_EQ(files.LoadToControllerFromString("a.cnd", "x").Message, "File is not writable.");
    EXPECT_GE(Clock::now() - start, settlingTime);
    start = Clock::now();
    ExpectLoad("TOOL.CND", {"//TOOL 0"});
    EXPECT_EQ(files.LoadToControllerFromString("Tool.cnd", "//TOOL 0").StatusCode, 0);
    EXPECT_GE(Clock::now() - start, settlingTime);
}

} // namespace
} // namespace harvlink::test
