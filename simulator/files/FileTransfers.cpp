#include "simulator/files/FileTransfers.h"

#include <algorithm>

#include "simulator/files/FileName.h"
#include "simulator/files/FileRefusals.h"
#include "simulator/model/JobName.h"

namespace harvlink::simulator {

namespace {

std::string_view TextOf(std::span<std::byte const> bytes) {
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

std::string_view WithoutTrailingZeros(std::string_view text) {
    return text.substr(0, text.find_last_not_of('\0') + 1);
}

FileServices ServiceOf(Request const& request) {
    return static_cast<FileServices>(request.subHeader.service);
}

/// The client doesn't wait for an answer to it. It would take an answer for that of its next request.
bool IsLastAcknowledgement(Request const& request) {
    auto const service = ServiceOf(request);
    return (service == FileServices::SaveFile || service == FileServices::ListFile) && request.payload.empty() &&
           (request.header.blockNumber & LastBlockFlag) != 0;
}

} // namespace

std::uint32_t OutgoingTransfer::BlockCount() const {
    // An empty listing is still one block, marked as the last.
    return static_cast<std::uint32_t>(std::max<std::size_t>(1, (Size() + FileBlockSize - 1) / FileBlockSize));
}

Refusal OutgoingTransfer::Acknowledge(std::uint32_t block) {
    if (block == block_ && block_ < BlockCount()) {
        ++block_;
        return Refusal::None;
    }
    // Again the one before: the block that answered it was lost, and goes out once more.
    return block + 1 == block_ ? Refusal::None : Refusal::BlockNumberError;
}

void OutgoingTransfer::Send(Reply& reply) const {
    auto const start = std::size_t{block_ - 1} * FileBlockSize;
    auto const piece = std::string_view(*text_).substr(start, FileBlockSize);
    reply.SetBytes(std::as_bytes(std::span(piece)));
    reply.SetBlockNumber(block_ == BlockCount() ? block_ | LastBlockFlag : block_);
}

Refusal IncomingTransfer::Take(std::uint32_t number, std::string_view data, FileStore& files) {
    if (number == last_ && number != 0) { // the answer was lost; the block is not taken twice
        return result_;
    }
    if (isComplete_) {
        return Refusal::AckError;
    }
    if ((number & ~LastBlockFlag) != last_ + 1) {
        return Refusal::BlockNumberError;
    }
    last_ = number;
    bool const isLast = (number & LastBlockFlag) != 0;
    // Clients always send full blocks. The zeros that fill up the last block are not part of the file.
    text_ += isLast ? WithoutTrailingZeros(data) : data;
    isComplete_ = isLast || text_.size() > FileStore::MaxFileSize;
    result_ = isComplete_ ? Finish(files) : Refusal::None;
    return result_;
}

Refusal IncomingTransfer::Finish(FileStore& files) {
    auto const text = std::exchange(text_, {});
    return text.size() > FileStore::MaxFileSize ? FileRefusal::DiskFull : files.Load(name_, text);
}

void FileTransfers::Handle(Request const& request, TimePoint now, Reply& reply) {
    DropSilent(now);
    if (request.header.ack > 1) {
        reply.Refuse(Refusal::AckError);
    } else if (request.header.ack == 1) {
        Continue(request, now, reply);
    } else {
        Open(request, now, reply);
    }
}

void FileTransfers::Open(Request const& request, TimePoint now, Reply& reply) {
    transfers_.erase(request.peer);
    if (request.payload.empty()) {
        reply.Refuse(FileRefusal::NoData);
        return;
    }
    if (request.payload.size() > FileNameSize) {
        reply.Refuse(Refusal::FrameSizeError);
        return;
    }
    auto const text = WithoutTrailingZeros(TextOf(request.payload));
    switch (ServiceOf(request)) {
    case FileServices::ListFile:
        List(request, text, now, reply);
        break;
    case FileServices::SaveFile:
        Save(request, text, now, reply);
        break;
    case FileServices::LoadFile:
        Load(request, text, now, reply);
        break;
    case FileServices::DeleteFile:
        Delete(text, reply);
        break;
    default:
        reply.Refuse(Refusal::UndefinedCommand);
    }
}

void FileTransfers::OpenOutgoing(Request const& request, FileText text, TimePoint now, Reply& reply) {
    OutgoingTransfer transfer(ServiceOf(request), std::move(text));
    transfer.Send(reply);
    Add(request.peer, {std::move(transfer), now});
}

void FileTransfers::List(Request const& request, std::string_view pattern, TimePoint now, Reply& reply) {
    if (!IsFilePattern(pattern)) {
        reply.Refuse(FileRefusal::NotInFileList);
        // A client reads this number before the status. Without the mark it would ask for more blocks.
        reply.SetBlockNumber(1 | LastBlockFlag);
        return;
    }
    std::string listing;
    for (auto const& name : files_.Names(UpperCase(pattern))) {
        listing += name + "\r\n";
    }
    OpenOutgoing(request, std::make_shared<std::string const>(std::move(listing)), now, reply);
}

void FileTransfers::Save(Request const& request, std::string_view name, TimePoint now, Reply& reply) {
    auto const stored = FileNameFrom(name);
    auto text = stored ? files_.Read(*stored) : nullptr;
    if (text == nullptr) {
        reply.Refuse(FileRefusal::NoSuchFile);
    } else if (text->empty()) {
        reply.Refuse(FileRefusal::FileIsEmpty);
    } else {
        OpenOutgoing(request, std::move(text), now, reply);
    }
}

void FileTransfers::Load(Request const& request, std::string_view name, TimePoint now, Reply& reply) {
    auto stored = FileNameFrom(name);
    if (!stored) {
        auto const isJob = FileTypeOf(name) == FileType::JobFile;
        reply.Refuse(isJob ? FileRefusal::InvalidJobName : FileRefusal::NotWritable);
    } else if (!reply.RefuseIf(files_.CheckLoad(*stored))) {
        Add(request.peer, {IncomingTransfer(std::move(*stored)), now});
    }
}

void FileTransfers::Delete(std::string_view name, Reply& reply) {
    auto const stored = FileNameFrom(name);
    reply.RefuseIf(stored ? files_.Delete(*stored) : FileRefusal::NoSuchFile);
}

void FileTransfers::Continue(Request const& request, TimePoint now, Reply& reply) {
    auto const found = transfers_.find(request.peer);
    if (IsLastAcknowledgement(request)) {
        reply.Suppress();
        if (found != transfers_.end() && std::holds_alternative<OutgoingTransfer>(found->second.state)) {
            transfers_.erase(found);
        }
        return;
    }
    auto const isAsked = [&](auto const& state) { return state.Service() == ServiceOf(request); };
    if (found == transfers_.end() || !std::visit(isAsked, found->second.state)) {
        reply.Refuse(Refusal::AckError);
        return;
    }
    found->second.lastRequest = now;
    if (auto* const incoming = std::get_if<IncomingTransfer>(&found->second.state)) {
        reply.RefuseIf(Take(*incoming, request));
    } else {
        Acknowledge(std::get<OutgoingTransfer>(found->second.state), request, reply);
    }
}

void FileTransfers::Acknowledge(OutgoingTransfer& transfer, Request const& request, Reply& reply) {
    if (!reply.RefuseIf(transfer.Acknowledge(request.header.blockNumber))) {
        transfer.Send(reply);
    }
}

Refusal FileTransfers::Take(IncomingTransfer& transfer, Request const& request) {
    if (request.payload.empty()) {
        return FileRefusal::NoData;
    }
    if (MemoryInUse() + request.payload.size() > MaxMemory) {
        return FileRefusal::DiskFull;
    }
    return transfer.Take(request.header.blockNumber, TextOf(request.payload), files_);
}

void FileTransfers::DropSilent(TimePoint now) {
    std::erase_if(transfers_, [now](auto const& entry) { return now - entry.second.lastRequest > IdleLimit; });
}

void FileTransfers::Add(std::uint64_t peer, OpenTransfer transfer) {
    auto const size = std::visit([](auto const& state) { return state.Size(); }, transfer.state);
    while (transfers_.size() >= MaxTransfers || (!transfers_.empty() && MemoryInUse() + size > MaxMemory)) {
        transfers_.erase(
            std::ranges::min_element(transfers_, {}, [](auto const& entry) { return entry.second.lastRequest; }));
    }
    transfers_.insert_or_assign(peer, std::move(transfer));
}

std::size_t FileTransfers::MemoryInUse() const {
    std::size_t total = 0;
    for (auto const& [peer, transfer] : transfers_) {
        total += std::visit([](auto const& state) { return state.Size(); }, transfer.state);
    }
    return total;
}

} // namespace harvlink::simulator
