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

/// A folder of the user's computer as a place of files. Only regular files with the controller's extensions are seen, no
/// matter in which case they are spelled; links are not followed, subfolders not entered. All names are names of the
/// store (FileNameFrom). The folder is looked at anew each time, so the user may change it meanwhile.
class FileFolder {
public:
    /// An empty path is no folder at all. For one that can't be opened Error tells why.
    explicit FileFolder(std::filesystem::path const& path);

    bool IsOpen() const { return folder_.IsOpen(); }
    std::string const& Error() const { return error_; }

    std::vector<std::string> Names() const;
    bool Contains(std::string_view name) const { return FindSpelling(name).has_value(); }

    /// Nothing if there is no such file, it can't be read, or it is longer than `sizeLimit`.
    std::optional<std::string> Read(std::string_view name, std::size_t sizeLimit) const;

    /// Replaces or makes a file, in one piece: a failure leaves the old one.
    Refusal Write(std::string const& name, std::string_view content) const;

    Refusal Remove(std::string_view name) const;

private:
    static constexpr std::size_t MaxEntries = 4096;

    template <typename Visitor>
    void VisitFiles(Visitor&& visit) const;
    std::optional<std::string> FindSpelling(std::string_view name) const;
    bool IsReplaceable(std::string const& spelling) const;

    Descriptor folder_;
    std::string error_;
};

} // namespace harvlink::simulator
