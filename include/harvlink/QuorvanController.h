#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "harvlink/Export.h"
#include "harvlink/StatusInfo.h"
#include "harvlink/Version.h"

namespace harvlink {

class ControlCommandsInterface;
class ControlGroupInterface;
class ControllerStateInterface;
class FaultInterface;
class FileInterface;
class IOInterface;
class JobInterface;
class KinematicsInterface;
class MotionManagerInterface;
class VariablesInterface;
struct ConnectionStatistics;

/// A connection to one controller. The ten interfaces belong to it and live as long as it does. Their operations may be
/// called from several threads at once; CloseConnection must not be called while one of them runs.
class QuorvanController {
public:
    QuorvanController() = default;
    QuorvanController(QuorvanController const&) = delete;
    QuorvanController& operator=(QuorvanController const&) = delete;
    virtual ~QuorvanController() = 0;

    ControlGroupInterface* ControlGroup = nullptr;
    ControllerStateInterface* Status = nullptr;
    VariablesInterface* Variables = nullptr;
    FaultInterface* Faults = nullptr;
    JobInterface* Job = nullptr;
    FileInterface* Files = nullptr;
    IOInterface* IO = nullptr;
    ControlCommandsInterface* ControlCommands = nullptr;
    MotionManagerInterface* MotionManager = nullptr;
    KinematicsInterface* Kinematics = nullptr;

    /// What the connection has seen of its link, however it was opened; include ConnectionStatistics.h. All zero for a
    /// class of your own. May be called from any thread at any time, does not wait and raises no exception.
    HARVLINK_EXPORT ConnectionStatistics GetConnectionStatistics() const;
};

inline QuorvanController::~QuorvanController() = default;

extern "C" {

/// Opens a connection: creates two UDP sockets, asks the controller for its generation, and reads what the library needs
/// to know of it. Nothing on the controller changes, except that its motion targets are cleared from `VersionYA` up.
///
/// @param ipAddress IPv4 address in dotted form. One that can't be parsed ends in ResponseTimeout, and so does a name:
///     Connect in ConnectOptions.h resolves names, this call does not.
/// @param status "OK", or: VersionMismatch; SocketOpenError; ResponseTimeout after (1 + retries) x time-out if nobody
///     answers; the controller's code if it refuses the probe; ControllerObjectCreationFailed if its start-up data can't
///     be read.
/// @param timeoutMilliseconds how long an exchange listens for its answer. 0 does not wait at all.
/// @param retries how many further such periods it listens. A request is never sent twice.
/// @param logging whether motion failures that have no caller go to "HarvlinkLog.txt" in the working directory.
/// @param headerVersion leave it as it is.
/// @return the connection, to be ended with CloseConnection, or null on failure.
HARVLINK_EXPORT QuorvanController* OpenConnection(std::string const& ipAddress, StatusInfo& status,
                                                  unsigned timeoutMilliseconds, unsigned retries, bool logging,
                                                  std::string_view headerVersion = HeaderVersion);

/// Ends a connection and everything reached through it. Null is ignored. Sends nothing: a robot in motion is not stopped.
HARVLINK_EXPORT void CloseConnection(QuorvanController* controller);

} // extern "C"

/// The deleter of Connection.
struct ConnectionCloser {
    /// Closes; null is ignored.
    void operator()(QuorvanController* controller) const { CloseConnection(controller); }
};

/// Owns a connection and closes it at the end of its scope.
using Connection = std::unique_ptr<QuorvanController, ConnectionCloser>;

/// OpenConnection with an owner, for a program to connect in one line. Empty on failure, see `status`.
[[nodiscard]] inline Connection Connect(std::string const& ipAddress, StatusInfo& status, unsigned timeoutMilliseconds,
                                        unsigned retries, bool logging = true) {
    return Connection(OpenConnection(ipAddress, status, timeoutMilliseconds, retries, logging, HeaderVersion));
}

} // namespace harvlink
