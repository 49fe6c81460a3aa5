#include <chrono>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "files/FileSession.h"
#include "system/Path.h"

namespace harvlink::test {
namespace {

constexpr char const* streamErrorText =
    "Open file error on your computer. Check the path supplied. If path is correct, "
    "ensure the file is readable/writable.";
constexpr char const* unconfirmed = "Check for loaded job timed out. Job might not be on the controller.";

/// A name with extension ".DAT" of this length.
std::string LongName(std::size_t length) {
    return std::string(length - 4, 'N') + ".DAT";
}

class FileOperations : public FileSession {};

TEST_F(FileOperations, NamesAndKinds) {
    struct {
        std::string name, extension, stem;
        bool isKnown;
        FileType type;
        bool isWritable;
    } const cases[] = {
        {"A.jbi", ".JBI", "A", true, FileType::JobFile, true},
        {"A.DAT", ".DAT", "A", true, FileType::DataFile, true},
        {"tool.Cnd", ".CND", "tool", true, FileType::ConditionFile, true},
        {"RS.PRM", ".PRM", "RS", true, FileType::ParameterFile, false},
        {"SYSTEM.SYS", ".SYS", "SYSTEM", true, FileType::SystemFile, false},
        {"A.LST", ".LST", "A", true, FileType::ListingFile, true},
        {"A.LOG", ".LOG", "A", true, FileType::LogFile, false},
        {"ABCDEFG", "DEFG", "ABC", false, FileType::JobFile, true},
        {".JBI", ".JBI", "", true, FileType::JobFile, true},
        {"JBI", "", "JBI", false, FileType::JobFile, true},
        {"", "", "", false, FileType::JobFile, true},
    };
    for (auto const& example : cases) {
        std::string extension;
        EXPECT_EQ(files.CheckForFileExt(example.name, extension), example.isKnown) << example.name;
        EXPECT_EQ(extension, example.extension);
        EXPECT_EQ(files.RemoveFileExtension(example.name), example.stem);
        EXPECT_EQ(files.GetFileType(example.name), example.type);
        EXPECT_EQ(files.CheckIfFileIsWritable(example.name), example.isWritable);
    }
    EXPECT_TRUE(files.CheckForJobNameInString("job1.jbi", "/JOB\n//NAME JOB1\n"));
    EXPECT_TRUE(files.CheckForJobNameInString("JOB1.JBI", "//NAME JOB12")) << "a plain search";
    EXPECT_FALSE(files.CheckForJobNameInString("JOB1.JBI", "//NAME job1"));
    EXPECT_FALSE(files.CheckForJobNameInString("JOB1.JBI", "//NAME  JOB1"));
}

TEST_F(FileOperations, LoadsAreCheckedBeforeAnythingIsSent) {
    std::filesystem::create_directory("FOLDER.DAT");
    WriteFile("job.jbi", "/JOB\n" + std::string(480, '/') + "//NAME JOB\n"); // behind the head
    struct {
        std::string name, contents;
        int fromText, fromPath;
    } const cases[] = {
        {"ABC.TXT", "", 0x20001, 0x20001},
        {"", "", 0x20001, 0x20001},
        {"abc.sys", "", 0x20008, 0x20008},
        {std::string(29, 'N') + ".prm", "", 0x20008, 0x20008},
        {"JOA.JBI", "//NAME JO", 0x30014, 0x20003},
        {"job.jbi", "//NAME job", 0x30014, 0x30014},
        {std::string(29, 'N') + ".JBI", "", 0x30014, 0x20007}, // the order of the checks differs
        {LongName(33), "", 0x20007, 0x20007},
    };
    for (auto const& example : cases) {
        EXPECT_EQ(files.LoadToControllerFromString(example.name, example.contents).StatusCode, example.fromText)
            << example.name;
        EXPECT_EQ(files.LoadToControllerFromPath("./" + example.name).StatusCode, example.fromPath) << example.name;
    }
    EXPECT_EQ(files.LoadToControllerFromString("abc.sys", "").Message, "This API is unable to write .SYS files.");
#if !defined(_WIN32)
    ASSERT_EQ(::mkfifo("PIPE.DAT", 0600), 0);
    EXPECT_EQ(files.LoadToControllerFromPath("PIPE.DAT").StatusCode, 0x40000001) << "nobody waits for its writer";
#endif
    EXPECT_EQ(files.LoadToControllerFromPath("./none/A.DAT").Message, "Unable to find file on pc.");
    StatusInfo const folderRead = files.LoadToControllerFromPath("FOLDER.DAT");
    EXPECT_EQ(folderRead.StatusCode, 0x40000001);
    EXPECT_EQ(folderRead.Message, streamErrorText);
}

TEST_F(FileOperations, NamesOf32CharactersPassAndLongerOnesAreCutOnSave) {
    ExpectLoad(LongName(32), {"x"});
    EXPECT_EQ(files.LoadToControllerFromString(LongName(32), "x").StatusCode, 0);
    WriteFile(LongName(32), "x");
    ExpectLoad(LongName(32), {"x"});
    EXPECT_EQ(files.LoadToControllerFromPath(LongName(32)).StatusCode, 0);
    ExpectWhole(saveFile, std::string(32, 'N'), "y");
    EXPECT_EQ(files.SaveFromControllerToString(LongName(40), text).StatusCode, 0);
    EXPECT_EQ(files.SaveFromControllerToString("A.TXT", text).StatusCode, 0x20001);
    EXPECT_EQ(text, "");
}

TEST_F(FileOperations, HeadOfAJobIsWholeBlocksUntilItHasMoreThan150Characters) {
    controller.AnswerRest([](Datagram const&) { return Replies{Refusal(4128)}; });
    for (std::size_t const length : {0U, 101U, 150U, 151U, 479U}) {
        std::string first =
            std::string(length, ' ') + std::string(479 - length, '\0'); // a block ends at its first zero
        WriteFile("test.jbi", first + "//NAME TEST\n");
        EXPECT_EQ(files.LoadToControllerFromPath("test.jbi").StatusCode, length <= 150 ? 4128 : 0x30014) << length;
    }
}

TEST_F(FileOperations, JobFromPathIsLookedForInTheList) {
    std::string const job = "/JOB\n//NAME TEST\n" + std::string(600, ' ');
    WriteFile("test.jbi", job);
    struct {
        std::vector<std::string> lists;
        int code;
        char const* message;
    } const cases[] = {
        {{"TEST.JBI"}, 0, "OK"},
        {{"", "TEST.JB TEST1.JBI test.jbi", "A.JBI\r\nTEST.JBI\r\n"}, 0, "OK"},
        {{"", "", "", "", "TEST.JBI"}, 0, "OK"},
        {{"", "", "", "", ""}, 0, unconfirmed},
    };
    for (auto const& example : cases) {
        ExpectLoad("TEST.JBI", {job.substr(0, 479), job.substr(479)});
        for (std::string const& list : example.lists) {
            ExpectWhole(listFile, "*.JBI", list);
        }
        auto const start = std::chrono::steady_clock::now();
        StatusInfo const status = files.LoadToControllerFromPath("test.jbi");
        EXPECT_EQ(status.StatusCode, example.code);
        EXPECT_EQ(status.Message, example.message);
        EXPECT_GE(std::chrono::steady_clock::now() - start,
                  std::chrono::milliseconds(100) * (example.lists.size() - 1));
    }
    // A failed list gives its own code with the same text.
    ExpectLoad("TEST.JBI", {job.substr(0, 479), job.substr(479)});
    for (int i = 0; i < 5; ++i) {
        controller.Expect(FileRequest(listFile, Text("*.JBI")), Block(1, ""));
        ExpectAcknowledgement(listFile, 1, {Refusal(58436)});
    }
    StatusInfo const failed = files.LoadToControllerFromPath("test.jbi");
    EXPECT_EQ(failed.StatusCode, 58436);
    EXPECT_EQ(failed.Message, unconfirmed);
    // A load from a text does not look for it.
    ExpectLoad("TEST.JBI", {"//NAME TEST"});
    EXPECT_EQ(files.LoadToControllerFromString("test.jbi", "//NAME TEST").StatusCode, 0);
}

TEST_F(FileOperations, ListsOfEachKind) {
    char const* const patterns[] = {"*.JBI", "*.DAT", "*.CND", "*.PRM", "*.SYS", "*.LST", "*.LOG", " "};
    std::vector<std::string> names{"old"};
    for (int type = 0; type < 8; ++type) {
        ExpectWhole(listFile, patterns[type], "B.X\r\nA.X\r\n");
        EXPECT_EQ(files.ListFiles(static_cast<FileType>(type), names, type % 2 == 0).StatusCode, 0);
        EXPECT_EQ(names,
                  type % 2 == 0 ? (std::vector<std::string>{"A.X", "B.X"}) : (std::vector<std::string>{"B.X", "A.X"}));
    }
    ExpectWhole(listFile, "*.JBI", "");
    EXPECT_EQ(files.ListFiles(FileType::JobFile, names, true).StatusCode, 0);
    EXPECT_TRUE(names.empty());
    int count = 9;
    controller.Expect(FileRequest(listFile, Text("*.JBI")), Block(1, "A.JBI\r\nB.J"));
    ExpectAcknowledgement(listFile, 1, {Block(lastBlock + 2, "BI\r\n")});
    ExpectAcknowledgement(listFile, lastBlock + 2);
    EXPECT_EQ(files.GetFileCount(FileType::JobFile, count).StatusCode, 0);
    EXPECT_EQ(count, 2);
}

TEST_F(FileOperations, ListGoesOnBehindAnError) {
    std::vector<std::string> names;
    Bytes const request = FileRequest(listFile, Text("*.DAT"));
    Reply refusal = Refusal(58035);
    refusal.payload = Text("A.DAT ");
    controller.Expect(request, refusal);
    ExpectAcknowledgement(listFile, 0, {Block(lastBlock + 1, "B.DAT")});
    ExpectAcknowledgement(listFile, lastBlock + 1);
    EXPECT_EQ(files.ListFiles(FileType::DataFile, names, false).StatusCode, 0);
    EXPECT_EQ(names, (std::vector<std::string>{"A.DAT", "B.DAT"}));
    // An error in a last block is acknowledged, and is the result.
    refusal.block = lastBlock;
    controller.Expect(request, refusal);
    ExpectAcknowledgement(listFile, lastBlock);
    EXPECT_EQ(files.ListFiles(FileType::DataFile, names, false).StatusCode, 58035);
    EXPECT_TRUE(names.empty());
}

TEST_F(FileOperations, DeletesJobsOnly) {
    std::pair<std::string, std::string> const names[] = {
        {"job1", "JOB1.JBI"},
        {"Job1.Jbi", "JOB1.JBI"},
        {"JOB1.DAT", "JOB1.DAT.JBI"},
        {"", ".JBI"},
        {std::string(32, 'a'), std::string(32, 'A')},
        {"JBI", "JBI.JBI"},
    };
    for (auto const& [name, sent] : names) {
        controller.Expect(FileRequest(deleteFile, Text(sent)));
        EXPECT_EQ(files.DeleteJobFile(name).StatusCode, 0) << name;
    }
    controller.Expect(FileRequest(deleteFile, Text("A.JBI")), Refusal(58014));
    EXPECT_EQ(files.DeleteJobFile("A").Message, "File is not writable.");
}

TEST_F(FileOperations, SavesToDiskOnlyWhatCameWhole) {
    EXPECT_EQ(files.SaveFromControllerToFile("A.TXT", "a", true).StatusCode, 0x20001);
    WriteFile("a", "old");
    EXPECT_EQ(files.SaveFromControllerToFile("A.DAT", "a", false).StatusCode, 0x20002);
    EXPECT_EQ(ContentOf("a"), "old");
    controller.Expect(FileRequest(saveFile, Text("A.DAT")), Refusal(58014));
    EXPECT_EQ(files.SaveFromControllerToFile("A.DAT", "b", true).Message, "File is not writable.");
    EXPECT_FALSE(std::filesystem::exists("b"));
    for (char const* const path : {"a", "b", "gr\u00F6\u00DFe"}) { // a text of ours is UTF-8
        ExpectWhole(saveFile, "A.DAT", "1\r\n2\n");
        EXPECT_EQ(files.SaveFromControllerToFile("A.DAT", path, true).StatusCode, 0);
        EXPECT_EQ(ContentOf(PathOf(path)), "1\r\n2\n");
    }
#if defined(_WIN32)
    auto const refused = {"none/a", "."};
#else
    auto const refused = {"none/a", "/dev/full", "."};
#endif
    for (char const* const path : refused) { // the transfer runs, then the disk refuses
        ExpectWhole(saveFile, "A.DAT", "x");
        StatusInfo const status = files.SaveFromControllerToFile("A.DAT", path, true);
        EXPECT_EQ(status.StatusCode, 0x40000001) << path;
        EXPECT_EQ(status.Message, streamErrorText);
    }
}

} // namespace
} // namespace harvlink::test
