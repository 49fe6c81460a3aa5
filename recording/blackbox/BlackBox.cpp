#include "recording/blackbox/BlackBox.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "recording/model/TimeText.h"
#include "words/text/Path.h"

namespace harvlink::recording {

struct BlackBox::Ring {
    std::uint32_t controller = 0;
    std::map<std::uint32_t, RecordedSample> known; ///< by reading: as it was before the first entry
    std::deque<Entry> entries;
    std::deque<Microseconds> forgotten; ///< monotonic times of those that went before their time, for want of memory
    std::unique_ptr<SampleStore> incident;
    std::filesystem::path path; ///< of the incident
    RecordedEvent reason; ///< by which it is named
    bool isNamedLater = false; ///< its name lacks the alarm
    ReadingIds ids; ///< of the readings in the file of the incident
    Microseconds end = 0; ///< monotonic, of the incident
};

namespace {

constexpr std::string_view AlarmRaised = "alarm-raised";

std::unique_ptr<RingFile> OpenRing(BlackBoxOptions const& options) {
    if (options.ringFile.empty()) {
        return nullptr;
    }
    // Whole segments are dropped, each an eighth of it.
    return std::make_unique<RingFile>(options.ringFile, options.before + options.before / 4 + std::chrono::seconds(1));
}

} // namespace

BlackBox::BlackBox(BlackBoxOptions options)
    : options_(std::move(options)), file_(OpenRing(options_)), thread_([this] { Run(); }) {}

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
    if (sample.reading < 1 || sample.reading > readings_.size()) {
        return;
    }
    auto const controller = readings_[sample.reading - 1].controller;
    auto const monotonic = sample.moment.monotonic;
    if (IsFull()) {
        Miss(controller, 1, sample.moment.answer, monotonic);
    } else {
        waiting_.push_back({monotonic, controller, std::move(sample)});
    }
}

void BlackBox::Put(RecordedEvent event) {
    std::scoped_lock const lock(mutex_);
    auto const monotonic = event.monotonic;
    auto const controller = event.controller;
    if (controller >= 1 && controller <= controllers_.size()) {
        waiting_.push_back({monotonic, controller, std::move(event)});
    }
}

void BlackBox::NoteLoss(std::uint64_t count, Microseconds time, Microseconds monotonic) {
    std::scoped_lock const lock(mutex_);
    for (std::uint32_t controller = 1; controller <= controllers_.size(); ++controller) {
        Miss(controller, count, time, monotonic);
    }
}

