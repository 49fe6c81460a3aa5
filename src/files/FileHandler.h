#pragma once

#include <cstdint>
#include <fstream>
#include <ios>
#include <string_view>

#include "files/FileDownload.h"
#include "harvlink/FileInterface.h"
#include "status/ContextualStatusInfoHandler.h"
#include "status/ErrorTables.h"
#include "wire/NetworkManager.h"

namespace harvlink {

class FileHandler final : public FileInterface {
public:
    explicit FileHandler(NetworkManager* manager) : networkManager(manager) {}

    StatusInfo LoadToControllerFromString(std::string const& fileName, std::string const& contents) override;
    StatusInfo LoadToControllerFromPath(std::string const& path) override;
    StatusInfo SaveFromControllerToFile(std::string const& fileName, std::string const& path, bool overwrite) override;
    StatusInfo SaveFromControllerToString(std::string const& fileName, std::string& contents) override;
    StatusInfo DeleteJobFile(std::string const& fileName) override;
    StatusInfo GetFileCount(FileType type, int& count) override;
    StatusInfo ListFiles(FileType type, std::vector<std::string>& files, bool sorted) override;

    /// Whether the controller lists a job of exactly this name.
    bool IsJobOnController(std::string const& fileName, StatusInfo& status);

    /// The kind that the extension names; JobFile for an unknown one, so ask CheckForFileExt first.
    FileType GetFileType(std::string const& fileName) const;

    /// The last four characters in upper case, whatever they are; empty for a shorter name.
    std::string GetFileExtension(std::string const& fileName) const;
    bool CheckForFileExt(std::string const& fileName) const;
    bool CheckForFileExt(std::string const& fileName, std::string& extension) const;

    /// Whether "//NAME <job>" stands anywhere in `text`; the job in upper case, whatever follows it.
    bool CheckForJobNameInString(std::string const& fileName, std::string_view text) const;
    std::string RemoveFileExtension(std::string const& fileName) const;
    bool CheckIfFileIsWritable(std::string const& fileName) const;

    /// Writes a whole file, replacing what stood there. `status` is left alone on success.
    void WriteFileToDisk(std::string const& path, std::string const& contents, StatusInfo& status) const;
    StatusInfo GetIfStreamError(std::ios_base::failure const& failure) const;

    /// Acknowledges the block in `reply` and receives all that follow, appending their text to `data`. The last
    /// acknowledgement is not answered.
    StatusInfo GetTheRestOfTheData(FileRequest& request, FileReply& reply, std::string& data);

    /// Sends the load request and then every block, one at a time.
    StatusInfo SendTheBuffer(std::string const& fileName, std::vector<FileBlock>& blocks);

    /// Cuts a text into blocks: none for an empty text, no extra one for a multiple of the block size.
    void ReadStringIntoBuffer(std::string const& text, std::vector<FileBlock>& blocks) const;

    /// Reads a stream to its end into blocks. Unlike a text, a multiple of the block size ends in one more block, of zero
    /// bytes, and an empty stream gives one. A stream that can't be read is left failed, without end of file.
    void ReadFileIntoBuffer(std::ifstream& stream, std::vector<FileBlock>& blocks) const;

    /// Pieces of `pieceSize` bytes, the last being the remainder; views into `text`.
    std::vector<std::string_view> Split(std::string_view text, std::size_t pieceSize) const;

private:
    StatusInfo Receive(FileDownload& download, FileReply& reply, std::string& data);
    StatusInfo CheckLoadable(std::string const& fileName) const;
    StatusInfo ReadDiskFile(std::string const& path, std::vector<FileBlock>& blocks) const;
    std::string HeadOf(std::vector<FileBlock> const& blocks) const;
    void WaitForJob(std::string const& jobName, StatusInfo& status);
    StatusInfo Contextual(StatusInfo status) const;

    NetworkManager* networkManager;
    HSEContextualStatusInfoHandler<FileErrorHandling::FileErrors> errorHandler{&FileErrorTable};

    static constexpr std::uint32_t streamErrorBase = 0x40000000;
    static constexpr std::uint32_t jobCheckAttempts = 5;
};

namespace HelperFunction {

/// The pattern that lists a kind of files, such as "*.JBI"; a blank for a number that names no kind.
std::string GetFileTypeStringFromEnum(FileType type);

} // namespace HelperFunction
} // namespace harvlink
