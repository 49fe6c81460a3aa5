#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/files/FileFolder.h"
#include "simulator/model/JobSource.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

class ControllerModel;

/// Checks that a text is a valid job with this name, which is the file's name without its extension.
using JobTextCheck = Refusal (*)(std::string_view name, std::string_view text);

/// The files on the controller, by upper-case name (FileNameFrom).
///
/// Without a folder the store has the generated files and the sample jobs, and written files stay in memory. With a
/// folder (ControllerOptions::filesFolder) it serves and updates the files of the folder; of the generated files only
/// the three that describe the controller remain. A file from the folder, from Put or from a client hides a generated
/// file of the same name.
class FileStore final : public JobSource {
public:
    static constexpr std::size_t MaxFileSize = std::size_t{16} << 20U;
    static constexpr std::size_t MaxMemory = std::size_t{64} << 20U; ///< of all files that are kept in memory
    static constexpr std::size_t MaxFiles = 1024; ///< kept in memory

    /// An empty path means no folder. Sets RS214 to 2, which allows overwriting.
    FileStore(ControllerModel& model, std::filesystem::path const& folder, JobTextCheck checkJob);

    /// Why the folder can't be served; empty if it can.
    std::string const& FolderError() const { return folder_.Error(); }

    /// The files in the folder that can't be served because of their names.
    std::vector<std::string> UnservedNames() const {
        return folder_.IsOpen() ? folder_.UnservedNames() : std::vector<std::string>();
    }

    /// Stores a file of any kind and content in memory and replaces one of the same name. Single line feeds become CR
    /// LF. Used by scenes; never changes the folder. Refuses a bad name and a file beyond the limits.
    Refusal Put(std::string_view name, std::string_view content);

    /// Null if there is no such file.
    FileText Read(std::string_view name) const;

    /// Sorted.
    std::vector<std::string> Names(std::string_view pattern) const;

    /// Whether a client may load a file of this name now. Refused: kinds of files that can't be written, any file
    /// outside remote mode, an existing file unless RS214 is 2, and a job that is being executed.
    Refusal CheckLoad(std::string_view name) const;

    /// Stores a file that a client has loaded. The text of a job is checked first.
    Refusal Load(std::string const& name, std::string content);

    /// Deletes a file for a client: only jobs, only in remote mode, and not while the job is executed.
    Refusal Delete(std::string_view name);

    FileText JobText(std::string_view name) const override;
    std::uint64_t Revision() const override { return revision_; }

private:
    bool Contains(std::string_view name) const;
    bool IsServed(bool isConfiguration) const { return isConfiguration || !folder_.IsOpen(); }
    bool IsExecuted(std::string_view name) const;
    std::int32_t OverwriteParameter() const;
    Refusal Keep(std::string const& name, std::string content);
    void Forget(std::string_view name);

    ControllerModel& model_;
    JobTextCheck checkJob_;
    FileFolder folder_;
    std::map<std::string, FileText, std::less<>> kept_;
    std::size_t keptSize_ = 0;
    std::uint64_t revision_ = 0;
};

} // namespace harvlink::simulator
