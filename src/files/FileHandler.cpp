#include "files/FileHandler.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <thread>

#include "system/Path.h"
#include "wire/Guarded.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr std::size_t maxNameLength = 32;
constexpr std::string_view jobExtension = ".JBI";

bool Exists(std::string const& path) {
    std::error_code ignored;
    return std::filesystem::exists(PathOf(path), ignored);
}

StatusInfo Ok() {
    return StatusInformation(ErrorStatusCodes::Ok);
}

StatusInfo NameTooLong() {
    return StatusInformation(ErrorStatusCodes::InvalidJobNameLength, "Job name invalid. Check length.");
}

StatusInfo NameMismatch() {
    return StatusInformation(ErrorStatusCodes::JobNameMismatch,
                             "The job name in the file does not match the file name.");
}

} // namespace

/// Kind and writability, the checks that both loads begin with. The order of the rest differs between them, on purpose.
StatusInfo FileHandler::CheckLoadable(std::string const& fileName) const {
    std::string extension;
    if (!CheckForFileExt(fileName, extension)) {
        return StatusInformation(ErrorStatusCodes::InvalidFileExtension, "Invalid file extension.");
    }
    if (!CheckIfFileIsWritable(fileName)) {
        return StatusInformation(ErrorStatusCodes::FileTypeNotWritable,
                                 "This API is unable to write " + extension + " files.");
    }
    return Ok();
}

StatusInfo FileHandler::LoadToControllerFromString(std::string const& fileName, std::string const& contents) {
    return Guarded(*networkManager, [&] {
        if (StatusInfo status = CheckLoadable(fileName); status.StatusCode != 0) {
            return status;
        }
        if (GetFileExtension(fileName) == jobExtension && !CheckForJobNameInString(fileName, contents)) {
            return NameMismatch();
        }
        if (fileName.size() > maxNameLength) {
            return NameTooLong();
        }
        std::vector<FileBlock> blocks;
        ReadStringIntoBuffer(contents, blocks);
        return Contextual(SendTheBuffer(fileName, blocks));
    });
}

StatusInfo FileHandler::LoadToControllerFromPath(std::string const& path) {
    return Guarded(*networkManager, [&]() -> StatusInfo {
        std::string const name = TextOf(PathOf(path).filename());
        if (StatusInfo status = CheckLoadable(name); status.StatusCode != 0) {
            return status;
        }
        if (name.size() > maxNameLength) {
            return NameTooLong();
        }
        if (!Exists(path)) {
            return StatusInformation(ErrorStatusCodes::FileNotFoundOnPc, "Unable to find file on pc.");
        }
        std::vector<FileBlock> blocks;
        if (StatusInfo status = ReadDiskFile(path, blocks); status.StatusCode != 0) {
            return status;
        }
        bool const isJob = GetFileExtension(name) == jobExtension;
        if (isJob && !CheckForJobNameInString(name, HeadOf(blocks))) {
            return NameMismatch();
        }
        StatusInfo status = SendTheBuffer(name, blocks);
        if (isJob && status.StatusCode == 0) {
            WaitForJob(HelperFunction::ToUpper(name), status);
        }
        return Contextual(std::move(status));
    });
}

StatusInfo FileHandler::ReadDiskFile(std::string const& path, std::vector<FileBlock>& blocks) const {
    std::error_code ignored;
    std::ifstream stream;
    // A pipe or a device may block its reader for ever, or never end.
    if (std::filesystem::is_regular_file(PathOf(path), ignored)) {
        stream.open(PathOf(path), std::ios::binary);
    }
    if (stream.is_open()) {
        // On a 32-bit processor a size can be more than any memory.
        std::uintmax_t const size =
            std::min<std::uintmax_t>(std::filesystem::file_size(PathOf(path), ignored), SIZE_MAX);
        blocks.reserve(ignored ? 0 : static_cast<std::size_t>(size) / FileBlockSize + 1);
        ReadFileIntoBuffer(stream, blocks);
    }
    // A stream that was read to its end is at end of file; any other state is a failure.
    return stream.eof() ? Ok() : GetIfStreamError(std::ios_base::failure("read"));
}

/// A job shows up in the controller's list some time after it was loaded.
void FileHandler::WaitForJob(std::string const& jobName, StatusInfo& status) {
    for (std::uint32_t attempt = 1; !IsJobOnController(jobName, status); ++attempt) {
        if (attempt == jobCheckAttempts) {
            status.Message = "Check for loaded job timed out. Job might not be on the controller.";
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

bool FileHandler::IsJobOnController(std::string const& fileName, StatusInfo& status) {
    FileInterface& self = *this;
    std::vector<std::string> jobs;
    status = self.ListFiles(FileType::JobFile, jobs, false);
    return status.StatusCode == 0 && std::ranges::find(jobs, fileName) != jobs.end();
}

StatusInfo FileHandler::SaveFromControllerToFile(std::string const& fileName, std::string const& path, bool overwrite) {
    return Guarded(*networkManager, [&]() -> StatusInfo {
        if (!CheckForFileExt(fileName)) {
            return StatusInformation(ErrorStatusCodes::InvalidFileExtension, "Invalid file extension.");
        }
        if (Exists(path) && !overwrite) {
            return StatusInformation(ErrorStatusCodes::FileExistsNoOverwrite,
                                     "File already exists and overwrite flag is set to false.");
        }
        FileInterface& self = *this;
        std::string text;
        StatusInfo status = Contextual(self.SaveFromControllerToString(fileName, text));
        if (status.StatusCode == 0) {
            WriteFileToDisk(path, text, status);
        }
        return status;
    });
}

void FileHandler::WriteFileToDisk(std::string const& path, std::string const& contents, StatusInfo& status) const {
    try {
        std::ofstream stream;
        stream.exceptions(std::ios::badbit | std::ios::failbit);
        stream.open(PathOf(path), std::ios::binary | std::ios::trunc);
        stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
        stream.close(); // a full disk shows here at the latest
    } catch (std::ios_base::failure const& failure) {
        status = GetIfStreamError(failure);
    }
}

StatusInfo FileHandler::GetIfStreamError(std::ios_base::failure const& failure) const {
    return StatusInformation(static_cast<int>(streamErrorBase + static_cast<std::uint32_t>(failure.code().value())),
                             "Open file error on your computer. Check the path supplied. If path is correct, ensure "
                             "the file is readable/writable.");
}

StatusInfo FileHandler::DeleteJobFile(std::string const& fileName) {
    return Guarded(*networkManager, [&] {
        std::string jobName = HelperFunction::ToUpper(fileName);
        if (!jobName.ends_with(jobExtension)) {
            jobName += jobExtension;
        }
        FileRequest request = SetPacket(FileServices::DeleteFile, jobName);
        IncomingPacket<std::uint8_t> reply;
        return Contextual(networkManager->SendAndReceive(request, reply, std::nullopt, true));
    });
}

StatusInfo FileHandler::GetFileCount(FileType type, int& count) {
    return Guarded(*networkManager, count, [&] {
        count = 0;
        FileInterface& self = *this;
        std::vector<std::string> files;
        StatusInfo status = Contextual(self.ListFiles(type, files, false));
        if (status.StatusCode == 0) {
            count = static_cast<int>(files.size());
        }
        return status;
    });
}

StatusInfo FileHandler::Contextual(StatusInfo status) const {
    if (status.StatusCode != 0) {
        errorHandler.SetContextualError(status);
    }
    return status;
}

} // namespace harvlink
