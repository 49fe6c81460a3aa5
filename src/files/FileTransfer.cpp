#include <algorithm>
#include <chrono>
#include <thread>

#include "files/FileHandler.h"
#include "wire/Guarded.h"
#include "wire/HelperFunction.h"

// The exchange by which whole files move: a request that names the file, then numbered blocks, each answered before the
// next one goes. All blocks of a transfer keep the request id that the controller answered first.

namespace harvlink {
namespace {

constexpr int fileNotWritable = static_cast<int>(FileErrorHandling::FileErrors::FileNotWritable);

// After a tool file or a refused write the controller is busy for a while and takes no request.
void LetControllerSettle() {
    std::this_thread::sleep_for(std::chrono::seconds(3));
}

} // namespace

StatusInfo FileHandler::GetTheRestOfTheData(FileRequest& request, FileReply& reply, std::string& data) {
    FileDownload download(request, reply);
    StatusInfo status = Receive(download, reply, data);
    request = download.LastRequest();
    return status;
}

StatusInfo FileHandler::Receive(FileDownload& download, FileReply& reply, std::string& data) {
    while (auto const step = download.Next()) {
        if (step->waitForReply) {
            reply.payload = {};
        }
        StatusInfo status = networkManager->SendAndReceive(step->request, reply, step->requestId, step->waitForReply);
        auto const breach = download.FindBreach(status, reply, networkManager->Policy().largestFile);
        if (breach == ErrorStatusCodes::Ok || !networkManager->Refuses(Rule::BlockOrder)) {
            download.Take(std::move(status), reply);
        } else if (status.StatusCode != 0) {
            download.Fail(std::move(status)); // of a list that was not opened: why there is no block
        } else {
            download.Fail(NamingRule(StatusInformation(breach), Rule::BlockOrder));
        }
    }
    download.MoveTextTo(data);
    return download.Result();
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
    return Guarded(*networkManager, files, [&] {
        files.clear();
        FileDownload download(FileServices::ListFile, HelperFunction::GetFileTypeStringFromEnum(type));
        FileReply reply;
        std::string names;
        StatusInfo status = Receive(download, reply, names);
        if (status.StatusCode != 0) {
            return Contextual(std::move(status));
        }
        HelperFunction::SplitStringOnCLRF(files, names, sorted);
        return status;
    });
}

StatusInfo FileHandler::SaveFromControllerToString(std::string const& fileName, std::string& contents) {
    return Guarded(*networkManager, [&]() -> StatusInfo {
        contents.clear();
        if (!CheckForFileExt(fileName)) {
            return StatusInformation(ErrorStatusCodes::InvalidFileExtension, "Invalid file extension.");
        }
        FileDownload download(FileServices::SaveFile, fileName);
        FileReply reply;
        return Contextual(Receive(download, reply, contents));
    });
}

} // namespace harvlink
