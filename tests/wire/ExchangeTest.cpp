#include <atomic>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include "support/ScriptedController.h"
#include "wire/Request.h"

namespace harvlink::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// A request for register 5, whose reply is one word, and its result.
struct RegisterRead {
    OutgoingPacket<NoPayload> request;
    IncomingPacket<std::uint32_t> reply;
    StatusInfo status;

    RegisterRead() { request.subHeader = {CommandNumber::RegisterData, 5, FixedField::FirstAttribute, ServiceReadOne}; }
    explicit RegisterRead(NetworkManager& manager, std::optional<unsigned char> id = {}) : RegisterRead() {
        Run(manager, id);
    }
    void Run(NetworkManager& manager, std::optional<unsigned char> id = {}, bool wait = true) {
        status = manager.SendAndReceive(request, reply, id, wait);
    }
};

Bytes const registerRequest = RobotRequest(121, 5, 1, 14);

struct TwoWords {
    using Reply = std::uint32_t;
    static constexpr CommandNumber command = CommandNumber::SystemParameterRead;
    static constexpr Service service = Service::WriteAll;
    static constexpr std::uint16_t instance = 0xfedc;
    std::array<std::int32_t, 2> payload{4, -22};
};

std::string NoResponse(unsigned retries) {
    return "No response from controller after " + std::to_string(retries) + " retries.";
}

TEST(Exchange, RequestsAreExactToTheByte) {
    ScriptedController controller;
    auto const manager = controller.Connect();
    StatusInfo status;

    controller.Expect(RobotRequest(114, 1, 0, 1));
    manager->SimpleRequest<std::uint64_t>(1, CommandNumber::StatusRead, status, FixedField::WholeRecord,
                                          ServiceReadAll);
    controller.Expect(RobotRequest(924, 0xfedc, 0, 2, Words({4, -22})));
    CarryOut(*manager, TwoWords{});

    OutgoingPacket<std::array<char, FileBlockSize>> block;
    block.header.division = Division::FileControl;
    block.header.ack = 1;
    block.header.blockNumber = 0x80000001;
    block.header.payloadSize = 5;
    block.subHeader = SubHeaderForSending(FileServices::LoadFile);
    std::ranges::copy(std::string_view("A.JBI and more"), block.payload.begin());
    IncomingPacket<std::uint8_t> reply;
    controller.Expect(FileRequest(21, Text("A.JBI"), 1, 0x80000001));
    manager->SendAndReceive(block, reply, 0x55, true);
    block.header.payloadSize = FileBlockSize;
    controller.Expect(FileRequest(21, Text("A.JBI and more", 479), 1, 0x80000001));
    manager->SendAndReceive(block, reply, 0x55, true);

    // The probe took id 1. An id that replaces the new id uses that up too.
    auto const all = controller.Received(5);
    EXPECT_EQ(all[1].bytes.size(), 32U);
    EXPECT_EQ(all[1].Id(), 2);
    EXPECT_EQ(all[2].Id(), 3);
    EXPECT_EQ(all[3].Id(), 0x55);
    EXPECT_EQ(all[2].port, 10040);
    EXPECT_EQ(all[3].port, 10041);
    controller.Expect(registerRequest);
    RegisterRead const last(*manager);
    EXPECT_EQ(controller.Received(6).back().Id(), 6);
}

TEST(Exchange, StatusOfReplyDecides) {
    struct {
        std::uint8_t status, size;
        std::uint16_t added;
        int code;
        char const* message;
    } const cases[] = {
        {0, 0, 0, 0, "OK"},
        {0, 0, 8, 0, "OK"}, // no added status is announced
        {0, 1, 0, 0, "OK"},
        {0, 2, 0x2060, 8288, "There is an active Error or Alarm."},
        {8, 0, 0, 8, "Requested command is undefined."},
        {9, 2, 0, 9, "The element number of the invalid data is detected."},
        {8, 0, 40961, 40961, "Instance value is invalid"}, // an added status counts whenever the status is set
        {0x1f, 2, 0xb003, 45059, "Requiring data size error"},
        {0x1f, 0, 0, 31, "Could not find an error description with that code."},
        {255, 255, 65535, 65535, "General error. Verify input parameters."},
    };
    ScriptedController controller;
    auto const manager = controller.Connect();
    for (auto const& example : cases) {
        controller.Expect(registerRequest, {.payload = U32(77),
                                            .status = example.status,
                                            .addedStatusSize = example.size,
                                            .addedStatus = example.added});
        RegisterRead const read(*manager);
        EXPECT_EQ(read.status.StatusCode, example.code);
        EXPECT_EQ(read.status.Message, example.message);
        EXPECT_EQ(read.reply.payload, 77U); // for every status
    }
}

TEST(Exchange, DatagramsOfTheExtremeSizes) {
    ScriptedController controller;
    auto const manager = controller.Connect();
    controller.Expect(registerRequest, Payload(Bytes(40000, 0xee)));
    EXPECT_EQ(RegisterRead(*manager).reply.payload, 0xeeeeeeeeU);
    Hurry(*manager);
    for (std::size_t const length : {0U, 1U, 11U}) { // ends before the id
        controller.Expect(registerRequest, Reply{.raw = Bytes(length, 7)});
        EXPECT_EQ(RegisterRead(*manager).status.StatusCode, 0x30006) << length;
    }
}

