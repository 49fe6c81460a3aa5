#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "cli/output/Words.h"
#include "cli/watch/Frame.h"
#include "harvlink/QuorvanController.h"
#include "words/values/SignalText.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::watch {

/// What to look at.
struct Selection {
    std::vector<ControlGroupId> groups;
    std::vector<VariableAddress> variables;
    std::vector<SignalName> signals;
};

/// Looks at a controller again and again, and writes nothing to it. A controller that stops answering is asked again on the
/// same connection, which UDP never closes: opening another would clear the motion targets of newer controllers.
class Reader {
public:
    Reader(QuorvanController& robot, std::string host, Selection selection);

    /// What never changes: model, software, axes of the groups, addresses of the signals. A failure here is one of the
    /// connection or of a wrong signal.
    StatusInfo Prepare();

    /// Looks once more. When nobody answers, the frame keeps what was read last and says so. May be stopped from another
    /// thread, which ends it with the exchange that is going on.
    Frame const& Look();

    void Stop() { isStopped_ = true; }

private:
    bool ReadAll(Frame& frame);
    void ReadAlarms(Frame& frame);
    void ReadGroup(GroupFrame& frame, ControlGroupId group);
    void ReadSignals(Frame& frame);
    bool Went(StatusInfo const& status);

    QuorvanController& robot_;
    Selection selection_;
    std::vector<Signal> signals_;
    Frame frame_;
    StatusInfo silence_; ///< of the look that is going on
    std::atomic<bool> isStopped_ = false;
};

} // namespace harvlink::cli::watch
