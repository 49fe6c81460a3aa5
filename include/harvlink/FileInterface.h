#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "harvlink/StatusInfo.h"

namespace harvlink {

/// Kinds of controller files, by extension.
enum class FileType : std::int32_t {
    JobFile = 0, ///< .JBI
    DataFile = 1, ///< .DAT
    ConditionFile = 2, ///< .CND
    ParameterFile = 3, ///< .PRM, can't be written
    SystemFile = 4, ///< .SYS, can't be written
    ListingFile = 5, ///< .LST
    LogFile = 6, ///< .LOG, can't be written
};

/// A kind of files: how the controller lists it, and whether it can be written.
struct FileKind {
    FileType type;
    std::string_view pattern; ///< lists the files of this kind
    bool writable;

    /// With its dot, in upper case.
    constexpr std::string_view Extension() const { return pattern.substr(1); }
};

/// All kinds, in the order of FileType.
inline constexpr std::array<FileKind, 7> FileKinds{{
    {FileType::JobFile, "*.JBI", true},
    {FileType::DataFile, "*.DAT", true},
    {FileType::ConditionFile, "*.CND", true},
    {FileType::ParameterFile, "*.PRM", false},
    {FileType::SystemFile, "*.SYS", false},
    {FileType::ListingFile, "*.LST", true},
    {FileType::LogFile, "*.LOG", false},
}};

/// The controller's file store. A transfer is one exchange per block of 479 bytes and blocks the caller until it is
/// done; each exchange takes at most (1 + retries) x time-out, and one without an answer ends the transfer with
/// ResponseTimeout. A load of "TOOL.CND", and one whose blocks the controller refuses as not writable, waits 3 more
/// seconds.
///
/// May be called from several threads at once, but two transfers at the same time mix up on the controller: do one at a
/// time. File names end in an extension of the table above, in upper or lower case; to load and to save, any other
/// gives InvalidFileExtension. All argument checks come before the first datagram. The controller's refusals come with
/// its own code and text.
///
/// As designed, blocks that the controller sends count in any order, doubled and without end. With Rule::BlockOrder a
/// repeated block is dropped; a block that is left out ends the transfer with FileBlockMissing, more than `largestFile`
/// bytes with FileTooLarge, and a listing that the controller refuses without a block ends with its code; nothing more is
/// sent then. While a file is loaded, only the answer to the block that was sent counts.
class FileInterface {
public:
    FileInterface() = default;
    FileInterface(FileInterface const&) = delete;
    FileInterface& operator=(FileInterface const&) = delete;
    virtual ~FileInterface() = default;

    /// Stores `contents` on the controller as `fileName`, replacing the file if the controller allows it. Kinds that
    /// can't be written give FileTypeNotWritable; a job that nowhere holds "//NAME " and the file's name in upper
    /// case without its extension gives JobNameMismatch; a name above 32 characters InvalidJobNameLength. Not atomic: a
    /// failed load may leave a part on the controller.
    virtual StatusInfo LoadToControllerFromString(std::string const& fileName, std::string const& contents) = 0;

    /// The same with a file of this computer, named on the controller as it is named here. FileNotFoundOnPc if there is
    /// no such file, 0x40000000 + error value if it can't be read or is a folder, pipe or device. The job name is
    /// looked for in whole blocks of 479 bytes, each up to its first zero byte, until more than 150 characters are
    /// there: normally in the first 479 bytes. After a job was loaded, the controller's list of jobs is read up to 5
    /// times, 100 ms apart. If the job is not in it, the code is that of the last read, normally 0, and the message
    /// says "Check for loaded job timed out. Job might not be on the controller.".
    virtual StatusInfo LoadToControllerFromPath(std::string const& path) = 0;

    /// Fetches a file and writes it to `path`. Without `overwrite` an existing path gives FileExistsNoOverwrite.
    /// Nothing is written before the whole file has arrived; a failed write gives 0x40000000 + error value and may leave a
    /// part of the file, or none of an old one.
    virtual StatusInfo SaveFromControllerToFile(std::string const& fileName, std::string const& path,
                                                bool overwrite) = 0;

    /// Fetches a text file into `contents`. The rest of a block behind a zero byte is lost, so this is for text only. A
    /// name above 32 characters is cut. After a failure `contents` holds what had arrived.
    virtual StatusInfo SaveFromControllerToString(std::string const& fileName, std::string& contents) = 0;

    /// Deletes a job; ".JBI" is added to a name that does not end in it, and the first 32 characters are sent.
    virtual StatusInfo DeleteJobFile(std::string const& fileName) = 0;

    /// Counts the files of a kind; 0 on failure.
    virtual StatusInfo GetFileCount(FileType type, int& count) = 0;

    /// Lists the names of the files of a kind, in byte order if `sorted`; empty on failure.
    virtual StatusInfo ListFiles(FileType type, std::vector<std::string>& files, bool sorted) = 0;
};

} // namespace harvlink
