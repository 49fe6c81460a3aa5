#include "gateway/watch/Dispatcher.h"

#include <algorithm>
#include <chrono>

namespace harvlink::gateway {

namespace {

using std::chrono::milliseconds;

/// Taking what came in this time together costs far less than waking for each sample, and nobody sees the delay.
constexpr milliseconds Pace(50);
constexpr std::size_t MostAtOnce = 1024;
constexpr std::size_t MostEventsAtOnce = 256;

} // namespace

Dispatcher::Dispatcher(Fleet& fleet, Log& log)
    : fleet_(fleet),
      log_(log),
      observers_{latest_},
      taken_(MostAtOnce),
      takenEvents_(MostEventsAtOnce),
      thread_([this] { Run(); }) {}

Dispatcher::~Dispatcher() {
    Stop();
}

void Dispatcher::Stop() {
    {
        std::scoped_lock const lock(mutex_);
        isStopping_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
    std::scoped_lock const lock(observersMutex_);
    observers_.clear(); // so that their owner decides when they end
}

void Dispatcher::Run() {
    std::unique_lock lock(mutex_);
    while (!isStopping_) {
        wake_.wait_for(lock, Pace, [this] { return isStopping_ || !changes_.empty(); });
        DoChanges(lock);
        lock.unlock();
        TakeAll();
        ++rounds_;
        lock.lock();
    }
    DoChanges(lock);
}

void Dispatcher::DoChanges(std::unique_lock<std::mutex>& lock) {
    if (changes_.empty()) {
        return;
    }
    auto const changes = std::exchange(changes_, {});
    lock.unlock();
    for (auto const& change : changes) {
        change();
    }
    lock.lock();
    changesDone_ += changes.size();
    done_.notify_all();
}

void Dispatcher::Do(std::function<void()> const& change) {
    std::unique_lock lock(mutex_);
    if (isStopping_) {
        return; // nobody is left whom it concerns
    }
    changes_.push_back(change);
    std::uint64_t const own = ++changesAsked_;
    wake_.notify_one();
    done_.wait(lock, [&] { return changesDone_ >= own; });
}

void Dispatcher::Add(std::shared_ptr<Observer> const& observer) {
    Do([&] {
        Introduce(*observer);
        std::scoped_lock const lock(observersMutex_);
        observers_.push_back(observer);
    });
}

void Dispatcher::Remove(std::shared_ptr<Observer> const& observer) {
    Do([&] {
        std::scoped_lock const lock(observersMutex_);
        observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
    });
}

void Dispatcher::Replace(std::shared_ptr<Observer> const& observer, std::shared_ptr<Interim> const& interim) {
    Do([&] {
        Introduce(*interim);
        Exchange(observer, interim);
    });
}

void Dispatcher::Replace(std::shared_ptr<Interim> const& interim, std::shared_ptr<Observer> const& observer) {
    Do([&] {
        interim->GiveTo(*observer);
        Exchange(interim, observer);
    });
}

void Dispatcher::Exchange(std::shared_ptr<Observer> const& old, std::shared_ptr<Observer> const& next) {
    std::scoped_lock const lock(observersMutex_);
    std::replace(observers_.begin(), observers_.end(), old, next);
}

/// What the observer would know if it had been there from the start.
void Dispatcher::Introduce(Observer& observer) const {
    std::vector<SamplePtr> samples;
    std::vector<Event> events;
    for (LatestController const& known : latest_->Snapshot()) {
        observer.Added(known.controller);
        std::copy_if(known.samples.begin(), known.samples.end(), std::back_inserter(samples),
                     [](SamplePtr const& sample) { return sample != nullptr; });
        if (known.linkSince != 0) {
            FleetEvent link;
            link.controller = known.controller->name;
            link.time = std::chrono::system_clock::time_point(std::chrono::microseconds(known.linkSince));
            link.after = static_cast<std::int64_t>(known.link);
            events.push_back(converter_.Convert(link));
        }
    }
    observer.Take({samples, events});
}

void Dispatcher::Tell(FleetEvent const& event) {
    Do([&] {
        if (Event const told = converter_.Convert(event); told.controller != nullptr) {
            Give({{}, {&told, 1}});
        }
    });
}

void Dispatcher::Add(ControllerPtr const& controller, std::vector<FleetGroup> const& groups) {
    Do([&] {
        converter_.Add(controller, groups);
        for (auto const& observer : observers_) {
            observer->Added(controller);
        }
    });
}

void Dispatcher::Remove(ControllerPtr const& controller) {
    Do([&] {
        converter_.Remove(controller);
        for (auto const& observer : observers_) {
            observer->Removed(controller);
        }
    });
}

void Dispatcher::Give(Batch const& batch) {
    for (auto const& observer : observers_) {
        observer->Take(batch);
    }
}

void Dispatcher::TakeAll() {
    // Events first: a controller that is back is online before its samples come. One that fell silent has given its stale
    // values before it says so, and they are then in the queue already.
    while (std::size_t const count = fleet_.TakeEvents(takenEvents_, milliseconds(0))) {
        for (std::size_t i = 0; i < count; ++i) {
            Event event = converter_.Convert(takenEvents_[i]);
            if (event.controller != nullptr) {
                events_.push_back(std::move(event));
            }
        }
    }
    std::size_t count = 0;
    do {
        count = fleet_.Take(taken_, milliseconds(0));
        for (std::size_t i = 0; i < count; ++i) {
            if (SamplePtr sample = converter_.Convert(taken_[i])) {
                samples_.push_back(std::move(sample));
            }
        }
    } while (count == taken_.size() && samples_.size() < taken_.size() * 64);
    TakeAgainAfterLoss();
    Give({samples_, events_, droppedTotal_ - droppedBefore_});
    droppedBefore_ = droppedTotal_;
    samples_.clear();
    events_.clear();
}

/// A reading that is only reported when it changes would be wrong from then on.
void Dispatcher::TakeAgainAfterLoss() {
    if (rounds_ % 20 != 0) { // a second: statistics of many controllers cost time
        return;
    }
    std::uint64_t const dropped = fleet_.Statistics().droppedSamples;
    if (dropped == droppedTotal_) {
        return;
    }
    log_.Warning("samples were lost because more came than the gateway could take",
                 {{"samples", std::to_string(dropped - droppedTotal_)}});
    droppedTotal_ = dropped;
    for (FleetSample const& sample : fleet_.Latest()) {
        if (SamplePtr latest = converter_.Convert(sample); latest && sample.quality != FleetQuality::NeverRead) {
            samples_.push_back(std::move(latest));
        }
    }
}

std::vector<Figure> Dispatcher::Figures() const {
    std::vector<std::shared_ptr<Observer>> observers;
    {
        std::scoped_lock const lock(observersMutex_);
        observers = observers_;
    }
    std::vector<Figure> figures;
    for (auto const& observer : observers) {
        auto const own = observer->Figures();
        figures.insert(figures.end(), own.begin(), own.end());
    }
    return figures;
}

} // namespace harvlink::gateway
