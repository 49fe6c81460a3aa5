#include <bit>
#include <chrono>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/LoopbackAddress.h"
#include "support/ScriptedController.h"

namespace harvlink::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds period(128); ///< of a manager that was hurried

/// A controller and a manager with a policy, and what a request for a register comes to.
struct Session {
    explicit Session(ConnectionPolicy const& policy = {}, unsigned retries = 0)
        : manager(controller.Connect("YA1.00", retries, policy)) {}

    StatusInfo Read(std::optional<unsigned char> id = {}) {
        OutgoingPacket<NoPayload> request;
        request.subHeader = {CommandNumber::RegisterData, 5, Service::ReadOne};
        IncomingPacket<std::uint32_t> reply;
        StatusInfo status = manager->Exchange(request.View(), reply.View(sizeof(std::uint32_t)), id, true);
        value = reply.payload;
        return status;
    }
    StatusInfo Write() {
        OutgoingPacket<std::uint32_t> request;
        request.header.payloadSize = sizeof(std::uint32_t);
        request.subHeader = {CommandNumber::RegisterData, 5, Service::WriteOne};
        IncomingPacket<std::uint8_t> reply;
        return manager->SendAndReceive(request, reply, {}, true);
    }
    StatusInfo AcknowledgeBlock(std::uint32_t number) {
        OutgoingPacket<std::array<char, 32>> request;
        request.header.division = Division::FileControl;
        request.header.ack = 1;
        request.header.blockNumber = number;
        request.subHeader = SubHeaderForSending(FileServices::SaveFile);
        IncomingPacket<std::array<char, 479>> reply;
        StatusInfo status = manager->Exchange(request.View(), reply.View(), 9, true);
        value = reply.header.blockNumber;
        return status;
    }
    /// Answers the n-th request that comes from now on with `replies[n]`; all behind them with the number 1.
    void Answer(std::vector<Replies> replies) {
        controller.AnswerRest(
            [replies = std::move(replies), asked = std::make_shared<std::size_t>(0)](Datagram const&) {
                std::size_t const number = (*asked)++;
                return number < replies.size() ? replies[number] : Replies{Payload(U32(1))};
            });
    }
    std::uint64_t Count(Rule rule) const {
        return manager->Statistics()
            .Snapshot()
            .ruleCounts[static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(rule)))];
    }

    ScriptedController controller;
    std::unique_ptr<NetworkManager> manager;
    std::uint32_t value = 0;
};

/// The answer that the controller would give, with one byte changed.
Replies Spoiled(Datagram const& request, std::size_t offset, std::uint8_t change) {
    Bytes bytes = ScriptedController::ReplyBytes(Payload(U32(1)), request);
    bytes[offset] ^= change;
    return {Reply{.raw = bytes}};
}

/// An edge of the designed behaviour, and the rule that takes it away. `shows` plays it, and says whether it is there.
struct Edge {
    char const* name;
    Rule rule;
    bool (*shows)(Session&);
    unsigned retries = 0;
    bool isCounted = true; ///< by a strict connection; what its sockets don't pass on is not
};

bool AcceptsSpoiled(Session& session, std::size_t offset, std::uint8_t change = 0x40) {
    session.controller.AnswerRest([=](Datagram const& request) { return Spoiled(request, offset, change); });
    Hurry(*session.manager);
    StatusInfo const status = session.Read();
    EXPECT_TRUE(status.StatusCode == 0 || status.Message.ends_with("(rule FittingAnswer)")) << status.Message;
    return status.StatusCode == 0;
}

/// Sends it to a client from an address that is nobody's the client has asked.
void SendFromStranger(Bytes const& bytes, std::uint16_t clientPort) {
    int const stranger = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in endpoint{};
    endpoint.sin_family = AF_INET;
    endpoint.sin_addr.s_addr = ::inet_addr(NextLoopbackAddress().c_str());
    EXPECT_EQ(::bind(stranger, reinterpret_cast<sockaddr const*>(&endpoint), sizeof(endpoint)), 0);
    endpoint.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    endpoint.sin_port = ::htons(clientPort);
    EXPECT_GT(::sendto(stranger, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr const*>(&endpoint),
                       sizeof(endpoint)),
              0);
    ::close(stranger);
}

