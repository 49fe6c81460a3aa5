#include <filesystem>
#include <regex>

#include <gtest/gtest.h>

#include "connection/SystemFileParser.h"
#include "simulator/files/FileName.h"
#include "simulator/files/FileTransfers.h"
#include "simulator_files/FileClient.h"
#include "support/ScratchFolder.h"
#include "wire/HelperFunction.h"

namespace harvlink::test {
namespace {

using enum FileServices;

std::string OfBlocks(std::size_t size) {
    std::string text(size, 'x');
    for (std::size_t i = 0; i < size; i += 10) {
        text.replace(i, std::min<std::size_t>(10, size - i), std::to_string(1000000000 + i), 0, size - i);
    }
    return text;
}

TEST(FileName, KeepsPathsOutAndFitsThePattern) {
    struct Case {
        char const* text;
        char const* name;
    };
    for (auto const& [text, name] :
         std::initializer_list<Case>{{"job1.jbi", "JOB1.JBI"},
                                     {"A-B_#$.+&%9.Dat", "A-B_#$.+&%9.DAT"},
                                     {"../X.JBI", nullptr},
                                     {"/X.JBI", nullptr},
                                     {"A\\B.JBI", nullptr},
                                     {".JBI", nullptr},
                                     {"..JBI", nullptr},
                                     {".X.JBI", nullptr},
                                     {"X.TXT", nullptr},
                                     {"X", nullptr},
                                     {"", nullptr},
                                     {"A B.JBI", nullptr},
                                     {"A\xFF.JBI", nullptr},
                                     {"C:A.JBI", nullptr},
                                     {"ABCDEFGHIJKLMNOPQRSTUVWXYZ01.JBI", "ABCDEFGHIJKLMNOPQRSTUVWXYZ01.JBI"},
                                     {"ABCDEFGHIJKLMNOPQRSTUVWXYZ012.JBI", nullptr}}) {
        auto const result = simulator::FileNameFrom(text);
        EXPECT_EQ(result.value_or("none"), name == nullptr ? "none" : name) << text;
    }
    EXPECT_FALSE(simulator::FileNameFrom(std::string_view("A\0.JBI", 6)));
    EXPECT_TRUE(simulator::MatchesPattern("*A?*.J*", "BAAC.JBI"));
    EXPECT_TRUE(simulator::MatchesPattern("**", ""));
    EXPECT_FALSE(simulator::MatchesPattern("*.JBI", "A.JBIX"));
    EXPECT_FALSE(simulator::MatchesPattern("A?", "A"));
}

TEST(GeneratedFiles, DescribeTheControllerAsAClientReadsThem) {
    for (int const rs022 : {0, 1}) {
        auto options = StillOptions();
        options.rs022 = rs022;
        options.toolCount = 5;
        options.groups = {
            {ControlGroupId::R1, 6}, {ControlGroupId::R2, 6}, {ControlGroupId::B2, 1}, {ControlGroupId::S1, 2}};
        VirtualController controller("", options);
        FileClient const client{controller};
        std::vector<std::string> items;
        HelperFunction::SplitStringOnCLRF(items, client.Save("RS.PRM"), false);
        std::vector<std::string> fields;
        HelperFunction::SplitStringOnChar(fields, items.at(4), ',', false);
        EXPECT_EQ(fields.at(2), std::to_string(rs022));
        items.clear();
        HelperFunction::SplitStringOnCLRF(items, client.Save("TOOL.CND"), false);
        EXPECT_EQ(std::ranges::count(items, "//TOOL"), 5);
        SystemFileParser parser(client.Save("SYSTEM.SYS"));
        std::vector<ControlGroupId> groups;
        EXPECT_TRUE(parser.GetAllControlGroupsFromSection("SERVO POWER", groups));
        EXPECT_EQ(groups, (std::vector{ControlGroupId::R1, ControlGroupId::R2, ControlGroupId::S1}));
        std::vector<std::string> names;
        parser.GetSection("ROBOT NAME", names);
        ASSERT_EQ(names.size(), 2U);
        EXPECT_FALSE(SystemFileParser::NamesBase(names[0]));
        EXPECT_TRUE(SystemFileParser::NamesBase(names[1]));
    }
}

TEST(GeneratedFiles, ShowVariablesAndAlarms) {
    VirtualController controller("", StillOptions());
    controller.With([](ControllerModel& model) {
        model.variables.bytes[1] = 7;
        model.variables.integers[510] = -5;
        model.variables.reals[0] = 2.5F;
        model.RaiseAlarm(4107, 3, "OUT OF RANGE");
        model.RaiseAlarm(8500, 0, "STOPPED");
    });
    FileClient const client{controller};
    auto const log = client.Save("ALARM.LOG");
    EXPECT_TRUE(std::regex_match(log, std::regex("//ALARM HISTORY\r\n1000,4107,3,[0-9/ :]{16},OUT OF RANGE\r\n"
                                                 "3000,8500,0,[0-9/ :]{16},STOPPED\r\n")))
        << log;
    auto const data = client.Save("VAR.DAT");
    EXPECT_TRUE(data.starts_with("//B\r\n0,7,0,0,0,0,0,0,0,0\r\n")) << data.substr(0, 40);
    EXPECT_NE(data.find("\r\n-5,0\r\n//D\r\n"), std::string::npos) << "the last of 512 variables";
    EXPECT_NE(data.find("\r\n//R\r\n2.5,0,"), std::string::npos);
}

TEST(FileTransfers, CarryEverySizeBothWays) {
    VirtualController controller("", StillOptions());
    FileClient const client{controller};
    for (std::size_t const size : {1U, 478U, 479U, 480U, 957U, 958U, 959U, 100000U}) {
        auto const text = OfBlocks(size);
        EXPECT_EQ(client.Load("a.dat", text), 0);
        EXPECT_TRUE(client.Save("A.DAT") == text) << size;
    }
    EXPECT_EQ(client.List("*.JBI"), "DEMO.JBI\r\nHANDSHAKE.JBI\r\nPICK.JBI\r\n");
    EXPECT_EQ(client.List("a.*"), "A.DAT\r\n");
    EXPECT_EQ(client.List("*.LST"), "");
    EXPECT_EQ(client.Send(ListFile, "*.LST").block, 1 | Last);
    EXPECT_EQ(client.Load("E.DAT", ""), 0);
    EXPECT_EQ(client.Save("E.DAT"), "#58012");
}

TEST(FileTransfers, RepeatWhatIsAskedForTwice) {
    VirtualController controller("", StillOptions());
    FileClient const client{controller};
    FileClient const other{controller, 2};
    EXPECT_EQ(client.Load("A.DAT", OfBlocks(1000)), 0);
    EXPECT_EQ(client.Send(SaveFile, "A.DAT").block, 1U);
    EXPECT_EQ(other.Send(SaveFile, "DEMO.JBI").block, 1 | Last) << "a transfer of another client";
    EXPECT_EQ(client.Send(SaveFile, {}, 1, 1).block, 2U);
    auto const repeated = client.Send(SaveFile, {}, 1, 1);
    EXPECT_EQ(repeated.block, 2U);
    EXPECT_EQ(repeated.payload, OfBlocks(1000).substr(479, 479));
    EXPECT_EQ(client.Send(SaveFile, {}, 1, 7).code, 58529);
    EXPECT_EQ(client.Send(ListFile, {}, 1, 2).code, 58530) << "another service than the transfer's";
    EXPECT_EQ(client.Send(SaveFile, {}, 1, 2).block, 3 | Last);

    std::string const full(FileBlockSize, 'a');
    EXPECT_EQ(client.Send(LoadFile, "B.DAT").code, 0);
    EXPECT_EQ(client.Send(SaveFile, {}, 1, 3 | Last).isSilent, true) << "late, from the transfer before";
    for (auto const& [block, code] : std::initializer_list<std::pair<std::uint32_t, int>>{
             {2, 58529}, {0, 58529}, {1, 0}, {1, 0}, {3, 58529}, {2 | Last, 0}, {2 | Last, 0}, {3, 58530}}) {
        EXPECT_EQ(client.Send(LoadFile, full, 1, block).code, code) << block;
    }
    EXPECT_EQ(client.Save("B.DAT"), full + full);
}

TEST(FileTransfers, RefuseAsAControllerDoes) {
    VirtualController controller("", StillOptions());
    FileClient const client{controller};
    std::string const job = JobText("J", "");
    struct Case {
        int code;
        int expected;
        char const* what;
    };
    for (auto const& [code, expected, what] :
         std::initializer_list<Case>{{client.Send(SaveFile, "NONE.DAT").code, 58035, "missing"},
                                     {client.Send(SaveFile, "../../etc/passwd").code, 58035, "path"},
                                     {client.Delete("NONE.JBI"), 58035, "missing"},
                                     {client.Delete("TOOL.CND"), 58031, "no job"},
                                     {client.Load("RS.PRM", "x"), 58014, "not writable"},
                                     {client.Load("X.SYS", "x"), 58014, "not writable"},
                                     {client.Load("X.LOG", "x"), 58014, "not writable"},
                                     {client.Load("X.TXT", "x"), 58014, "unknown kind"},
                                     {client.Load("A B.JBI", job), 16784, "bad job name"},
                                     {client.Load("K.JBI", job), 21392, "another job's text"},
                                     {client.Load("J.JBI", "//NAME J\nNOP\nEND\n"), 20784, "line ends"},
                                     {client.Send(ListFile, " ").code, 58023, "no pattern"},
                                     {client.Send(static_cast<FileServices>(7), "A").code, 40960, "service"},
                                     {client.Send(SaveFile, "").code, 58525, "no name"},
                                     {client.Send(SaveFile, std::string(33, 'A')).code, 58526, "name too long"},
                                     {client.Send(LoadFile, std::string(480, 'A'), 1, 1).code, 58526, "block too long"},
                                     {client.Send(LoadFile, "x", 1, 1).code, 58530, "no transfer"},
                                     {client.Send(LoadFile, "x", 2, 1).code, 58530, "no such ack"}}) {
        EXPECT_EQ(code, expected) << what;
    }
    EXPECT_EQ(client.Send(ListFile, " ").block, 1 | Last) << "or the client would ask for more";
    EXPECT_EQ(client.Load("J.JBI", job), 0);
    controller.With([](ControllerModel& model) { model.parameters.Set(SystemParameterType::RS, 0, 214, 0); });
    EXPECT_EQ(client.Load("J.JBI", job), 57996);
    controller.With([](ControllerModel& model) { model.SetMode(simulator::Mode::Teach); });
    EXPECT_EQ(client.Load("L.DAT", "x"), 58034);
    EXPECT_EQ(client.Delete("J.JBI"), 58034);
    controller.With([](ControllerModel& model) { model.SetMode(simulator::Mode::Remote); });
    EXPECT_EQ(client.Delete("j.jbi"), 0);
    EXPECT_EQ(client.Save("J.JBI"), "#58035");
}

TEST(FileTransfers, EndWhenNothingIsHeardOrRoomIsNeeded) {
    VirtualController controller("", StillOptions());
    auto& files = controller.WithParts([](ControllerParts& parts) -> simulator::FileStore& { return parts.files; });
    simulator::FileTransfers transfers(files);
    simulator::FileTransfers::TimePoint const start{};
    std::string const name = "DEMO.JBI";
    auto const ask = [&](std::uint64_t peer, std::uint8_t ack, auto after) {
        simulator::Request request;
        request.peer = peer;
        request.header.ack = ack;
        request.subHeader = SubHeaderForSending(SaveFile);
        request.payload = std::as_bytes(std::span(name)).first(ack == 0 ? name.size() : 0);
        simulator::Reply reply;
        reply.Begin(request);
        transfers.Handle(request, start + after, reply);
        return reply.Code();
    };
    using std::chrono::seconds;
    EXPECT_EQ(ask(1, 0, seconds(0)), Refusal::None);
    EXPECT_EQ(ask(1, 1, seconds(30)), Refusal::None);
    EXPECT_EQ(ask(1, 1, seconds(61)), Refusal::AckError);
    for (std::uint64_t peer = 0; peer <= simulator::FileTransfers::MaxTransfers; ++peer) {
        EXPECT_EQ(ask(peer, 0, std::chrono::milliseconds(100000 + peer)), Refusal::None);
    }
    EXPECT_EQ(ask(0, 1, seconds(101)), Refusal::AckError) << "the oldest made room";
    EXPECT_EQ(ask(1, 1, seconds(101)), Refusal::None);
}

TEST(FileTransfers, HaveABoundOfMemoryTogether) {
    VirtualController controller("", StillOptions());
    std::string const whole(simulator::FileStore::MaxFileSize, 'x');
    constexpr std::uint64_t Fitting = simulator::FileTransfers::MaxMemory / simulator::FileStore::MaxFileSize;
    static_assert(Fitting == 16 && Fitting < simulator::FileTransfers::MaxTransfers);
    controller.WithParts([&](ControllerParts& parts) { EXPECT_EQ(parts.files.Put("BIG.DAT", whole), Refusal::None); });
    for (std::uint64_t peer = 0; peer < Fitting; ++peer) {
        EXPECT_EQ((FileClient{controller, peer}.Send(SaveFile, "BIG.DAT").block), 1U);
    }
    FileClient const writer{controller, Fitting};
    EXPECT_EQ(writer.Send(LoadFile, "NEW.DAT").code, 0);
    EXPECT_EQ(writer.Send(LoadFile, "x", 1, 1 | Last).code, 4128) << "there is no room for a byte more";
    EXPECT_EQ((FileClient{controller, Fitting + 1}.Send(SaveFile, "BIG.DAT").block), 1U);
    EXPECT_NE((FileClient{controller, 0}.Send(SaveFile, "", 1, 1).code), 0) << "the oldest made room";
    EXPECT_EQ((FileClient{controller, 1}.Send(SaveFile, "", 1, 1).block), 2U);
}

TEST(FileStore, CompletesLineEndsAndBoundsWhatItKeeps) {
    VirtualController controller("", StillOptions());
    EXPECT_EQ(controller.WithParts([](ControllerParts& parts) { return parts.files.Put("L.DAT", "\na\r\n\nb\n"); }),
              Refusal::None);
    EXPECT_EQ(FileClient{controller}.Save("L.DAT"), "\r\na\r\n\r\nb\r\n");
    controller.WithParts([](ControllerParts& parts) {
        std::string const big(simulator::FileStore::MaxFileSize, 'x');
        EXPECT_EQ(parts.files.Put("A.DAT", big + "x"), Refusal{4128});
        EXPECT_EQ(parts.files.Put("A.DAT", big), Refusal::None);
        EXPECT_EQ(parts.files.Put("A.DAT", big), Refusal::None) << "takes the old one's room";
        EXPECT_EQ(parts.files.Put("B.DAT", big), Refusal::None);
        EXPECT_EQ(parts.files.Put("C.DAT", big), Refusal::None);
        EXPECT_EQ(parts.files.Put("D.DAT", big), Refusal{4128});
        Refusal last = Refusal::None;
        for (std::size_t i = 0; i <= simulator::FileStore::MaxFiles; ++i) {
            last = parts.files.Put("N" + std::to_string(i) + ".DAT", "x");
        }
        EXPECT_EQ(last, Refusal{4128});
    });
    EXPECT_EQ(FileClient{controller}.Load("E.DAT", std::string(simulator::FileStore::MaxFileSize + 1, 'x')), 4128);
}

TEST(FileStore, ServesAndUpdatesAFolderAndNothingBesideIt) {
    ScratchFolder const scratch;
    auto const folder = scratch.Path() / "served";
    std::filesystem::create_directories(folder / "SUB.JBI");
    WriteFile(scratch.Path() / "OUTSIDE.DAT", "secret");
    std::filesystem::create_symlink(scratch.Path() / "OUTSIDE.DAT", folder / "LINK.DAT");
    WriteFile(folder / "mine.dat", "old");
    WriteFile(folder / "LOCKED.DAT", "locked");
    std::filesystem::permissions(folder / "LOCKED.DAT", std::filesystem::perms::owner_read);
    WriteFile(folder / "notes.txt", "no");
    auto options = StillOptions();
    options.filesFolder = folder;
    VirtualController controller("", options);
    FileClient const client{controller};
    EXPECT_EQ(client.List("*.*"), "LOCKED.DAT\r\nMINE.DAT\r\nRS.PRM\r\nSYSTEM.SYS\r\nTOOL.CND\r\n");
    EXPECT_EQ(client.Save("LINK.DAT"), "#58035");
    EXPECT_EQ(client.Load("LINK.DAT", "x"), 58014);
    EXPECT_EQ(client.Load("SUB.JBI", JobText("SUB", "")), 58014);
    EXPECT_EQ(client.Load("LOCKED.DAT", "x"), 58014);
    EXPECT_EQ(client.Load("MINE.DAT", "new"), 0);
    EXPECT_EQ(client.Load("JOB.JBI", JobText("JOB", "")), 0);
    EXPECT_EQ(ContentOf(folder / "mine.dat"), "new");
    EXPECT_EQ(ContentOf(folder / "JOB.JBI"), JobText("JOB", ""));
    EXPECT_EQ(ContentOf(scratch.Path() / "OUTSIDE.DAT"), "secret");
    EXPECT_EQ(client.Delete("JOB.JBI"), 0);
    EXPECT_FALSE(std::filesystem::exists(folder / "JOB.JBI"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 5) << "no temporary file stays";
    WriteFile(folder / "TOOL.CND", "//TOOL 0\r\n");
    EXPECT_EQ(client.Save("TOOL.CND"), "//TOOL 0\r\n");
    options.filesFolder = folder / "none";
    VirtualController other("", options);
    EXPECT_NE(other.WithParts([](ControllerParts& parts) { return parts.files.FolderError(); }), "");
}

} // namespace
} // namespace harvlink::test
