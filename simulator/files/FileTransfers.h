#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>

#include "simulator/files/FileStore.h"
#include "simulator/protocol/Reply.h"
#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// A text that is sent to a client, one block per acknowledgement.
class OutgoingTransfer {
public:
    OutgoingTransfer(FileServices service, FileText text) : service_(service), text_(std::move(text)) {}

    FileServices Service() const { return service_; }
    std::size_t Size() const { return text_->size(); }

    /// Moves on to the next block. If the previous block is acknowledged again, the current one is sent again.
    Refusal Acknowledge(std::uint32_t block);

    /// Puts the current block into the reply.
    void Send(Reply& reply) const;

private:
    std::uint32_t BlockCount() const;

    FileServices service_;
    FileText text_;
    std::uint32_t block_ = 1; ///< the block that was sent last
};

/// A file that comes from a client. Its blocks are numbered from 1, and the last one is marked.
class IncomingTransfer {
public:
    explicit IncomingTransfer(std::string name) : name_(std::move(name)) {}

    FileServices Service() const { return FileServices::LoadFile; }
    std::size_t Size() const { return text_.size(); }

    /// A repeated block gets the same answer again. The last block stores the file; its answer is the result of that.
    Refusal Take(std::uint32_t number, std::string_view data, FileStore& files);

private:
    Refusal Finish(FileStore& files);

    std::string name_;
    std::string text_;
    std::uint32_t last_ = 0; ///< number of the last block taken, with its mark
    bool isComplete_ = false;
    Refusal result_ = Refusal::None; ///< the answer to that block
};

/// The transfers of all clients. Each client has one at a time; a new request ends the previous one. A transfer without
/// a request for `IdleLimit` is dropped. When there is no room for a new one, the longest idle one is dropped.
class FileTransfers {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    static constexpr std::size_t MaxTransfers = 32;
    static constexpr std::size_t MaxMemory = std::size_t{256} << 20U; ///< of all their texts together
    static constexpr std::chrono::seconds IdleLimit{30};

    explicit FileTransfers(FileStore& files) : files_(files) {}

    /// Answers a request of the file port. Its size has been checked against its header.
    void Handle(Request const& request, TimePoint now, Reply& reply);

private:
    struct OpenTransfer {
        std::variant<OutgoingTransfer, IncomingTransfer> state;
        TimePoint lastRequest;
    };

    void Open(Request const& request, TimePoint now, Reply& reply);
    void OpenOutgoing(Request const& request, FileText text, TimePoint now, Reply& reply);
    void List(Request const& request, std::string_view pattern, TimePoint now, Reply& reply);
    void Save(Request const& request, std::string_view name, TimePoint now, Reply& reply);
    void Load(Request const& request, std::string_view name, TimePoint now, Reply& reply);
    void Delete(std::string_view name, Reply& reply);

    void Continue(Request const& request, TimePoint now, Reply& reply);
    static void Acknowledge(OutgoingTransfer& transfer, Request const& request, Reply& reply);
    Refusal Take(IncomingTransfer& transfer, Request const& request);

    void DropSilent(TimePoint now);
    void Add(std::uint64_t peer, OpenTransfer transfer);
    std::size_t MemoryInUse() const;

    FileStore& files_;
    std::unordered_map<std::uint64_t, OpenTransfer> transfers_;
};

} // namespace harvlink::simulator