Edge const edges[] = {
    {"silence with number 0", Rule::SilenceIsTimeout,
     [](Session& s) {
         s.Answer({});
         for (int id = 2; id <= 127; ++id) {
             EXPECT_EQ(s.Read().StatusCode, 0);
         }
         Hurry(*s.manager);
         s.Answer({{}});
         StatusInfo const status = s.Read();
         EXPECT_EQ(s.controller.Received(128).back().Id(), 0);
         EXPECT_TRUE(status.StatusCode == 0 || status.Message.ends_with("(rule SilenceIsTimeout)"));
         return status.StatusCode == 0;
     }},
    {"an answer from another port", Rule::KnownSender,
     [](Session& s) {
         s.Answer({{{}}, {{.payload = U32(5), .toOtherSocket = true}}});
         s.AcknowledgeBlock(1); // so that the file socket has an address
         Hurry(*s.manager);
         return s.Read().StatusCode == 0;
     },
     0, false},
    {"an answer from another address", Rule::KnownSender,
     [](Session& s) {
         s.controller.AnswerRest([](Datagram const& request) {
             SendFromStranger(ScriptedController::ReplyBytes(Payload(U32(5)), request), request.clientPort);
             return Replies{};
         });
         Hurry(*s.manager);
         return s.Read().StatusCode == 0;
     },
     0, false},
    {"a lost answer", Rule::RepeatReads,
     [](Session& s) {
         Hurry(*s.manager);
         s.Answer({{}});
         return s.Read().StatusCode != 0;
     },
     1},
    {"another magic", Rule::FittingAnswer, [](Session& s) { return AcceptsSpoiled(s, 0); }},
    {"another header size", Rule::FittingAnswer, [](Session& s) { return AcceptsSpoiled(s, 4); }},
    {"a payload size that did not arrive", Rule::FittingAnswer, [](Session& s) { return AcceptsSpoiled(s, 6, 1); }},
    {"the other division", Rule::FittingAnswer, [](Session& s) { return AcceptsSpoiled(s, 9, 3); }},
    {"another service", Rule::FittingAnswer, [](Session& s) { return AcceptsSpoiled(s, 24, 1); }},
    {"a stale answer before the right one", Rule::Deadline,
     [](Session& s) {
         s.Answer({{{.staleBy = 1}, Payload(U32(1))}});
         return s.Read().StatusCode != 0;
     }},
    {"a late answer whose number has come round", Rule::NewPort,
     [](Session& s) {
         Hurry(*s.manager);
         s.Answer({{{.payload = U32(8), .delay = 2 * period}}, {Payload(U32(9))}});
         EXPECT_EQ(s.Read(7).StatusCode, 0x30006);
         for (int i = 0; i < 3; ++i) {
             s.manager->IncreaseTimeout();
         }
         EXPECT_EQ(s.Read(7).StatusCode, 0);
         return s.value == 8;
     }},
    {"a short answer", Rule::WholeAnswer,
     [](Session& s) {
         s.Answer({{Payload(U16(7))}});
         StatusInfo const status = s.Read();
         EXPECT_TRUE(status.StatusCode == 0 || (status.StatusCode == 0x50003 && s.value == 0)) << status.Message;
         return status.StatusCode == 0;
     }},
    {"a repeated block", Rule::BlockOrder,
     [](Session& s) {
         s.Answer({{{.block = 3}, {.block = 4}}});
         EXPECT_EQ(s.AcknowledgeBlock(3).StatusCode, 0);
         return s.value == 3;
     },
     1},
};

