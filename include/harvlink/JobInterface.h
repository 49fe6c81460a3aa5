#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "harvlink/Export.h"
#include "harvlink/StatusInfo.h"

namespace harvlink {

/// A task of the controller's job language, from 0. The controller refuses a number that it does not have.
enum class TesselTaskNumber : std::int32_t {
    Master = 0,
    Sub1 = 1,
    Sub2 = 2,
    Sub3 = 3,
    Sub4 = 4,
    Sub5 = 5,
    Sub6 = 6,
    Sub7 = 7,
};

/// What a task executes.
struct JobData {
    std::string name; ///< all 32 characters of the field on the wire, zero bytes included
    std::uint32_t line = 0;
    std::uint32_t stepNumber = 0;
    double speedOverride = 0.0; ///< per cent
};

/// Selects jobs and reads what runs. One exchange per call, at most (1 + retries) x time-out. May be called from several
/// threads at once. Refusals that concern jobs come as negative codes: -79979008 "Invalid line number.", -79983552
/// "Invalid job name.", -79934465 "Invalid task number.". No answer gives ResponseTimeout.
class JobInterface {
public:
    JobInterface() = default;
    JobInterface(JobInterface const&) = delete;
    JobInterface& operator=(JobInterface const&) = delete;
    virtual ~JobInterface() = default;

    /// Selects the job that a start will run, from `line` (0 to 9999) on. Upper or lower case, with or without ".JBI".
    /// A name above 32 characters, its extension included, gives InvalidJobNameLength, a line above 9999 -79979008;
    /// nothing is sent then.
    virtual StatusInfo SetActiveJob(std::string const& name, unsigned line) = 0;

    /// Reads name, line, step and speed of the job that a task executes. `data` is empty on failure. A task that does not
    /// exist gives code 40961.
    virtual StatusInfo GetExecutingJobInformation(TesselTaskNumber task, JobData& data) = 0;

    /// Reads the names on the task's call stack, at most 12, each of 33 characters with its zero bytes. From `VersionYA`
    /// up; older controllers give UnsupportedOnThisController and leave `jobs` untouched. Empty on any other failure.
    virtual StatusInfo GetJobStack(TesselTaskNumber task, std::vector<std::string>& jobs) = 0;
};

/// Four lines without a line end at the close.
HARVLINK_EXPORT std::ostream& operator<<(std::ostream& stream, JobData const& data);

} // namespace harvlink
