#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "cli/output/Words.h"
#include "cli/watch/SampleSource.h"
#include "harvlink/QuorvanController.h"
#include "words/values/SignalText.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::watch {

/// What to read.
struct Selection {
    std::vector<ControlGroupId> groups;
    std::vector<VariableAddress> variables;
    std::vector<SignalName> signals;
};

/// Reads from a controller again and again, and writes nothing to it. A controller that stops answering is asked again on
/// the same connection, which UDP never closes: opening another would clear the motion targets of newer controllers.
class Reader : public SampleSource {
public:
    Reader(QuorvanController& robot, std::string host, Selection selection);

    /// Reads what never changes: model, software, axes of the groups, addresses of the signals. It fails if the connection
    /// fails or a signal does not exist.
    StatusInfo Prepare();

    Sample const& Read() override;
    void Stop() override { isStopped_ = true; }

private:
    bool ReadAll(Sample& sample);
    void ReadAlarms(Sample& sample);
    void ReadGroup(GroupSample& group, ControlGroupId id);
    void ReadSignals(Sample& sample);
    bool IsAnswered(StatusInfo const& status);

    QuorvanController& robot_;
    Selection selection_;
    std::vector<Signal> signals_;
    Sample sample_;
    StatusInfo silence_; ///< the time-out that ended the present reading, if one did
    std::atomic<bool> isStopped_ = false;
};

} // namespace harvlink::cli::watch
