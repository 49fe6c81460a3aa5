#include <algorithm>
#include <chrono>
#include <cstring>
#include <mutex>
#include <system_error>
#include <utility>

#include "wire/FittingAnswer.h"
#include "wire/MinimumAccess.h"
#include "wire/NetworkManager.h"

// The one exchange that every operation is built from. Where a rule is asked, the designed behaviour and that of a strict
// connection part; all the rest is the same for both.

namespace harvlink {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::nanoseconds;

constexpr int systemTimeoutError = 10060;

StatusInfo StatusOf(std::system_error const& error) {
    if (error.code().value() == systemTimeoutError) {
        return StatusInformation(ErrorStatusCodes::ResponseTimeout);
    }
    return StatusInformation(error.code().value(), error.what());
}

SubHeaderForSending SubHeaderOf(OutgoingView const& request) {
    SubHeaderForSending subHeader;
    std::memcpy(&subHeader, request.bytes.data() + sizeof(CommonHeader), sizeof(subHeader));
    return subHeader;
}

/// As constructed, so that a datagram that does not count leaves nothing behind, such as a last block.
void Clear(IncomingView const& reply) {
    std::ranges::fill(reply.bytes, std::byte{});
    reply.header = {};
}

std::size_t IndexOf(Division division) {
    return division == Division::FileControl ? 1 : 0;
}

} // namespace

/// Both exchange mutexes. Only the first is ever waited for, so the order in which others take them can't matter.
class NetworkManager::ExchangeLock {
public:
    ExchangeLock(FirstMutex& first, SecondMutex& second) : firstLock(first), secondLock(second, std::try_to_lock) {
        while (!secondLock.owns_lock()) {
            firstLock.unlock();
            firstLock.lock();
            secondLock = std::unique_lock(second, std::try_to_lock);
        }
    }

private:
    std::unique_lock<FirstMutex> firstLock;
    std::unique_lock<SecondMutex> secondLock;
};

enum class NetworkManager::Outcome : std::uint8_t { Answered, Silent, Refused };

/// An exchange under way.
struct NetworkManager::Question {
    OutgoingView request;
    IncomingView reply;
    SubHeaderForSending asked;
    bool hasOwnId; ///< given by the caller, as in a transfer
    bool isRepeated = false;
    std::uint8_t id = 0;
    microseconds period{};
    nanoseconds waited{}; ///< for the answer, since the request was sent
    std::size_t answerLength = 0;
    std::optional<Rule> refusedBy{}; ///< the rule that last dropped what would have been the answer
    std::optional<Arrival> kept{}; ///< what counts as the answer unless a further one comes within the period

    CommandNumber Command() const { return static_cast<CommandNumber>(asked.command); }
    Division Port() const { return request.header.division; }
    std::span<std::byte const> Sent() const {
        return request.bytes.first(std::min(request.header.payloadSize + HeaderSize, request.bytes.size()));
    }

    /// What writes, moves or acknowledges must not act twice.
    bool IsRepeatable() const { return request.header.ack == 0 && OnlyReads(Port(), Command(), asked.service); }

    bool IsFitting(std::size_t length) const { return FitsRequest(AskedNow(), AnswerOf(length)); }

    bool MayBeOfOpening(std::size_t length, bool isNumbered) const {
        return MayAnswerOpening(AskedNow(), AnswerOf(length), isNumbered);
    }

    /// A block of a file on its way to the controller.
    bool SendsBlock() const { return IsBlockSent(AskedNow()); }

    bool IsOfOtherBlock(std::size_t length, bool isNumbered) const {
        return AnswersOtherBlock(AskedNow(), AnswerOf(length), isNumbered);
    }

private:
    Asked AskedNow() const { return {request.header, asked}; }
    Answer AnswerOf(std::size_t length) const { return {reply.header, reply.subHeader, length}; }
};

