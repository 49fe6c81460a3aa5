#pragma once

#include "simulator/base/Clock.h"
#include "simulator/controller/ControllerOptions.h"
#include "simulator/files/FileStore.h"
#include "simulator/jobs/JobEngine.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/motion/MotionEngine.h"

namespace harvlink::simulator {

/// A whole controller without the network: its model, and the parts that work on it. The handlers translate datagrams
/// into calls of these parts.
struct ControllerParts {
    ControllerParts(ControllerOptions const& options, Clock const& clock);

    ControllerModel model;
    FileStore files;
    JobEngine jobs;
    MotionEngine motion;

    /// Whether Tick has anything to do. The server checks it after every datagram.
    bool NeedsTicks() const { return jobs.NeedsTicks() || motion.NeedsTicks(); }

    /// Advances jobs and motion to the clock's time. While NeedsTicks is true, called about every millisecond and
    /// before every datagram.
    void Tick();
};

} // namespace harvlink::simulator
