#pragma once

#include "cli/output/Output.h"
#include "cli/trajectory/TrajectoryFile.h"
#include "harvlink/MotionManagerInterface.h"
#include "harvlink/QuorvanController.h"
#include "harvlink/StatusInfo.h"

namespace harvlink::cli {

/// Moves the machine through all points and waits until it has arrived. Nothing moves before all points are queued.
/// However it ends, the queue is empty afterwards, so that closing the connection does not wait. On Ctrl-C the motion is
/// stopped and the queue cleared; a second Ctrl-C ends the process.
StatusInfo RunTrajectory(QuorvanController& robot, Output& output, Trajectory const& trajectory);

/// Stops the motion, and with `clearsTargets` clears the controller's targets and the queue. A stop may get lost, so it is
/// sent up to three times if there is no answer; each attempt waits for all time-outs of the connection.
StatusInfo StopMotion(MotionManagerInterface& manager, bool clearsTargets);

} // namespace harvlink::cli