StatusInfo NetworkManager::Exchange(OutgoingView request, IncomingView reply, std::optional<unsigned char> requestId,
                                    bool waitForReply) {
    Question question{request, reply, SubHeaderOf(request), requestId.has_value()};
    if (policy.access != Access::Full) {
        Access const needed = MinimumAccess(question.Port(), question.Command(), question.asked.service);
        if (needed > policy.access) {
            return Denied(needed);
        }
    }
    ExchangeLock const lock(firstExchangeMutex, secondExchangeMutex);
    std::uint8_t const newId = GetNewRequestId();
    question.id = requestId.value_or(newId);
    request.header.requestId = question.id;
    StatusInfo status;
    try {
        if (RenewIfDue(question)) {
            if (question.SendsBlock() && policy.Enforces(Rule::BlockOrder)) {
                DropWaiting(question);
            }
            transport->Send(question.Port(), question.Sent());
            NoteSent(question);
            status = waitForReply ? WaitForAnswer(question) : CheckHeader(reply.subHeader);
        } else {
            status = ReportUnreachable();
        }
    } catch (std::system_error const& error) {
        status = StatusOf(error);
    }
    NoteLossOfStartUp(status);
    return status;
}

/// A port is also due after a read that was sent again, as the other answer is still on its way, and when the other port has
/// used up numbers: a doubled answer that waits there unread would fit once they come round again. A transfer keeps its
/// number, and so its port.
bool NetworkManager::RenewIfDue(Question const& question) {
    constexpr std::uint64_t mostIdsElsewhere = highestRequestId / 2;
    std::size_t const port = IndexOf(question.Port());
    bool& isDue = isNewPortDue[port];
    if (!question.hasOwnId) {
        std::uint64_t const idsBetween = idsDrawn - std::exchange(idsDrawnUntil[port], idsDrawn);
        bool const mayCollide = idsBetween > mostIdsElsewhere || isSecondAnswerDue[port];
        isDue = isDue || (mayCollide && policy.Enforces(Rule::NewPort));
    }
    if (isDue && transport->Renew(question.Port())) {
        isDue = false;
        isSecondAnswerDue[port] = false;
    }
    return !isDue;
}

/// All answers to the blocks of a file have one id, and some controllers don't number them. What is there before a block
/// leaves can't be its answer.
void NetworkManager::DropWaiting(Question& question) {
    constexpr int most = 64; // whoever sends more must not hold the transfer up
    for (int i = 0; i < most; ++i) {
        Arrival const arrival = transport->Receive(question.Port(), question.reply.bytes, microseconds::zero());
        if (arrival.length == 0 && !arrival.isEmpty) {
            break;
        }
        IsRefused(question, Rule::BlockOrder, LinkCounter::DoubledAnswers);
    }
    question.refusedBy.reset();
    Clear(question.reply);
}

void NetworkManager::NoteSent(Question const& question) {
    CommonHeader const& header = question.request.header;
    usedIds.set(question.id);
    statistics.Add(LinkCounter::BytesSent, question.Sent().size());
    if (header.ack != 0 && header.payloadSize != 0) {
        statistics.Add(LinkCounter::BlocksSent);
    }
}

/// Without a new port nothing may be sent. For the link that is the same as silence.
StatusInfo NetworkManager::ReportUnreachable() {
    statistics.Add(LinkCounter::Exchanges);
    statistics.Add(LinkCounter::Timeouts);
    statistics.NoteSilence();
    return NamingRule(StatusInformation(ErrorStatusCodes::SystemFailure,
                                        "This computer has no socket for the controller, or no route to it."),
                      Rule::NewPort);
}

/// Listens for 1 + retries periods.
StatusInfo NetworkManager::WaitForAnswer(Question& question) {
    statistics.Add(LinkCounter::Exchanges);
    if (question.hasOwnId || policy.Enforces(Rule::SilenceIsTimeout)) {
        question.reply.header.requestId = static_cast<std::uint8_t>(~question.id);
    }
    bool& isDue = isNewPortDue[IndexOf(question.Port())];
    isDue = policy.Enforces(Rule::NewPort); // until it is answered, whatever ends the wait
    question.period = microseconds(timeoutMicroseconds);
    Outcome outcome = ListenForPeriod(question);
    for (std::uint64_t number = 1; number <= retries && outcome == Outcome::Silent; ++number) {
        Repeat(question);
        outcome = ListenForPeriod(question);
    }
    if (outcome == Outcome::Answered) {
        isDue = false;
        bool& isSecondDue = isSecondAnswerDue[IndexOf(question.Port())];
        isSecondDue = question.isRepeated || (question.hasOwnId && isSecondDue);
        return TakeAnswer(question);
    }
    statistics.Add(LinkCounter::Timeouts);
    statistics.NoteSilence();
    lastAnsweredId.reset();
    Refuses(Rule::NewPort);
    if (outcome == Outcome::Refused) {
        Refuses(Rule::KnownSender);
        return NamingRule(StatusInformation(ErrorStatusCodes::ControllerNotListening), Rule::KnownSender);
    }
    return ReportSilence(question);
}

