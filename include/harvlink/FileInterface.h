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

/// What the controller's file store knows of a kind of files.
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

/// The controller's file store. A transfer is one exchange per block of 479 bytes and blocks the caller until it is done;
/// each exchange takes at most (1 + retries) x time-out, and silence in the middle ends the transfer with ResponseTimeout.
/// A load of "TOOL.CND", and one that the controller refuses as not writable, waits 3 more seconds.
///
/// May be called from several threads at once, but two transfers at a time mix up on the controller: do one at a time.
/// File names end in a dot and three letters of the table above, in any case; anything else gives InvalidFileExtension.
/// All argument checks come before the first datagram. The controller's refusals come with its own code and text.
class FileInterface {
public:
    FileInterface() = default;
    FileInterface(FileInterface const&) = delete;
    FileInterface& operator=(FileInterface const&) = delete;
    virtual ~FileInterface() = default;

    /// Stores `contents` on the controller as `fileName`, replacing the file if the controller allows it. Kinds that
    /// can't be written give FileTypeNotWritable; a job whose "//NAME" line does not name the file gives JobNameMismatch;
    /// a name above 32 characters InvalidJobNameLength. Not atomic: a failed load may leave a part on the controller.
    virtual StatusInfo LoadToControllerFromString(std::string const& fileName, std::string const& contents) = 0;

    /// The same with a file of this computer, named on the controller as it is named here. FileNotFoundOnPc if there is
    /// no such file, 0x40000000 + error value if it can't be read or is a pipe or device. The job name must lie in the
    /// first 151 characters. After a job the controller's list is looked at up to 5 times, 100 ms apart; if the job is
    /// not in it the code stays 0 and the message says "Check for loaded job timed out. Job might not be on the
    /// controller.".
    virtual StatusInfo LoadToControllerFromPath(std::string const& path) = 0;

    /// Fetches a file and writes it to `path`. Without `overwrite` an existing path gives FileExistsNoOverwrite. Nothing is
    /// written before the whole file has arrived; a failed write gives 0x40000000 + error value.
    virtual StatusInfo SaveFromControllerToFile(std::string const& fileName, std::string const& path,
                                                bool overwrite) = 0;

    /// Fetches a text file into `contents`. Of a block that holds a zero byte the rest is lost: this road is for text.
    /// After a failure `contents` holds what had arrived.
    virtual StatusInfo SaveFromControllerToString(std::string const& fileName, std::string& contents) = 0;

    /// Deletes a job; ".JBI" is added to a name that does not end in it.
    virtual StatusInfo DeleteJobFile(std::string const& fileName) = 0;

    /// Counts the files of a kind; 0 on failure.
    virtual StatusInfo GetFileCount(FileType type, int& count) = 0;

    /// Lists the names of the files of a kind, in byte order if `sorted`; empty on failure.
    virtual StatusInfo ListFiles(FileType type, std::vector<std::string>& files, bool sorted) = 0;
};

} // namespace harvlink
