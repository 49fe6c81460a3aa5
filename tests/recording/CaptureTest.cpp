#include <chrono>
#include <thread>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <pcap/pcap.h>

#include "harvlink/harvlink.h"
#include "recording/capture/CaptureFile.h"
#include "recording/capture/CaptureFormat.h"
#include "simulator/network/Server.h"
#include "simulator/replay/CaptureReplay.h"
#include "support/LoopbackAddress.h"
#include "support/ScratchFolder.h"

namespace harvlink::recording {
namespace {

using simulator::CaptureReplay;
using simulator::Reply;
using simulator::Request;
using namespace std::string_literals;

constexpr std::uint32_t Client = 0xC0A80001;
constexpr std::uint32_t Press = 0xC0A80002;
constexpr std::uint32_t Weld = 0xC0A80003;
constexpr std::uint16_t ClientPort = 50000;
constexpr std::uint16_t RobotPort = 10040;

template <typename Record>
std::string BytesOf(Record const& record) {
    return {reinterpret_cast<char const*>(&record), sizeof(record)};
}

std::string Big(unsigned number) {
    return {static_cast<char>(number >> 8U), static_cast<char>(number)};
}

std::string Big32(std::uint32_t number) {
    return Big(number >> 16U) + Big(number & 0xFFFFU);
}

std::string ReadOf(std::uint16_t instance, std::uint8_t number, CommandNumber command = CommandNumber::ByteVariable) {
    CommonHeader header;
    header.requestId = number;
    return BytesOf(header) +
           BytesOf(SubHeaderForSending(command, instance, FixedField::FirstAttribute, ServiceReadOne));
}

std::string AnswerOf(std::uint8_t number, std::string const& payload, std::uint16_t code = 0) {
    CommonHeader header;
    header.requestId = number;
    header.ack = 1;
    header.payloadSize = static_cast<std::uint16_t>(payload.size());
    SubHeaderForReceiving subHeader;
    subHeader.service = ServiceReadOne | 0x80U;
    subHeader.status = code == 0 ? 0 : 31;
    subHeader.addedStatus = code;
    return BytesOf(header) + BytesOf(subHeader) + payload;
}

struct Packet {
    double second = 0;
    std::string payload;
    bool isAnswer = false;
    std::uint32_t controller = Press;
    unsigned fragment = 0; ///< the field of the IP header
    int lie = 0; ///< added to the length of UDP
    std::uint16_t controllerPort = RobotPort;
    std::uint16_t clientPort = ClientPort;
};

std::string IpOf(Packet const& packet) {
    auto const length = static_cast<unsigned>(packet.payload.size());
    auto const addresses =
        packet.isAnswer ? Big32(packet.controller) + Big32(Client) : Big32(Client) + Big32(packet.controller);
    auto const ports = packet.isAnswer ? Big(packet.controllerPort) + Big(packet.clientPort)
                                       : Big(packet.clientPort) + Big(packet.controllerPort);
    return "\x45\0"s + Big(28 + length) + Big(1) + Big(packet.fragment) + "\x40\x11\0\0"s + addresses + ports +
           Big(8 + length + static_cast<unsigned>(packet.lie)) + Big(0) + packet.payload;
}

/// Writes a capture with libpcap; each packet gets `before` in front and `after` behind, and is cut to `most` bytes.
void WriteCapture(std::string const& file, std::vector<Packet> const& packets, int link = DLT_RAW,
                  std::string const& before = {}, std::string const& after = {}, std::size_t most = 65535) {
    pcap_t* const handle = pcap_open_dead(link, 65535);
    pcap_dumper_t* const dumper = pcap_dump_open(handle, file.c_str());
    ASSERT_NE(dumper, nullptr) << pcap_geterr(handle);
    for (Packet const& packet : packets) {
        std::string const bytes = before + IpOf(packet) + after;
        pcap_pkthdr header{};
        header.ts.tv_sec = 1'790'000'000 + static_cast<int>(packet.second);
        header.ts.tv_usec = static_cast<int>((packet.second - static_cast<int>(packet.second)) * 1e6);
        header.len = static_cast<bpf_u_int32>(bytes.size());
        header.caplen = static_cast<bpf_u_int32>(std::min(bytes.size(), most));
        pcap_dump(reinterpret_cast<u_char*>(dumper), &header, reinterpret_cast<u_char const*>(bytes.data()));
    }
    pcap_dump_close(dumper);
    pcap_close(handle);
}

/// The other format, which libpcap reads but does not write: a section, an interface, and a block for each packet.
void WriteNextGeneration(std::string const& file, std::vector<Packet> const& packets) {
    auto const number = [](std::uint32_t value) { return BytesOf(value); };
    auto const block = [&](std::uint32_t type, std::string body) {
        body.resize((body.size() + 3) / 4 * 4);
        auto const size = number(static_cast<std::uint32_t>(body.size() + 12));
        return number(type) + size + body + size;
    };
    std::string content = block(0x0A0D0D0A, number(0x1A2B3C4D) + number(1) + number(~0U) + number(~0U));
    content += block(1, number(101) + number(65535));
    for (Packet const& packet : packets) {
        std::string const bytes = IpOf(packet);
        auto const time = 1'790'000'000'000'000 + static_cast<std::uint64_t>(packet.second * 1e6);
        auto const size = number(static_cast<std::uint32_t>(bytes.size()));
        content += block(6, number(0) + number(static_cast<std::uint32_t>(time >> 32U)) +
                                number(static_cast<std::uint32_t>(time)) + size + size + bytes);
    }
    test::WriteFile(file, content);
}

/// The first byte of the answer's payload, or minus its code; -1 if nothing is answered, -2 if it is left to the controller.
int Ask(CaptureReplay& replay, std::string const& datagram) {
    static std::uint64_t const peer = 7;
    Request request;
    request.peer = peer;
    EXPECT_TRUE(request.Parse(std::as_bytes(std::span(datagram))));
    Reply reply;
    if (!replay.Answer(request, reply)) {
        return -2;
    }
    EXPECT_TRUE(reply.IsSuppressed() || reply.Bytes()[11] == std::byte{request.header.requestId});
    if (reply.IsSuppressed() || reply.IsRefused()) {
        return reply.IsSuppressed() ? -1 : -static_cast<int>(reply.Code());
    }
    return std::to_integer<int>(reply.Bytes()[32]);
}

int AskAt(std::string const& file, std::string const& at, std::string const& datagram, std::string const& cell = {}) {
    CaptureReplay replay(file, {.at = at, .controller = cell, .servedAddress = {}, .speed = {}});
    return Ask(replay, datagram);
}

std::vector<Packet> TwoAnswers() {
    return {
        {0, ReadOf(5, 1)}, {0.001, AnswerOf(1, "\x11"), true}, {2, ReadOf(5, 2)}, {2.001, AnswerOf(2, "\x22"), true}};
}

class CaptureTest : public testing::Test {
protected:
    test::ScratchFolder folder_;
};

TEST_F(CaptureTest, ReadsEachLinkLayer) {
    struct Case {
        char const* name;
        int link;
        std::string before;
        std::string after;
    };
    std::string const addresses(12, '\x02');
    for (Case const& each : std::initializer_list<Case>{
             {"ethernet, filled up", DLT_EN10MB, addresses + Big(0x0800), std::string(9, '\xEE')},
             {"one tag", DLT_EN10MB, addresses + Big(0x8100) + Big(7) + Big(0x0800), ""},
             {"two tags", DLT_EN10MB, addresses + Big(0x88A8) + Big(7) + Big(0x8100) + Big(9) + Big(0x0800), ""},
             {"cooked", DLT_LINUX_SLL, std::string(14, '\0') + Big(0x0800), ""},
             {"cooked 2", DLT_LINUX_SLL2, Big(0x0800) + std::string(18, '\0'), ""},
             {"loopback", DLT_NULL, "\2\0\0\0"s, ""},
             {"loopback of another byte order", DLT_NULL, "\0\0\0\2"s, ""},
             {"loopback in network order", DLT_LOOP, "\0\0\0\2"s, ""},
             {"raw", DLT_RAW, "", ""},
             {"raw IPv4", DLT_IPV4, "", ""}}) {
        SCOPED_TRACE(each.name);
        WriteCapture("x.pcap", TwoAnswers(), each.link, each.before, each.after);
        EXPECT_EQ(AskAt("x.pcap", "", ReadOf(5, 99)), 0x11);
        EXPECT_EQ(AskAt("x.pcap", "+2s", ReadOf(5, 98)), 0x22);
    }
    WriteNextGeneration("x.pcapng", TwoAnswers());
    EXPECT_TRUE(IsCapture("x.pcapng"));
    EXPECT_EQ(AskAt("x.pcapng", "+1999ms", ReadOf(5, 9)), 0x11);
    WriteCapture("wlan.pcap", TwoAnswers(), DLT_IEEE802_11);
    EXPECT_THROW(AskAt("wlan.pcap", "", ReadOf(5, 9)), RecordingError);
}

TEST_F(CaptureTest, AnswersByRequestAndTime) {
    WriteCapture("x.pcap", {{0, ReadOf(5, 1)},
                            {0.1, ReadOf(6, 2)},
                            {0.2, AnswerOf(2, "\x66"), true}, // not in the order of the requests
                            {0.3, AnswerOf(1, "\x11"), true},
                            {1, ReadOf(5, 3)}, // repeated, then answered
                            {1.2, ReadOf(5, 3)},
                            {1.3, AnswerOf(3, "\x12"), true},
                            {2, ReadOf(5, 4)}, // never answered
                            {5, ReadOf(5, 5)},
                            {5.1, AnswerOf(5, {}, 0xA001), true},
                            {5.2, AnswerOf(9, "\x77"), true}, // nobody asked
                            {6, ReadOf(6, 6)}}); // the capture ends before the answer
    for (auto const& [at, instance, expected] :
         std::initializer_list<std::tuple<char const*, std::uint16_t, int>>{{"", 5, 0x11},
                                                                            {"", 6, 0x66},
                                                                            {"+1s", 5, 0x12},
                                                                            {"+2s", 5, -1},
                                                                            {"+4900ms", 5, -1},
                                                                            {"+5s", 5, -0xA001},
                                                                            {"+6s", 6, 0x66}}) {
        EXPECT_EQ(AskAt("x.pcap", at, ReadOf(instance, 200)), expected) << at << ' ' << instance;
    }
    EXPECT_THROW(AskAt("x.pcap", "+7s", ReadOf(5, 1)), RecordingError);
    CaptureReplay replay("x.pcap", {});
    EXPECT_EQ(Ask(replay, ReadOf(8, 1)), -0xA001);
    EXPECT_EQ(Ask(replay, ReadOf(8, 2)), -0xA001);
    EXPECT_EQ(Ask(replay, ReadOf(5, 2) + "x"), -45059);
    EXPECT_EQ(Ask(replay, ReadOf(11, 3, CommandNumber::SystemInformationRead)), -2);
    auto const lines = replay.Missed().Lines();
    ASSERT_EQ(lines.size(), 3); // in the order of their texts
    EXPECT_EQ(lines[1], "2 x ByteVariable (command 122) instance 8 attribute 1 service 0x0e: refused");
}

TEST_F(CaptureTest, ChoosesAControllerByItsAddress) {
    auto packets = TwoAnswers();
    packets.push_back({3, ReadOf(5, 1), false, Weld});
    packets.push_back({3.001, AnswerOf(1, "\x33"), true, Weld});
    WriteCapture("x.pcap", packets);
    EXPECT_EQ(AskAt("x.pcap", "", ReadOf(5, 1), "192.168.0.2"), 0x11);
    EXPECT_EQ(AskAt("x.pcap", "", ReadOf(5, 1), "192.168.0.3"), 0x33);
    CaptureReplay served("x.pcap", {.at = {}, .controller = {}, .servedAddress = "192.168.0.3", .speed = {}});
    EXPECT_EQ(Ask(served, ReadOf(5, 1)), 0x33);
    try {
        AskAt("x.pcap", "", ReadOf(5, 1));
        ADD_FAILURE();
    } catch (RecordingError const& error) {
        EXPECT_STREQ(error.what(),
                     "x.pcap: choose a controller of the capture: 192.168.0.2 (2 requests), 192.168.0.3 (1 requests)");
    }
}

TEST_F(CaptureTest, NamesWhatItCannotTake) {
    auto packets = TwoAnswers();
    packets.push_back({3, ReadOf(5, 3), false, Press, 0x2000});
    packets.push_back({3, ReadOf(5, 3), false, Press, 0, 100});
    WriteCapture("x.pcap", packets);
    EXPECT_EQ(CaptureReplay("x.pcap", {}).Warning(), "x.pcap: left out: 1 fragments of datagrams, 1 malformed packets");
    WriteCapture("cut.pcap", TwoAnswers(), DLT_RAW, {}, {}, 28 + 32);
    EXPECT_EQ(CaptureReplay("cut.pcap", {}).Warning(), "cut.pcap: left out: 2 datagrams that the sniffer cut short");
    WriteCapture("none.pcap", {});
    EXPECT_THROW(CaptureReplay("none.pcap", {}), RecordingError);
    std::string const whole = test::ContentOf("x.pcap");
    for (std::size_t size = 0; size < whole.size(); size += 3) {
        test::WriteFile("part.pcap", whole.substr(0, size));
        try {
            CaptureReplay const replay("part.pcap", {});
        } catch (RecordingError const& error) {
            EXPECT_TRUE(std::string_view(error.what()).starts_with("part.pcap: "));
        }
    }
    std::string lying = whole;
    lying.replace(24 + 8, 4, "\xFF\xFF\xFF\x7F");
    test::WriteFile("lying.pcap", lying);
    EXPECT_THROW(CaptureReplay("lying.pcap", {}), RecordingError);
}

/// Connects, reads and writes a variable, reads a file and reads the variable again after a while.
std::vector<std::string> Use(std::string const& address, int pauseMilliseconds) {
    std::vector<std::string> seen;
    StatusInfo status;
    Connection const controller = Connect(address, status, 300, 3);
    EXPECT_EQ(status.StatusCode, 0) << status.Message;
    if (!controller) {
        return seen;
    }
    ByteVariableData value;
    std::string text;
    auto const read = [&](unsigned short index) {
        int const code = controller->Variables->byteVariable->Read(index, value).StatusCode;
        seen.push_back(std::to_string(code) + ' ' + std::to_string(value.value));
    };
    read(5);
    value.value = 9;
    seen.push_back(std::to_string(controller->Variables->byteVariable->Write(value).StatusCode));
    seen.push_back(std::to_string(controller->Files->SaveFromControllerToString("RS.PRM", text).StatusCode) + text);
    std::this_thread::sleep_for(std::chrono::milliseconds(pauseMilliseconds));
    read(5);
    read(30000);
    return seen;
}

TEST_F(CaptureTest, ALibraryReadsTheSameAgain) {
    std::vector<Packet> packets;
    auto const begin = std::chrono::steady_clock::now();
    simulator::Server server;
    std::string const address = test::NextLoopbackAddress();
    server.Add(address).With([](simulator::ControllerModel& model) { model.variables.bytes[5] = 4; });
    server.SetRecorder([&](sockaddr_in const& from, sockaddr_in const& to, std::span<std::byte const> datagram) {
        std::chrono::duration<double> const time = std::chrono::steady_clock::now() - begin;
        auto const isAnswer = from.sin_port == htons(10040) || from.sin_port == htons(10041);
        packets.push_back({.second = time.count(),
                           .payload = {reinterpret_cast<char const*>(datagram.data()), datagram.size()},
                           .isAnswer = isAnswer,
                           .controllerPort = ntohs(isAnswer ? from.sin_port : to.sin_port),
                           .clientPort = ntohs(isAnswer ? to.sin_port : from.sin_port)});
    });
    ASSERT_TRUE(server.Start()) << server.Error();
    auto const first = Use(address, 50);
    server.Stop();
    ASSERT_EQ(first.size(), 5);
    EXPECT_EQ(first[0], "0 4");
    EXPECT_EQ(first[3], "0 9");
    WriteCapture("x.pcap", packets);
    simulator::Server again;
    std::string const replayed = test::NextLoopbackAddress();
    again.Add(replayed).SetAnswerer(simulator::OpenReplay("x.pcap", {}));
    ASSERT_TRUE(again.Start()) << again.Error();
    EXPECT_EQ(Use(replayed, 400), first);
}

} // namespace
} // namespace harvlink::recording
