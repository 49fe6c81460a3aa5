#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/base/Descriptor.h"
#include "simulator/protocol/Refusal.h"

namespace harvlink::simulator {

/// A folder of the user's computer that serves as file storage. Only regular files with the controller's extensions, in
/// upper or lower case, are visible; links and subfolders are ignored. All names are names of the store (FileNameFrom).
/// The folder is read on every call, so the user may change it at any time.
class FileFolder {
public:
    /// An empty path means no folder. Error says why a folder can't be opened.
    explicit FileFolder(std::filesystem::path const& path);

    bool IsOpen() const { return folder_.IsOpen(); }
    std::string const& Error() const { return error_; }

    std::vector<std::string> Names() const;

    /// Files that have an extension of the controller's, and a name that a controller can't have.
    std::vector<std::string> UnservedNames() const;
    bool Contains(std::string_view name) const { return FindSpelling(name).has_value(); }

    /// Nothing if there is no such file, it can't be read, or it is longer than `sizeLimit`.
    std::optional<std::string> Read(std::string_view name, std::size_t sizeLimit) const;

    /// Creates or replaces a file atomically: after a failure the old file is still there.
    Refusal Write(std::string const& name, std::string_view content) const;

    Refusal Remove(std::string_view name) const;

private:
    static constexpr std::size_t MaxEntries = 4096;

    template <typename Visitor>
    void VisitFiles(Visitor&& visit) const;
    template <typename Visitor>
    void VisitAll(Visitor&& visit) const;
    std::optional<std::string> FindSpelling(std::string_view wanted) const;
    bool IsReplaceable(std::string const& spelling) const;

    Descriptor folder_;
    std::string error_;
};

} // namespace harvlink::simulator