void BlackBox::Miss(std::uint32_t controller, std::uint64_t count, Microseconds time, Microseconds monotonic) {
    RecordedGap& gap = gaps_[controller];
    if (gap.count == 0) {
        gap = {.time = time, .monotonic = monotonic, .reason = "this computer did not take the samples in time"};
    }
    gap.duration = std::max(gap.duration, monotonic - gap.monotonic);
    gap.count += count;
    status_.dropped += count;
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
                for (auto& [controller, gap] : gaps_) {
                    entries.push_back({gap.monotonic, controller, std::move(gap)});
                }
                gaps_.clear();
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

RecordedReading BlackBox::ReadingOf(std::uint32_t id) const {
    std::scoped_lock const lock(mutex_);
    return readings_[id - 1];
}

bool BlackBox::IsIncident(Entry const& entry) const {
    auto const* const event = std::get_if<RecordedEvent>(&entry.what);
    return event != nullptr && std::find(options_.on.begin(), options_.on.end(), event->kind) != options_.on.end();
}

void BlackBox::Take(Entry entry) {
    Ring& ring = RingOf(entry.controller);
    if (ring.incident && entry.monotonic > ring.end) {
        End(ring);
    }
    if (IsIncident(entry)) {
        if (!ring.incident) {
            Forget(ring, entry.monotonic);
            Begin(ring, std::get<RecordedEvent>(entry.what));
        }
        ring.end = entry.monotonic + options_.after.count();
    }
    if (ring.incident) {
        Write(ring, entry);
    }
    Keep(ring, std::move(entry));
}

void BlackBox::Keep(Ring& ring, Entry entry) {
    if (!file_) {
        Forget(ring, entry.monotonic);
        ring.entries.push_back(std::move(entry));
        return;
    }
    if (!file_->HasController(entry.controller)) {
        std::scoped_lock const lock(mutex_);
        file_->AddController(entry.controller, controllers_[entry.controller - 1]);
    }
    auto const* const sample = std::get_if<RecordedSample>(&entry.what);
    if (sample != nullptr && !file_->HasReading(sample->reading)) {
        file_->AddReading(sample->reading, ReadingOf(sample->reading));
    }
    std::visit([this](auto& what) { file_->Put(std::move(what)); }, entry.what);
}

/// Drops what is older than the time before an event, and keeps what it said.
void BlackBox::Forget(Ring& ring, Microseconds now) {
    std::size_t const most = options_.capacity / std::max<std::size_t>(rings_.size(), 1);
    Microseconds const begin = now - options_.before.count();
    while (!ring.entries.empty() && (ring.entries.front().monotonic < begin || ring.entries.size() > most)) {
        Entry& entry = ring.entries.front();
        if (entry.monotonic >= begin) {
            ring.forgotten.push_back(entry.monotonic);
        }
        if (auto* const sample = std::get_if<RecordedSample>(&entry.what)) {
            RecordedSample& known = ring.known[sample->reading];
            if (sample->values.empty()) {
                std::swap(sample->values, known.values); // the last that it had
            }
            known = std::move(*sample);
        }
        ring.entries.pop_front();
    }
    while (!ring.forgotten.empty() && ring.forgotten.front() < begin) {
        ring.forgotten.pop_front();
    }
}

std::filesystem::path BlackBox::NameFor(Ring const& ring, RecordedEvent const& event) const {
    std::string name;
    {
        std::scoped_lock const lock(mutex_);
        name = controllers_[ring.controller - 1].name;
    }
    // The name of a cell is any text, must not lead into another folder, and has to be one on every system. SafeName would not
    // leave the letters of other languages, on purpose: its names are turned back, these are read by people.
    constexpr std::string_view Special = "/\\:*?\"<>|";
    std::replace_if(
        name.begin(), name.end(),
        [&](char character) {
            return Special.find(character) != Special.npos || static_cast<unsigned char>(character) < ' ';
        },
        '_');
    bool const isAlarm = event.kind == AlarmRaised;
    std::string const what = !isAlarm ? event.kind : event.after == 0 ? "alarm" : fmt::format("alarm-{}", event.after);
    std::string const stem = fmt::format("{}-{}-{}", name, FormatTimeForName(event.time), what);
    auto path = options_.folder / words::PathOf(stem + ".harvlink");
    for (int number = 2; std::filesystem::exists(path); ++number) {
        path = options_.folder / words::PathOf(fmt::format("{}-{}.harvlink", stem, number));
    }
    return path;
}

void BlackBox::Begin(Ring& ring, RecordedEvent const& event) {
    ring.reason = event;
    ring.isNamedLater = false;
    ring.path = NameFor(ring, event);
    ring.incident = std::make_unique<SampleStore>(ring.path);
    ring.ids.clear();
    {
        std::scoped_lock const lock(mutex_);
        status_.incidents.push_back(ring.path);
        ring.incident->AddController(controllers_[ring.controller - 1]);
    }
    ring.incident->Begin();
    if (!file_) {
        AddContents(ring);
        WriteTimeBefore(ring, event);
    } else if (file_->HasController(ring.controller)) {
        ring.ids = file_->CopyFrom(event.time - options_.before.count(), ring.controller, *ring.incident);
    }
}

void BlackBox::AddContents(Ring& ring) {
    std::scoped_lock const lock(mutex_);
    for (std::uint32_t id = 1; id <= readings_.size(); ++id) {
        if (readings_[id - 1].controller == ring.controller) {
            RecordedReading reading = readings_[id - 1];
            reading.controller = 1;
            ring.ids[id] = ring.incident->AddReading(reading);
        }
    }
}

void BlackBox::WriteTimeBefore(Ring& ring, RecordedEvent const& event) {
    Microseconds time = event.time - options_.before.count();
    Microseconds monotonic = event.monotonic - options_.before.count();
    if (!ring.forgotten.empty()) {
        Microseconds const duration = ring.forgotten.back() - monotonic;
        ring.incident->Put(RecordedGap{.time = time,
                                       .monotonic = monotonic,
                                       .duration = duration,
                                       .count = ring.forgotten.size(),
                                       .reason = "the memory for the time before was full"});
        time += duration;
        monotonic += duration;
    }
    for (auto const& [id, sample] : ring.known) {
        RecordedSample known = sample;
        known.reading = ring.ids.at(id);
        ring.incident->Know(known);
    }
    if (!ring.known.empty()) {
        ring.incident->StartAt(time, monotonic);
    }
    for (Entry const& entry : ring.entries) {
        Write(ring, entry);
    }
}

void BlackBox::Write(Ring& ring, Entry const& entry) {
    if (auto const* const event = std::get_if<RecordedEvent>(&entry.what)) {
        if (event->kind == AlarmRaised && ring.reason.kind == AlarmRaised && ring.reason.after == 0) {
            ring.reason.after = event->after;
            ring.isNamedLater = event->after != 0;
        }
        RecordedEvent own = *event;
        own.controller = 1;
        ring.incident->Put(std::move(own));
    } else if (auto const* const gap = std::get_if<RecordedGap>(&entry.what)) {
        ring.incident->Put(*gap);
    } else {
        RecordedSample sample = std::get<RecordedSample>(entry.what);
        if (!ring.ids.contains(sample.reading)) {
            RecordedReading reading = ReadingOf(sample.reading);
            reading.controller = 1;
            ring.ids[sample.reading] = ring.incident->AddReading(reading);
        }
        sample.reading = ring.ids.at(sample.reading);
        ring.incident->Put(sample);
    }
}

/// Each interval the open files are made safe against a cut of power.
void BlackBox::CommitOpen() {
    std::size_t samples = 0;
    if (file_) {
        file_->Commit();
    }
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
        auto const lock = ring.incident->Close(); // until it has its last name
        ring.incident.reset();
        Rename(ring);
    }
}

/// The state of a controller shows that there is an alarm before its alarms show which.
void BlackBox::Rename(Ring& ring) {
    std::error_code error;
    // While somebody reads it, it has a log that SQLite finds by the name.
    if (!ring.isNamedLater || std::filesystem::exists(words::Beside(ring.path, "-wal"), error)) {
        return;
    }
    auto const path = NameFor(ring, ring.reason);
    std::filesystem::rename(ring.path, path, error);
    if (!error) {
        std::scoped_lock const lock(mutex_);
        std::replace(status_.incidents.begin(), status_.incidents.end(), ring.path, path);
    }
}

} // namespace harvlink::recording
