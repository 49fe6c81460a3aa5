#include "files/FileDownload.h"

namespace harvlink {

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
    bool const isDropped = state == State::Opening && isList;
    status = isDropped ? StatusInfo{} : std::move(exchangeStatus);
    if (status.StatusCode != 0 || state == State::Closing) {
        state = State::Done;
        return;
    }
    text.Append(TextOf(reply.payload));
    Acknowledge(reply);
}

void FileDownload::Acknowledge(FileReply const& reply) {
    request.header.ack = 1;
    request.header.payloadSize = 0;
    request.header.blockNumber = reply.header.blockNumber;
    transferId = reply.header.requestId;
    state = (reply.header.blockNumber & LastBlockFlag) != 0 ? State::Closing : State::Receiving;
}

} // namespace harvlink
