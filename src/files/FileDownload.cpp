#include "files/FileDownload.h"

#include <algorithm>

namespace harvlink {
namespace {

/// What a block counts towards the size of its file. An empty one counts too: a transfer of them has to end.
std::uint64_t SizeOf(FileReply const& reply) {
    auto const arrived = std::clamp<std::size_t>(reply.header.payloadSize, 1, FileBlockSize);
    return std::max(arrived, TextOf(reply.payload).size());
}

} // namespace

FileDownload::FileDownload(FileServices service, std::string_view name)
    : request(SetPacket(service, name)), isList(service == FileServices::ListFile) {}

FileDownload::FileDownload(FileRequest const& openingRequest, FileReply const& reply) : request(openingRequest) {
    Acknowledge(reply);
}

std::optional<FileStep> FileDownload::Next() {
    if (state == State::Done) {
        return std::nullopt;
    }
    return FileStep{request, transferId, state != State::Closing};
}

void FileDownload::Take(StatusInfo exchangeStatus, FileReply const& reply) {
    status = DropsStatus() ? StatusInfo{} : std::move(exchangeStatus);
    if (status.StatusCode != 0 || state == State::Closing) {
        state = State::Done;
        return;
    }
    text.Append(TextOf(reply.payload));
    Acknowledge(reply);
}

ErrorStatusCodes FileDownload::FindBreach(StatusInfo const& exchangeStatus, FileReply const& reply,
                                          std::uint64_t largestSize) const {
    bool const isTaken = exchangeStatus.StatusCode == 0 || DropsStatus();
    if (state == State::Closing || !isTaken) {
        return ErrorStatusCodes::Ok;
    }
    std::uint32_t const number = reply.header.blockNumber & ~LastBlockFlag;
    // A repeated one is the engine's to drop.
    if (number == 0 || number > (request.header.blockNumber & ~LastBlockFlag) + 1) {
        return ErrorStatusCodes::FileBlockMissing;
    }
    return SizeOf(reply) > largestSize - std::min(size, largestSize) ? ErrorStatusCodes::FileTooLarge
                                                                     : ErrorStatusCodes::Ok;
}

void FileDownload::Fail(StatusInfo reason) {
    status = std::move(reason);
    state = State::Done;
}

void FileDownload::Acknowledge(FileReply const& reply) {
    size += SizeOf(reply);
    request.header.ack = 1;
    request.header.payloadSize = 0;
    request.header.blockNumber = reply.header.blockNumber;
    transferId = reply.header.requestId;
    state = (reply.header.blockNumber & LastBlockFlag) != 0 ? State::Closing : State::Receiving;
}

} // namespace harvlink
