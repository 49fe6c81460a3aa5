#include <algorithm>
#include <chrono>
#include <thread>

#include "files/FileHandler.h"
#include "files/TextCollector.h"
#include "wire/HelperFunction.h"

// The exchange by which whole files move: a request that names the file, then numbered blocks, each answered before the
// next one goes. All blocks of a transfer keep the request id that the controller answered first.

namespace harvlink {
namespace {

constexpr int fileNotWritable = static_cast<int>(FileErrorHandling::FileErrors::FileNotWritable);

// The controller works on after a tool file or a refused write, and takes no request meanwhile.
void LetControllerSettle() {
    std::this_thread::sleep_for(std::chrono::seconds(3));
}

std::string_view TextOf(std::array<char, FileBlockSize> const& block) {
    std::string_view const text(block.data(), block.size());
    return text.substr(0, text.find('\0'));
}

} // namespace

StatusInfo FileHandler::GetTheRestOfTheData(FileRequest& request, FileReply& reply, std::string& data) {
    TextCollector text;
    StatusInfo status = ReceiveBlocks(request, reply, text);
    text.MoveTo(data);
    if (status.StatusCode != 0) {
        return status;
    }
    request.header.blockNumber = reply.header.blockNumber;
    return networkManager->SendAndReceive(request, reply, reply.header.requestId, false);
}

StatusInfo FileHandler::ReceiveBlocks(FileRequest& request, FileReply& reply, TextCollector& text) {
    request.header.ack = 1;
    request.header.payloadSize = 0;
    StatusInfo status;
    while (status.StatusCode == 0 && (reply.header.blockNumber & LastBlockFlag) == 0) {
        request.header.blockNumber = reply.header.blockNumber;
        reply.payload = {};
        status = networkManager->SendAndReceive(request, reply, reply.header.requestId, true);
        if (status.StatusCode == 0) {
            text.Append(TextOf(reply.payload));
        }
    }
    return status;
}

StatusInfo FileHandler::SendTheBuffer(std::string const& fileName, std::vector<FileBlock>& blocks) {
    std::string const name = HelperFunction::ToUpper(fileName);
    FileRequest request = SetPacket(FileServices::LoadFile, name);
    IncomingPacket<std::uint8_t> reply;
    StatusInfo status = networkManager->SendAndReceive(request, reply, std::nullopt, true);
    if (status.StatusCode != 0) {
        return status;
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        bool const isLast = i + 1 == blocks.size();
        blocks[i].header.ack = 1;
        blocks[i].header.blockNumber = static_cast<std::uint32_t>(i + 1) + (isLast ? LastBlockFlag : 0);
        status = networkManager->SendAndReceive(blocks[i], reply, reply.header.requestId, true);
        if (status.StatusCode != 0) {
            if (status.StatusCode == fileNotWritable) {
                LetControllerSettle();
            }
            return Contextual(std::move(status));
        }
    }
    if (name == "TOOL.CND") {
        LetControllerSettle();
    }
    return status;
}

std::vector<std::string_view> FileHandler::Split(std::string_view text, std::size_t pieceSize) const {
    std::vector<std::string_view> pieces;
    pieces.reserve(text.size() / pieceSize + 1);
    for (; !text.empty(); text.remove_prefix(pieces.back().size())) {
        pieces.push_back(text.substr(0, pieceSize));
    }
    return pieces;
}

void FileHandler::ReadStringIntoBuffer(std::string const& text, std::vector<FileBlock>& blocks) const {
    auto const pieces = Split(text, FileBlockSize);
    blocks.reserve(blocks.size() + pieces.size());
    for (std::string_view const piece : pieces) {
        std::array<char, FileBlockSize> contents{};
        std::ranges::copy(piece, contents.begin());
        blocks.push_back(SetPacket(FileServices::LoadFile, contents));
    }
}

void FileHandler::ReadFileIntoBuffer(std::ifstream& stream, std::vector<FileBlock>& blocks) const {
    while (!stream.eof()) {
        std::array<char, FileBlockSize> contents{};
        stream.read(contents.data(), contents.size());
        if (stream.fail() && !stream.eof()) {
            return;
        }
        blocks.push_back(SetPacket(FileServices::LoadFile, contents));
    }
}

std::string FileHandler::HeadOf(std::vector<FileBlock> const& blocks) const {
    constexpr std::size_t enough = 150;
    std::string head;
    for (auto block = blocks.begin(); block != blocks.end() && head.size() <= enough; ++block) {
        head += TextOf(block->payload);
    }
    return head;
}

StatusInfo FileHandler::ListFiles(FileType type, std::vector<std::string>& files, bool sorted) {
    files.clear();
    FileRequest request = SetPacket(FileServices::ListFile, HelperFunction::GetFileTypeStringFromEnum(type));
    FileReply reply;
    // The status of the first exchange is dropped, on purpose: its block is treated like any other, and silence shows in
    // the exchange that follows.
    networkManager->SendAndReceive(request, reply, std::nullopt, true);
    std::string names(TextOf(reply.payload));
    StatusInfo status = GetTheRestOfTheData(request, reply, names);
    if (status.StatusCode != 0) {
        return Contextual(std::move(status));
    }
    HelperFunction::SplitStringOnCLRF(files, names, sorted);
    return status;
}

StatusInfo FileHandler::SaveFromControllerToString(std::string const& fileName, std::string& contents) {
    contents.clear();
    if (!CheckForFileExt(fileName)) {
        return StatusInformation(ErrorStatusCodes::InvalidFileExtension, "Invalid file extension.");
    }
    FileRequest request = SetPacket(FileServices::SaveFile, fileName);
    FileReply reply;
    StatusInfo status = networkManager->SendAndReceive(request, reply, std::nullopt, true);
    if (status.StatusCode != 0) {
        return Contextual(std::move(status));
    }
    contents = TextOf(reply.payload);
    return Contextual(GetTheRestOfTheData(request, reply, contents));
}

} // namespace harvlink
