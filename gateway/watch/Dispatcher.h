#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "gateway/model/Log.h"
#include "gateway/model/Observer.h"
#include "gateway/watch/Converter.h"
#include "gateway/watch/Interim.h"
#include "gateway/watch/LatestTable.h"

namespace harvlink::gateway {

/// Takes samples and events out of a fleet on a thread of its own and gives them to the observers. All operations may be called
/// from any thread but that of the observers; those that change who gets what return when that has happened.
class Dispatcher {
public:
    Dispatcher(Fleet& fleet, Log& log);
    Dispatcher(Dispatcher const&) = delete;
    Dispatcher& operator=(Dispatcher const&) = delete;
    /// Stops.
    ~Dispatcher();

    /// Gives what the fleet still has, then ends the thread and lets go of the observers.
    void Stop();

    void Add(std::shared_ptr<Observer> const& observer);
    void Remove(std::shared_ptr<Observer> const& observer);
    /// One takes the place of another in one moment, so that nothing falls between them: the interim that of an observer which
    /// ends, with all that an observer gets that is added; and a new observer that of the interim, with all that it kept.
    void Replace(std::shared_ptr<Observer> const& observer, std::shared_ptr<Interim> const& interim);
    void Replace(std::shared_ptr<Interim> const& interim, std::shared_ptr<Observer> const& observer);

    /// What happened to a controller that the fleet does not have yet. Nothing if it is not watched any more.
    void Tell(FleetEvent const& event);

    void Add(ControllerPtr const& controller, std::vector<FleetGroup> const& groups);
    void Remove(ControllerPtr const& controller);

    LatestTable const& Latest() const { return *latest_; }
    std::vector<Figure> Figures() const; ///< of all observers

    /// Rises as long as the thread runs.
    std::uint64_t Rounds() const { return rounds_; }
    std::uint64_t DroppedSamples() const { return droppedTotal_; } ///< by the fleet, because more came than were taken

private:
    void Run();
    void Do(std::function<void()> const& change);
    void DoChanges(std::unique_lock<std::mutex>& lock);
    void TakeAll();
    void TakeAgainAfterLoss();
    void Give(Batch const& batch);
    void Introduce(Observer& observer) const;
    void Exchange(std::shared_ptr<Observer> const& old, std::shared_ptr<Observer> const& next);

    Fleet& fleet_;
    Log& log_;
    std::shared_ptr<LatestTable> latest_ = std::make_shared<LatestTable>();
    mutable std::mutex observersMutex_; ///< `observers_` changes on the dispatcher's thread only
    std::vector<std::shared_ptr<Observer>> observers_;
    Converter converter_; ///< the thread's own, as what follows up to `events_`
    std::uint64_t droppedBefore_ = 0;
    std::vector<FleetSample> taken_;
    std::vector<FleetEvent> takenEvents_;
    std::vector<SamplePtr> samples_;
    std::vector<Event> events_;
    std::atomic<std::uint64_t> rounds_ = 0;
    std::atomic<std::uint64_t> droppedTotal_ = 0;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    std::vector<std::function<void()>> changes_; ///< with the two that follow under `mutex_`
    std::uint64_t changesAsked_ = 0;
    std::uint64_t changesDone_ = 0;
    bool isStopping_ = false;
    std::thread thread_;
};

} // namespace harvlink::gateway
