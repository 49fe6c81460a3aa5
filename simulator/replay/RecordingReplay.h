#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "recording/read/ControllerTexts.h"
#include "recording/read/KnownState.h"
#include "recording/read/Recording.h"
#include "simulator/replay/RecordedAnswer.h"
#include "simulator/replay/Replay.h"
#include "simulator/replay/RequestKeys.h"

namespace harvlink::simulator {

/// Answers every read with what a recording has for that moment. What was not recorded is refused as by a controller that does
/// not have it, writes are refused, and while the controller was silent nothing is answered.
class RecordingReplay final : public Replay {
public:
    RecordingReplay(std::filesystem::path const& path, ReplayOptions const& options);

    bool Answer(Request const& request, Reply& reply) override;

    std::string SoftwareVersion() const override;
    std::vector<ControlGroup> Groups() const override;

private:
    void ChooseController(ReplayOptions const& options);
    void MakeIndex();
    void FindFirst(recording::Microseconds begin);
    void Rewind();
    void MoveTo(recording::Microseconds now);
    bool IsLeftToController(Request const& request) const;
    void AnswerRead(Request const& request, Reply& reply);

    recording::Recording recording_;
    recording::KnownState known_;
    std::uint32_t controller_ = 0;
    std::optional<recording::ControllerTexts> texts_;
    std::map<RequestKey, std::vector<std::uint32_t>> readings_; ///< by what they answer
    /// By reading, as they were first: the software, and what was read within a second of the start.
    std::map<std::uint32_t, recording::RecordedSample> first_;
    std::int64_t firstRow_ = 0;
    std::int64_t nextRow_ = 0; ///< to read from the file; 0: all is read
    std::vector<recording::Change> changes_; ///< read, but not reached yet from `reached_` on
    std::size_t reached_ = 0;
    recording::Microseconds now_ = 0;
    std::optional<ReplayClock> clock_;
    std::vector<RecordedAnswer> answers_; ///< kept for its memory
};

} // namespace harvlink::simulator