TEST(Exchange, StaleReplyOnOtherPortIsOneLikeAnyOther) {
    ScriptedController controller;
    auto const manager = controller.Connect();
    OutgoingPacket<NoPayload> list;
    list.header.division = Division::FileControl;
    list.subHeader = SubHeaderForSending(FileServices::ListFile);
    IncomingPacket<std::uint8_t> listReply;
    controller.Expect(FileRequest(50)); // so that the file socket has an address
    EXPECT_EQ(manager->SendAndReceive(list, listReply, {}, true).StatusCode, 0);

    // The library listens on both sockets, and accepts the right id on either.
    controller.Expect(registerRequest, {.payload = U32(5), .toOtherSocket = true});
    EXPECT_EQ(RegisterRead(*manager).reply.payload, 5U);
    controller.Expect(FileRequest(50), Reply{.toOtherSocket = true});
    EXPECT_EQ(manager->SendAndReceive(list, listReply, {}, true).StatusCode, 0);

    for (bool const toOtherSocket : {false, true}) {
        controller.Expect(registerRequest, {.payload = U32(5), .staleBy = 3, .toOtherSocket = toOtherSocket});
        RegisterRead const read(*manager);
        EXPECT_EQ(read.status.Message, NoResponse(0));
        EXPECT_EQ(read.reply.payload, 0U);
    }
}

TEST(Exchange, ReusedPacketIsNeverItsOwnAnswer) {
    ScriptedController controller;
    auto const manager = controller.Connect("YA1.00", 1);
    Hurry(*manager);
    for (std::uint8_t const id : Bytes{0x55, 0, 0xff}) {
        RegisterRead read;
        controller.Expect(registerRequest, Payload(U32(6)));
        read.Run(*manager, id);
        EXPECT_EQ(read.reply.payload, 6U);
        controller.Expect(registerRequest, Replies{});
        read.Run(*manager, id);
        EXPECT_EQ(read.status.StatusCode, 0x30006) << unsigned{id};
    }
}

TEST(Exchange, WithoutWaitingTheStatusIsThatOfThePacket) {
    ScriptedController controller;
    auto const manager = controller.Connect();
    RegisterRead read;
    controller.Expect(registerRequest, Replies{});
    read.Run(*manager, {}, false);
    EXPECT_EQ(read.status.StatusCode, 0);
    read.reply.subHeader.status = 8;
    controller.Expect(registerRequest, Replies{});
    read.Run(*manager, {}, false);
    EXPECT_EQ(read.status.StatusCode, 8);
}

TEST(Exchange, PeriodOfASecondAndMore) {
    ScriptedController controller; // the manager's period is eight seconds
    auto const manager = controller.Connect();
    manager->ResetTimeout();
    controller.Expect(registerRequest, {.payload = U32(9), .delay = milliseconds(1100)});
    EXPECT_EQ(RegisterRead(*manager).reply.payload, 9U);
}

TEST(Exchange, InterruptedWaitGoesOnForTheRestOfItsPeriod) {
    ScriptedController controller;
    auto const manager = controller.Connect();
    Hurry(*manager);
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction previous {};
    ::sigaction(SIGUSR1, &action, &previous);
    controller.Expect(registerRequest, Replies{});
    std::atomic<bool> isOver = false;
    std::thread interrupter([&, waiting = ::pthread_self()] {
        for (int i = 0; i < 2000 && !isOver; ++i) {
            ::pthread_kill(waiting, SIGUSR1);
            std::this_thread::sleep_for(milliseconds(5));
        }
    });
    auto const start = Clock::now();
    RegisterRead const read(*manager);
    auto const elapsed = Clock::now() - start;
    isOver = true;
    interrupter.join();
    ::sigaction(SIGUSR1, &previous, nullptr);
    EXPECT_EQ(read.status.StatusCode, 0x30006);
    EXPECT_GE(elapsed, milliseconds(128));
    EXPECT_LT(elapsed, std::chrono::seconds(5));
}

TEST(Exchange, SocketsAboveDescriptor1023CloseOnExecAndAreReleased) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_max < 1200) {
        GTEST_SKIP() << "this machine allows too few descriptors";
    }
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    ScriptedController controller;
    std::vector<int> fillers;
    while (fillers.empty() || fillers.back() < 1100) {
        fillers.push_back(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0));
        ASSERT_GE(fillers.back(), 0);
    }
    int const first = fillers.back() + 1;
    {
        auto const manager = controller.Connect();
        controller.Expect(registerRequest, Payload(U32(1)));
        EXPECT_EQ(RegisterRead(*manager).reply.payload, 1U);
        for (int const descriptor : {first, first + 1}) {
            EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
        }
    }
    EXPECT_EQ(::fcntl(first, F_GETFD), -1);
    EXPECT_EQ(::fcntl(first + 1, F_GETFD), -1);
    for (int const filler : fillers) {
        ::close(filler);
    }
}

} // namespace
} // namespace harvlink::test
