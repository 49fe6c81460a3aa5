#include "fleet/Lane.h"

#include <algorithm>
#include <cstring>

#include "wire/FittingAnswer.h"
#include "wire/OnlyReads.h"
#include "wire/UdpTransport.h"

namespace harvlink::fleet {
namespace {

constexpr std::uint8_t highestId = 127;

} // namespace

bool Lane::Open(Division division) {
    port = division;
    Endpoint endpoint = record.endpoint;
    endpoint.port = division == Division::FileControl ? FilePort : RobotPort;
    // The old one is closed behind it, or the system might hand out the same source port once more.
    DatagramSocket fresh = DatagramSocket::Open();
    services.systemCalls.Add(4);
    if (!fresh.IsOpen() || !fresh.Connect(endpoint) || !services.poller.Watch(fresh.Native(), token)) {
        return false;
    }
    Close();
    socket = std::move(fresh);
    isNewPortDue = false;
    return true;
}

void Lane::Close() {
    Abandon();
    if (socket.IsOpen()) {
        services.poller.Forget(socket.Native());
        socket = DatagramSocket();
        services.systemCalls.Add(2);
    }
}

void Lane::Abandon() {
    isNewPortDue = isNewPortDue || isWaiting;
    SetWaiting(false);
}

bool Lane::Ask(Query const& query, WaitLimits const& limits, std::int64_t now) {
    if (isNewPortDue && !Open(port)) {
        return false;
    }
    lastId = lastId < highestId ? static_cast<std::uint8_t>(lastId + 1) : std::uint8_t{0};
    request.header = {};
    request.header.payloadSize = query.payloadSize;
    request.header.requestId = lastId;
    request.subHeader = query.subHeader;
    std::memcpy(request.payload.data(), query.payload.data(), query.payloadSize);
    minimumReply = query.minimumReply;
    Begin(limits, now);
    Send();
    return true;
}

void Lane::AskFile(FileRequest const& step, std::optional<std::uint8_t> transferId, bool waitForReply,
                   WaitLimits const& limits, std::int64_t now) {
    lastId = transferId.value_or(static_cast<std::uint8_t>(lastId % highestId + 1));
    request.header = step.header;
    request.header.requestId = lastId;
    request.subHeader = step.subHeader;
    std::memcpy(request.payload.data(), step.payload.data(), sizeof(step.payload));
    minimumReply = 0;
    Begin(limits, now);
    SetWaiting(waitForReply);
    Send();
}

void Lane::Begin(WaitLimits const& limits, std::int64_t now) {
    SetWaiting(true);
    periodsLeft = limits.retries;
    period = limits.timeout;
    askedAt = now;
    deadline = now + period;
}

void Lane::SetWaiting(bool value) {
    services.inFlight += static_cast<int>(value) - static_cast<int>(isWaiting);
    isWaiting = value;
}

/// The one place where a fleet sends. What the table of reads does not list stays here, whoever asked.
void Lane::Send() {
    SubHeaderForSending const& asked = request.subHeader;
    if (OnlyReads(request.header.division, static_cast<CommandNumber>(asked.command), asked.service)) {
        socket.Send(request.Bytes().first(HeaderSize + request.header.payloadSize));
        services.systemCalls.Add();
    }
}

Lane::Outcome Lane::Receive(std::int64_t now) {
    auto& reply = services.reply;
    auto const arrival = socket.Receive(reply.Bytes());
    services.systemCalls.Add();
    if (arrival.isRefused) {
        return Outcome::NotListening;
    }
    if (!arrival.hasArrived || !IsAnswer(arrival.length)) {
        return Outcome::Nothing;
    }
    SetWaiting(false);
    roundTrip = now - askedAt;
    record.exchanges.Add();
    code = AnsweredCode(reply.subHeader);
    std::size_t const arrived = arrival.length - HeaderSize;
    if (code == 0 && arrived < minimumReply) {
        record.malformedAnswers.Add();
        code = static_cast<std::int32_t>(ErrorStatusCodes::AnswerTooShort);
    }
    std::size_t const taken = std::min(arrived, reply.payload.size());
    services.payload = std::as_bytes(std::span(reply.payload)).first(taken);
    if (port == Division::FileControl) {
        std::fill(reply.payload.begin() + static_cast<std::ptrdiff_t>(taken), reply.payload.end(), '\0');
    }
    return Outcome::Answered;
}

bool Lane::IsAnswer(std::size_t length) {
    auto const& reply = services.reply;
    Asked const asked{request.header, request.subHeader};
    Answer const answer{reply.header, reply.subHeader, length};
    if (length < HeaderSize || !IsMagic(reply.header)) {
        record.malformedAnswers.Add();
        return false;
    }
    if (!isWaiting || reply.header.requestId != lastId) {
        record.lateAnswers.Add();
        return false;
    }
    if (!FitsRequest(asked, answer)) {
        record.malformedAnswers.Add();
        return false;
    }
    if (AnswersOtherBlock(asked, answer, false)) {
        record.lateAnswers.Add();
        return false;
    }
    return true;
}

Lane::Expiry Lane::Expire(std::int64_t now) {
    isNewPortDue = true; // also if the answer to the repeated one comes: the other one is still on its way
    if (periodsLeft == 0) {
        SetWaiting(false);
        record.exchanges.Add();
        record.timeouts.Add();
        code = static_cast<std::int32_t>(ErrorStatusCodes::ResponseTimeout);
        return Expiry::Failed;
    }
    --periodsLeft;
    deadline = std::max(deadline, now) + period;
    if (request.header.ack == 0) { // an acknowledgement asks for the next block, so it is not sent twice
        Send();
        record.repeatedRequests.Add();
    }
    return Expiry::Missed;
}

} // namespace harvlink::fleet