TEST(Rules, EachTakesItsEdgeAwayAndAnAuditOnlyCountsIt) {
    for (Edge const& edge : edges) {
        Rules const one = NoRules.With(edge.rule);
        struct {
            char const* name;
            ConnectionPolicy policy;
            bool showsEdge, counts;
        } const ways[] = {{"designed", {}, true, false},
                          {"alone",
                           {.enforced = edge.rule == Rule::BlockOrder ? one.With(Rule::Deadline) : one},
                           false,
                           edge.isCounted},
                          {"strict", {.enforced = StrictRules}, false, edge.isCounted},
                          {"audit", {.audited = StrictRules}, true, true}};
        for (auto const& way : ways) {
            SCOPED_TRACE(testing::Message() << edge.name << ", " << way.name);
            Session session(way.policy, edge.retries);
            EXPECT_EQ(edge.shows(session), way.showsEdge);
            EXPECT_EQ(session.Count(edge.rule) > 0, way.counts);
        }
    }
}

/// A wait that began anew with each datagram would last as long as they come, 1.6 seconds.
TEST(Rules, DeadlineHoldsWhateverArrives) {
    Session session({.enforced = StrictRules}, 1);
    Hurry(*session.manager);
    Reply const stale{.staleBy = 1, .delay = milliseconds(40)};
    Replies strays(40, stale);
    strays.insert(strays.begin(), Reply{.raw = Bytes{}}); // an empty datagram is not silence
    session.Answer({strays, {}});
    auto const start = Clock::now();
    StatusInfo const status = session.Read();
    auto const elapsed = Clock::now() - start;
    EXPECT_EQ(status.StatusCode, 0x30006);
    EXPECT_EQ(status.Message, "No response from controller after 1 retries.");
    EXPECT_GE(elapsed, 2 * period);
    EXPECT_LT(elapsed, milliseconds(1400));
    ASSERT_EQ(session.controller.Received(3).size(), 3U);
}

/// The first answer may still be on its way, and fits once its number comes round again.
TEST(Rules, ReadThatWasSentAgainIsTheLastOnItsPort) {
    Session session({.enforced = StrictRules}, 1);
    Hurry(*session.manager);
    session.Answer({{}, {Payload(U32(8))}});
    EXPECT_EQ(session.Read().StatusCode, 0);
    EXPECT_EQ(session.Read().StatusCode, 0);
    EXPECT_EQ(session.Read().StatusCode, 0);
    auto const all = session.controller.Received(5);
    ASSERT_EQ(all.size(), 5U);
    EXPECT_EQ(all[1].clientPort, all[2].clientPort);
    EXPECT_NE(all[2].clientPort, all[3].clientPort);
    EXPECT_EQ(all[3].clientPort, all[4].clientPort);
}

TEST(Rules, OnlyReadsAreSentAgain) {
    Session session({.enforced = StrictRules.Without(Rule::NewPort)}, 2);
    Hurry(*session.manager);
    session.Answer({{}, {}, {}, {}, {}, {}, {}});
    auto repetitions = [&, sent = std::size_t{1}](StatusInfo const& status) mutable {
        EXPECT_EQ(status.StatusCode, 0x30006);
        auto const all = session.controller.Received(sent + 1);
        auto const now = all.size() - sent;
        for (std::size_t i = sent; i < all.size(); ++i) {
            EXPECT_EQ(all[i].bytes, all[sent].bytes) << "with the same number";
        }
        sent = all.size();
        return now - 1;
    };
    EXPECT_EQ(repetitions(session.Write()), 0U);
    EXPECT_EQ(repetitions(session.AcknowledgeBlock(1)), 0U);
    EXPECT_EQ(repetitions(session.Read()), 2U);
    EXPECT_EQ(session.manager->Statistics().Snapshot().repeatedRequests, 2U);
}

