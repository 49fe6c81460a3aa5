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

/// Says whether a text is the job of this name, which is a file's name without its extension.
using JobTextCheck = Refusal (*)(std::string_view name, std::string_view text);

/// The files on the controller, by upper-case name (FileNameFrom).
///
/// Without a folder there are the generated files and the sample jobs, and all that is written stays in memory. With one
/// (ControllerOptions::filesFolder) its files are served and updated instead; of the generated ones only the three that
/// describe the controller remain, each until the folder has a file of its name. A file that was Put or written stands in
/// front of a generated one.
class FileStore final : public JobSource {
public:
    static constexpr std::size_t MaxFileSize = std::size_t{16} << 20U;
    static constexpr std::size_t MaxMemory = std::size_t{64} << 20U; ///< of all files that are kept in memory
    static constexpr std::size_t MaxFiles = 1024; ///< kept in memory

    /// An empty folder is none. Allows overwriting: sets RS214 to 2.
    FileStore(ControllerModel& model, std::filesystem::path const& folder, JobTextCheck checkJob);

    /// Why the folder can't be served; empty if all is well.
    std::string const& FolderError() const { return folder_.Error(); }

    /// Puts a file in place, of any kind and whatever it says, replacing one of the same name; lone line feeds become
    /// CR LF. Used by scene files. Never changes the folder. Refuses a bad name and what goes beyond the limits.
    Refusal Put(std::string_view name, std::string_view content);

    /// Null if there is no such file.
    FileText Read(std::string_view name) const;

    /// Sorted.
    std::vector<std::string> Names(std::string_view pattern) const;

    /// Whether a client may load a file of this name now. Refused are kinds that can't be written, all of them outside
    /// remote mode, existing files unless RS214 is 2, and jobs that are being executed.
    Refusal CheckLoad(std::string_view name) const;

    /// Takes over what a client has loaded, after checking a job's text.
    Refusal Load(std::string const& name, std::string content);

    /// Deletes for a client: jobs only, in remote mode only, and none that is being executed.
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
