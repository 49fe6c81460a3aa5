#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace harvlink::simulator {

/// The content of a file at the time of reading. It stays valid when the file is changed or deleted.
using FileText = std::shared_ptr<std::string const>;

/// The place where a controller keeps its jobs, which is its files. The job engine reads jobs through this interface,
/// so it does not depend on the file store.
class JobSource {
public:
    JobSource() = default;
    JobSource(JobSource const&) = delete;
    JobSource& operator=(JobSource const&) = delete;

    /// By upper-case name, without extension. Null if there is no such job.
    virtual FileText JobText(std::string_view name) const = 0;

    /// Increases with every change that is made through the controller.
    virtual std::uint64_t Revision() const = 0;

protected:
    ~JobSource() = default;
};

} // namespace harvlink::simulator