void NetworkManager::Repeat(Question& question) {
    if (!policy.Watches(Rule::RepeatReads) || !question.IsRepeatable() || !Refuses(Rule::RepeatReads)) {
        return;
    }
    question.isRepeated = true;
    transport->Send(question.Port(), question.Sent());
    NoteSent(question);
    statistics.Add(LinkCounter::RepeatedRequests);
    if (isStartingUp) {
        statistics.Add(LinkCounter::StartUpRetries);
    }
}

/// As designed, the first datagram ends a period, whatever it is. Under a deadline only its time does. The clock is read
/// only after a datagram that is not the answer: reading it in each exchange would cost more than all that is counted.
NetworkManager::Outcome NetworkManager::ListenForPeriod(Question& question) {
    constexpr microseconds longest = std::chrono::hours(4); // keeps the sum within the clock's range
    bool const hasDeadline = policy.Enforces(Rule::Deadline);
    std::optional<Clock::time_point> end;
    microseconds rest = question.period;
    do {
        Arrival const arrival = transport->Receive(question.Port(), question.reply.bytes, rest);
        question.waited += arrival.waited;
        if (arrival.isRefused) {
            return Outcome::Refused;
        }
        if (IsAnswer(question, arrival)) {
            question.answerLength = arrival.length;
            return Outcome::Answered;
        }
        if (arrival.length == 0 && !arrival.isEmpty) {
            break;
        }
        if (!question.kept) {
            Refuses(Rule::Deadline);
        }
        if (hasDeadline || question.kept) {
            Clock::time_point const now = Clock::now();
            end = end.value_or(now + std::min<nanoseconds>(rest, longest) - arrival.waited);
            rest = std::chrono::ceil<microseconds>(*end - now);
        }
    } while ((hasDeadline || question.kept) && rest > microseconds::zero());
    return question.kept ? TakeKept(question) : Outcome::Silent;
}

/// Nothing else came: this controller does not number its answers. It had said no more than that all is well.
NetworkManager::Outcome NetworkManager::TakeKept(Question& question) {
    Clear(question.reply);
    question.reply.header.requestId = question.id;
    question.answerLength = question.kept->length;
    question.waited = question.kept->waited;
    return Outcome::Answered;
}

/// Of a datagram that is not the answer only an id stays in the reply, and never that of the request.
bool NetworkManager::IsAnswer(Question& question, Arrival const& arrival) {
    IncomingView const& reply = question.reply;
    bool const hasId = reply.header.requestId == question.id;
    if (arrival.length == 0) {
        if (arrival.isEmpty) {
            statistics.Add(LinkCounter::MalformedAnswers);
        }
        if (hasId) {
            Refuses(Rule::SilenceIsTimeout); // only ever noted here: where it is enforced, the reply has another id
        }
        return hasId;
    }
    statistics.Add(LinkCounter::BytesReceived, arrival.length);
    if (IsAcceptable(question, arrival) && hasId) {
        return true;
    }
    std::uint8_t const otherId = hasId ? static_cast<std::uint8_t>(~question.id) : reply.header.requestId;
    Clear(reply);
    reply.header.requestId = otherId;
    return false;
}

/// Judges a datagram by the rules, whatever its id.
bool NetworkManager::IsAcceptable(Question& question, Arrival const& arrival) {
    if (arrival.isForeign && IsRefused(question, Rule::KnownSender, LinkCounter::ForeignAnswers)) {
        return false;
    }
    if (question.reply.header.requestId != question.id) {
        CountStray(question, arrival);
        return true;
    }
    if (!question.IsFitting(arrival.length) &&
        IsRefused(question, Rule::FittingAnswer, LinkCounter::MalformedAnswers)) {
        return false;
    }
    if (question.IsOfOtherBlock(arrival.length, areUploadsNumbered) &&
        IsRefused(question, Rule::BlockOrder, LinkCounter::DoubledAnswers)) {
        return false;
    }
    return !IsKept(question, arrival);
}

