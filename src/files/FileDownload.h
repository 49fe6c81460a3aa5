#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "files/SetPacket.h"
#include "files/TextCollector.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// One datagram of a transfer.
struct FileStep {
    FileRequest& request; ///< the download's own, until the next Take
    std::optional<std::uint8_t> requestId; ///< none for the opening request, which takes a new one
    bool waitForReply = true;
};

/// A file, or a list of names, on its way from the controller: an opening request, then an acknowledgement of each block,
/// which is answered by the next block. The last acknowledgement is not answered.
///
/// As a RequestSequence: `Next` gives the datagram to send, `Take` consumes its answer, and `Result` is the status of the
/// whole. One reply record serves all steps; its payload is cleared before each that waits.
class FileDownload {
public:
    /// Begins with an opening request: for a file to save or a pattern to list. A list goes on after a failed opening
    /// request, on purpose: its block is treated like any other, and silence shows in the exchange that follows.
    FileDownload(FileServices service, std::string_view name);

    /// Goes on behind the block in `reply`, whose text is taken already.
    FileDownload(FileRequest const& request, FileReply const& reply);

    std::optional<FileStep> Next();
    void Take(StatusInfo exchangeStatus, FileReply const& reply);

    /// What is wrong with an answer that waits to be taken, by the numbers of the blocks and the size that they add up to. OK
    /// if nothing is. See Rule::BlockOrder.
    ErrorStatusCodes FindBreach(StatusInfo const& exchangeStatus, FileReply const& reply,
                                std::uint64_t largestSize) const;

    /// Ends the transfer instead of taking the answer: nothing more is sent.
    void Fail(StatusInfo reason);
    StatusInfo const& Result() const { return status; }

    /// The request as it was sent last.
    FileRequest const& LastRequest() const { return request; }

    /// Appends the text that has arrived to `out`. A block counts up to its first zero byte.
    void MoveTextTo(std::string& out) { text.MoveTo(out); }

private:
    enum class State : std::uint8_t { Opening, Receiving, Closing, Done };

    /// A list goes on after a failed opening request, on purpose.
    bool DropsStatus() const { return state == State::Opening && isList; }
    void Acknowledge(FileReply const& reply);

    FileRequest request;
    TextCollector text;
    std::uint64_t size = 0; ///< of the blocks so far
    std::optional<std::uint8_t> transferId; ///< none before the opening request is answered
    bool isList = false;
    State state = State::Opening;
    StatusInfo status;
};

} // namespace harvlink
