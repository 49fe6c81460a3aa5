#include "recording/blackbox/BlackBox.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <fmt/format.h>

#include "recording/model/TimeText.h"

namespace harvlink::recording {

struct BlackBox::Ring {
    std::uint32_t controller = 0;
    std::map<std::uint32_t, RecordedSample> known; ///< by reading: as it was before the first entry
    std::deque<Entry> entries;
    std::unique_ptr<SampleStore> incident;
    std::map<std::uint32_t, std::uint32_t> ids; ///< of the readings in the file of the incident
    Microseconds end = 0; ///< monotonic, of the incident
};

BlackBox::BlackBox(BlackBoxOptions options) : options_(std::move(options)), thread_([this] { Run(); }) {}

BlackBox::~BlackBox() {
    Close();
}

std::uint32_t BlackBox::AddController(RecordedController const& controller) {
    std::scoped_lock const lock(mutex_);
    auto const found = std::find_if(controllers_.begin(), controllers_.end(),
                                    [&](RecordedController const& known) { return known.name == controller.name; });
    if (found != controllers_.end()) {
        return static_cast<std::uint32_t>(found - controllers_.begin() + 1);
    }
    controllers_.push_back(controller);
    return static_cast<std::uint32_t>(controllers_.size());
}

std::uint32_t BlackBox::AddReading(RecordedReading const& reading) {
    std::scoped_lock const lock(mutex_);
    readings_.push_back(reading);
    return static_cast<std::uint32_t>(readings_.size());
}

void BlackBox::Put(RecordedSample sample) {
    std::scoped_lock const lock(mutex_);
    auto const monotonic = sample.moment.monotonic;
    if (sample.reading >= 1 && sample.reading <= readings_.size() && waiting_.size() < options_.capacity) {
        waiting_.push_back({monotonic, std::move(sample), {}});
    }
}

void BlackBox::Put(RecordedEvent event) {
    std::scoped_lock const lock(mutex_);
    auto const monotonic = event.monotonic;
    if (event.controller >= 1 && event.controller <= controllers_.size()) {
        waiting_.push_back({monotonic, {}, std::move(event)});
    }
}

BlackBoxStatus BlackBox::Status() const {
    std::scoped_lock const lock(mutex_);
    return status_;
}

void BlackBox::Close() {
    {
        std::scoped_lock const lock(mutex_);
        isClosing_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void BlackBox::Run() {
    try {
        for (bool isClosing = false; !isClosing;) {
            std::deque<Entry> entries;
            {
                std::unique_lock lock(mutex_);
                wake_.wait_for(lock, options_.writeInterval, [this] { return isClosing_; });
                isClosing = isClosing_;
                std::swap(entries, waiting_);
            }
            for (Entry& entry : entries) {
                Take(std::move(entry));
            }
            CommitOpen();
        }
        for (auto& [controller, ring] : rings_) {
            End(*ring);
        }
    } catch (std::exception const& error) {
        std::scoped_lock const lock(mutex_);
        status_.problem = error.what();
    }
}

BlackBox::Ring& BlackBox::RingOf(std::uint32_t controller) {
    auto& ring = rings_[controller];
    if (!ring) {
        ring = std::make_unique<Ring>();
        ring->controller = controller;
    }
    return *ring;
}

void BlackBox::Take(Entry entry) {
    bool const isEvent = entry.sample.reading == 0;
    std::uint32_t controller = entry.event.controller;
    if (!isEvent) {
        std::scoped_lock const lock(mutex_);
        controller = readings_[entry.sample.reading - 1].controller;
    }
    Ring& ring = RingOf(controller);
    if (ring.incident && entry.monotonic > ring.end) {
        End(ring);
    }
    bool const isIncident =
        isEvent && std::find(options_.on.begin(), options_.on.end(), entry.event.kind) != options_.on.end();
    if (isIncident) {
        if (!ring.incident) {
            Forget(ring, entry.monotonic);
            Begin(ring, entry.event);
        }
        ring.end = entry.monotonic + options_.after.count();
    }
    if (ring.incident) {
        Write(ring, entry);
    }
    Forget(ring, entry.monotonic);
    ring.entries.push_back(std::move(entry));
}

/// Drops what is older than the time before an event, and keeps what it said.
void BlackBox::Forget(Ring& ring, Microseconds now) {
    std::size_t const most = options_.capacity / std::max<std::size_t>(rings_.size(), 1);
    while (!ring.entries.empty() &&
           (ring.entries.front().monotonic < now - options_.before.count() || ring.entries.size() > most)) {
        RecordedSample& sample = ring.entries.front().sample;
        if (sample.reading != 0) {
            RecordedSample& known = ring.known[sample.reading];
            if (sample.values.empty()) {
                std::swap(sample.values, known.values); // the last that it had
            }
            known = std::move(sample);
        }
        ring.entries.pop_front();
    }
}

std::filesystem::path BlackBox::NameFor(Ring const& ring, RecordedEvent const& event) const {
    std::string name;
    {
        std::scoped_lock const lock(mutex_);
        name = controllers_[ring.controller - 1].name;
    }
    // The name of a cell is any text, and must not lead into another folder.
    std::replace_if(
        name.begin(), name.end(),
        [](char character) { return character == '/' || static_cast<unsigned char>(character) < ' '; }, '_');
    std::string const what = event.kind == "alarm-raised" ? fmt::format("alarm-{}", event.after) : event.kind;
    std::string const stem = fmt::format("{}-{}-{}", name, FormatTimeForName(event.time), what);
    auto path = options_.folder / (stem + ".harvlink");
    for (int number = 2; std::filesystem::exists(path); ++number) {
        path = options_.folder / fmt::format("{}-{}.harvlink", stem, number);
    }
    return path;
}

void BlackBox::Begin(Ring& ring, RecordedEvent const& event) {
    auto const path = NameFor(ring, event);
    ring.incident = std::make_unique<SampleStore>(path);
    ring.ids.clear();
    {
        std::scoped_lock const lock(mutex_);
        status_.incidents.push_back(path);
        ring.incident->AddController(controllers_[ring.controller - 1]);
        for (std::uint32_t id = 1; id <= readings_.size(); ++id) {
            if (readings_[id - 1].controller == ring.controller) {
                RecordedReading reading = readings_[id - 1];
                reading.controller = 1;
                ring.ids[id] = ring.incident->AddReading(reading);
            }
        }
    }
    ring.incident->Begin();
    for (auto const& [id, sample] : ring.known) {
        RecordedSample known = sample;
        known.reading = ring.ids.at(id);
        ring.incident->Know(known);
    }
    auto const begin = event.monotonic - options_.before.count();
    bool const isWhole = !ring.known.empty();
    if (isWhole) {
        ring.incident->StartAt(event.time - options_.before.count(), begin);
    }
    for (Entry const& entry : ring.entries) {
        Write(ring, entry);
    }
}

void BlackBox::Write(Ring& ring, Entry const& entry) {
    if (entry.sample.reading == 0) {
        RecordedEvent event = entry.event;
        event.controller = 1;
        ring.incident->Put(std::move(event));
        return;
    }
    RecordedSample sample = entry.sample;
    auto const found = ring.ids.find(sample.reading);
    if (found == ring.ids.end()) {
        std::scoped_lock const lock(mutex_);
        RecordedReading reading = readings_[sample.reading - 1];
        reading.controller = 1;
        ring.ids[sample.reading] = ring.incident->AddReading(reading);
    }
    sample.reading = ring.ids.at(sample.reading);
    ring.incident->Put(sample);
}

/// Each interval the open files are made safe against a cut of power.
void BlackBox::CommitOpen() {
    std::size_t samples = 0;
    for (auto& [controller, ring] : rings_) {
        if (ring->incident) {
            ring->incident->Commit();
            ring->incident->Begin();
        }
        samples += ring->entries.size();
    }
    std::scoped_lock const lock(mutex_);
    status_.samples = samples;
}

void BlackBox::End(Ring& ring) {
    if (ring.incident) {
        ring.incident->Commit();
        ring.incident->Close();
        ring.incident.reset();
    }
}

} // namespace harvlink::recording
