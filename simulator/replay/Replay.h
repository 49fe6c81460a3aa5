#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "recording/model/Records.h"
#include "simulator/model/ControlGroups.h"
#include "simulator/protocol/Answerer.h"
#include "simulator/replay/MissedRequests.h"
#include "simulator/replay/ReplayClock.h"

namespace harvlink::simulator {

struct ReplayOptions {
    std::string at; ///< where to begin, as ParseTime of the recordings takes it; empty: at the start
    std::string controller; ///< name or address; empty: the one at `servedAddress`, or the only one of the file
    std::string servedAddress; ///< where the virtual controller is
    ReplaySpeed speed{};
};

/// Answers as a controller did before. Files, parameters and axes, which a client asks for when it connects, are those of the
/// virtual controller unless the file has them.
class Replay : public Answerer {
public:
    /// "YAS4.10.00A(EN/JP)-00", by which a client knows the generation; empty if the file does not have it.
    virtual std::string SoftwareVersion() const = 0;

    /// The control groups of which the file has anything.
    virtual std::vector<ControlGroup> Groups() const { return {}; }

    /// What the file has that can't be played back; empty if there is nothing.
    virtual std::string Warning() const { return {}; }

    MissedRequests const& Missed() const { return missed_; }

protected:
    /// As a controller answers for a variable that it does not have.
    static constexpr Refusal NotRecorded = Refusal::InvalidInstance;
    static constexpr Refusal WriteRefused = Refusal::IncorrectMode;

    /// What a client asks for when it connects, and few recordings have.
    static bool IsOfConnecting(Request const& request);

    /// The place in the file that an option names. Throws RecordingError if it is outside.
    static recording::Microseconds StartTime(std::string const& at, recording::Microseconds begin,
                                             recording::Microseconds end);

    MissedRequests missed_;
};

/// Opens a recording, or a capture of a packet sniffer. Throws RecordingError, and what ParseTime throws for a wrong time.
std::unique_ptr<Replay> OpenReplay(std::filesystem::path const& path, ReplayOptions const& options);

} // namespace harvlink::simulator
