#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <variant>
#include <vector>

#include "gateway/config/Config.h"
#include "gateway/model/Log.h"
#include "gateway/model/Observer.h"
#include "recording/blackbox/BlackBox.h"
#include "recording/write/Recorder.h"

namespace harvlink::gateway {

/// Records all that comes, and files for incidents. A thread of its own brings it to the recorder, because that may wait for
/// the disk when it gets to know a reading.
class RecordingSink : public Observer {
public:
    /// Throws recording::RecordingError if the file can't be written.
    RecordingSink(RecordingConfig const& config, Log& log);
    ~RecordingSink() override;

    void Added(ControllerPtr const& controller) override;
    void Removed(ControllerPtr const& controller) override;
    void Take(Batch const& batch) override;
    std::vector<Figure> Figures() const override;

private:
    struct Loss {
        std::uint64_t samples = 0;
        recording::Microseconds time = 0;
        recording::Microseconds monotonic = 0;
    };
    using Work = std::variant<ControllerPtr, SamplePtr, Event, Loss>;
    struct Ids {
        std::uint32_t controller = 0;
        std::vector<std::uint32_t> readings;
    };
    /// The ids that a recorder or a black box gave.
    using IdsOf = std::map<std::uint32_t, Ids>;

    void Run();
    void Do(Work const& work);
    void CheckProblems();
    void NoteLoss(std::uint64_t samples);

    static constexpr std::size_t MostWaiting = 1U << 18;

    Log& log_;
    std::unique_ptr<recording::Recorder> recorder_;
    std::unique_ptr<recording::BlackBox> box_;
    IdsOf recorderIds_; ///< the thread's own, as the next two
    IdsOf boxIds_;
    bool hasTold_ = false;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Work> waiting_;
    std::uint64_t lost_ = 0;
    bool isClosing_ = false;
    std::thread thread_;
};

} // namespace harvlink::gateway
