#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace harvlink::simulator {

/// The content of a file as it was when it was read, whatever becomes of the file.
using FileText = std::shared_ptr<std::string const>;

/// Where a controller keeps its jobs: in its files. The job engine reads them through this and knows nothing of files.
class JobSource {
public:
    JobSource() = default;
    JobSource(JobSource const&) = delete;
    JobSource& operator=(JobSource const&) = delete;

    /// By upper-case name, without extension. Null if there is no such job.
    virtual FileText JobText(std::string_view name) const = 0;

    /// Grows with every change of a job that the controller itself makes.
    virtual std::uint64_t Revision() const = 0;

protected:
    ~JobSource() = default;
};

} // namespace harvlink::simulator
