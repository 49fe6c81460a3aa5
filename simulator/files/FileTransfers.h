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

/// A text on its way to a client: one block per acknowledgement.
class OutgoingTransfer {
public:
    OutgoingTransfer(FileServices service, FileText text) : service_(service), text_(std::move(text)) {}

    FileServices Service() const { return service_; }
    std::size_t Size() const { return text_->size(); }

    /// The block after the acknowledged one; the same once more if the one before it is acknowledged again.
    Refusal Acknowledge(std::uint32_t block);

    /// Puts the current block into the reply.
    void Send(Reply& reply) const;

private:
    std::uint32_t BlockCount() const;

    FileServices service_;
    FileText text_;
    std::uint32_t block_ = 1; ///< the one sent last
};

/// A file on its way from a client: blocks numbered from 1, the last one marked.
class IncomingTransfer {
public:
    explicit IncomingTransfer(std::string name) : name_(std::move(name)) {}

    FileServices Service() const { return FileServices::LoadFile; }
    std::size_t Size() const { return text_.size(); }

    /// A block that is repeated gets its answer again. After the last one the file is in the store, or the refusal of it
    /// is the answer.
    Refusal Take(std::uint32_t number, std::string_view data, FileStore& files);

private:
    Refusal Finish(FileStore& files);

    std::string name_;
    std::string text_;
    std::uint32_t last_ = 0; ///< number of the block taken last, its mark included
    bool isComplete_ = false;
    Refusal result_ = Refusal::None; ///< the answer to that block
};

/// The transfers of all clients, one per client at a time: a new request ends the one before. A transfer that nothing was
/// heard of for `Patience` is dropped, and so is the one heard of longest ago when a new one finds no room.
class FileTransfers {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    static constexpr std::size_t MaxTransfers = 32;
    static constexpr std::size_t MaxMemory = std::size_t{256} << 20U; ///< of all their texts together
    static constexpr std::chrono::seconds Patience{30};

    explicit FileTransfers(FileStore& files) : files_(files) {}

    /// Answers a datagram of the file port whose size was checked against its header.
    void Handle(Request const& request, TimePoint now, Reply& reply);

private:
    struct Transfer {
        std::variant<OutgoingTransfer, IncomingTransfer> road;
        TimePoint lastHeard;
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
    void Add(std::uint64_t peer, Transfer transfer);
    std::size_t MemoryInUse() const;

    FileStore& files_;
    std::unordered_map<std::uint64_t, Transfer> transfers_;
};

} // namespace harvlink::simulator