/// A doubled answer to the request that opened an upload can come when the block is on its way already. The first answer that
/// could be it therefore waits for a further one, until the period is over.
bool NetworkManager::IsKept(Question& question, Arrival const& arrival) {
    if (question.kept) {
        IsRefused(question, Rule::BlockOrder, LinkCounter::DoubledAnswers); // the one before
        return false;
    }
    if (!policy.Enforces(Rule::BlockOrder) || !question.MayBeOfOpening(arrival.length, areUploadsNumbered)) {
        return false;
    }
    question.kept = arrival;
    question.kept->waited = question.waited;
    return true;
}

bool NetworkManager::IsRefused(Question& question, Rule rule, LinkCounter counter) {
    statistics.Add(counter);
    bool const isRefused = Refuses(rule);
    if (isRefused) {
        question.refusedBy = rule;
    }
    return isRefused;
}

void NetworkManager::CountStray(Question const& question, Arrival const& arrival) {
    CommonHeader const& header = question.reply.header;
    if (arrival.length < HeaderSize || !IsMagic(header) || !usedIds.test(header.requestId)) {
        statistics.Add(LinkCounter::MalformedAnswers);
    } else {
        statistics.Add(header.requestId == lastAnsweredId ? LinkCounter::DoubledAnswers : LinkCounter::LateAnswers);
    }
}

StatusInfo NetworkManager::TakeAnswer(Question const& question) {
    IncomingView const& reply = question.reply;
    if (question.answerLength == 0) { // as designed, the silence of a request with id 0
        statistics.Add(LinkCounter::Timeouts);
        statistics.NoteSilence();
        return CheckHeader(reply.subHeader);
    }
    statistics.NoteAnswer(question.waited);
    lastAnsweredId = question.id;
    areUploadsNumbered = areUploadsNumbered || (question.SendsBlock() && reply.header.blockNumber != 0);
    if (reply.header.blockNumber != 0 && question.Port() == Division::FileControl &&
        question.asked.service != static_cast<std::uint8_t>(FileServices::LoadFile)) {
        statistics.Add(LinkCounter::BlocksReceived);
    }
    StatusInfo status = CheckHeader(reply.subHeader);
    bool const isShort = question.answerLength < HeaderSize + reply.minimumPayload;
    if (status.StatusCode == 0 && isShort) {
        statistics.Add(LinkCounter::MalformedAnswers);
        if (Refuses(Rule::WholeAnswer)) {
            Clear(reply);
            return NamingRule(StatusInformation(ErrorStatusCodes::AnswerTooShort), Rule::WholeAnswer);
        }
    }
    return status;
}

/// Names the rule without which there would have been an answer.
StatusInfo NetworkManager::ReportSilence(Question const& question) {
    StatusInfo status = StatusInformation(ErrorStatusCodes::ResponseTimeout,
                                          "No response from controller after " + std::to_string(retries) + " retries.");
    if (question.refusedBy) {
        return NamingRule(std::move(status), *question.refusedBy);
    }
    bool const isIdOfSilence = question.id == 0 && !question.hasOwnId;
    if (isIdOfSilence && policy.Enforces(Rule::SilenceIsTimeout)) {
        Refuses(Rule::SilenceIsTimeout);
        return NamingRule(std::move(status), Rule::SilenceIsTimeout);
    }
    return status;
}

bool NetworkManager::Refuses(Rule rule) {
    if (policy.Watches(rule)) {
        statistics.Count(rule);
    }
    return policy.Enforces(rule);
}

void NetworkManager::NoteLossOfStartUp(StatusInfo const& status) {
    constexpr int firstOfLibrary = 0x10000;
    if (isStartingUp && status.StatusCode >= firstOfLibrary && lossOfStartUp.StatusCode == 0) {
        lossOfStartUp = status;
    }
}

StatusInfo NetworkManager::CheckHeader(SubHeaderForReceiving const& subHeader) const {
    return StatusInformation(AnsweredCode(subHeader));
}

std::uint8_t NetworkManager::GetNewRequestId() {
    ++idsDrawn;
    lastRequestId = lastRequestId < highestRequestId ? static_cast<std::uint8_t>(lastRequestId + 1) : std::uint8_t{0};
    return lastRequestId;
}

} // namespace harvlink
