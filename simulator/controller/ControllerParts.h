#pragma once

#include "simulator/base/Clock.h"
#include "simulator/controller/ControllerOptions.h"
#include "simulator/files/FileStore.h"
#include "simulator/jobs/JobEngine.h"
#include "simulator/model/ControllerModel.h"
#include "simulator/motion/MotionEngine.h"

namespace harvlink::simulator {

/// A whole controller without the network: what it remembers, and what works on it. The handlers translate datagrams into
/// calls of these parts.
struct ControllerParts {
    ControllerParts(ControllerOptions const& options, Clock const& clock);

    ControllerModel model;
    FileStore files;
    JobEngine jobs;
    MotionEngine motion;

    /// Whether Tick has anything to do. The server asks after every datagram.
    bool NeedsTicks() const { return jobs.NeedsTicks() || motion.NeedsTicks(); }

    /// Lets jobs and motion advance to the clock's time. Called about every millisecond while NeedsTicks, and before
    /// every datagram.
    void Tick();
};

} // namespace harvlink::simulator