TEST(Rules, ClosedPortIsReportedAtOnceAndAReboundOneIsFound) {
    Session session({.enforced = StrictRules});
    StatusInfo status;
    auto const start = Clock::now();
    NetworkManager const nobody(NextLoopbackAddress(), 8000, 3, status, {.enforced = StrictRules});
    EXPECT_EQ(status.StatusCode, 0x50002);
    EXPECT_TRUE(status.Message.ends_with("(rule KnownSender)")) << status.Message;
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(8));
    // A service that echoes its number, without the mark of an answer, fits as well; more payload than asked for is fine.
    session.controller.AnswerRest([](Datagram const& request) {
        Bytes bytes = ScriptedController::ReplyBytes(Payload(Words({6, 7})), request);
        bytes[24] = request.Service();
        return Replies{Reply{.raw = bytes}};
    });
    EXPECT_EQ(session.Read().StatusCode, 0);
    EXPECT_EQ(session.value, 6U);
}

TEST(Statistics, CountWhatTheLinkDid) {
    Session session({}, 0);
    session.Answer({{Payload(U32(1))},
                    {Payload(U32(1)), Payload(U32(1))}, // the second is a further answer to this exchange
                    {Payload(U32(1))}, // unheard, as the designed way ends with the doubled one
                    {{.raw = Bytes(20, 7)}}});
    EXPECT_EQ(session.Read().StatusCode, 0);
    EXPECT_EQ(session.Read().StatusCode, 0);
    EXPECT_EQ(session.Read().StatusCode, 0x30006);
    EXPECT_EQ(session.Read().StatusCode, 0x30006) << "the late answer";
    EXPECT_EQ(session.Read().StatusCode, 0x30006) << "the malformed one";
    ConnectionStatistics const seen = session.manager->Statistics().Snapshot();
    EXPECT_EQ(seen.exchanges, 6U); // the probe too
    EXPECT_EQ(seen.timeouts, 3U);
    EXPECT_EQ(seen.doubledAnswers, 1U);
    EXPECT_EQ(seen.lateAnswers, 1U);
    EXPECT_EQ(seen.malformedAnswers, 1U);
    EXPECT_EQ(seen.bytesSent, 6U * 32);
    EXPECT_EQ(seen.bytesReceived, 80U + 4 * 36 + 20);
    EXPECT_EQ(seen.roundTrip.count, 3U);
    EXPECT_LE(seen.roundTrip.leastMicroseconds, seen.roundTrip.medianMicroseconds);
    EXPECT_LE(seen.roundTrip.percentile95Microseconds, seen.roundTrip.mostMicroseconds);
    EXPECT_EQ(seen.ruleCounts, decltype(seen.ruleCounts){}) << "nothing is audited";
    EXPECT_EQ(seen.linkState, LinkState::Silent) << "three in a row";
}

TEST(Statistics, OneLostAnswerIsNotALostLink) {
    LinkStatistics statistics;
    auto const opened = statistics.Snapshot().linkStateSince;
    EXPECT_LT(std::chrono::system_clock::now() - opened, std::chrono::hours(1));
    std::string states;
    for (char const event : std::string("..a..a...a....aa")) {
        if (event == 'a') {
            statistics.NoteAnswer(milliseconds(3));
        } else {
            statistics.NoteSilence();
        }
        states += statistics.Snapshot().linkState == LinkState::Online ? 'o' : 's';
    }
    EXPECT_EQ(states, "oooooooosooosso"
                      "o");
    for (int i = 1; i <= 1024; ++i) { // older ones are overwritten
        statistics.NoteAnswer(std::chrono::microseconds(i));
    }
    RoundTripTimes const times = statistics.Snapshot().roundTrip;
    EXPECT_EQ(times.count, 1024U);
    EXPECT_EQ(times.leastMicroseconds, 1U);
    EXPECT_EQ(times.medianMicroseconds, 512U);
    EXPECT_EQ(times.percentile95Microseconds, 973U);
    EXPECT_EQ(times.mostMicroseconds, 1024U);
}

} // namespace
} // namespace harvlink::test
