#include "recording/forward/ForwardQueue.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <iterator>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "recording/forward/FileDescriptor.h"

namespace harvlink::recording {

namespace {

constexpr std::string_view Extension = ".entries";
constexpr std::uint64_t LeastBytes = 256U << 10;

std::filesystem::path Prepared(std::filesystem::path folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw RecordingError(fmt::format("can't make {}: {}", folder.string(), error.message()));
    }
    return folder;
}

/// The first number of a segment is its name. 0 for other files.
std::uint64_t NumberOf(std::filesystem::path const& path) {
    std::string const name = path.stem().string();
    std::uint64_t number = 0;
    auto const [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    bool const isSegment = path.extension() == Extension && error == std::errc() && end == name.data() + name.size();
    return isSegment ? number : 0;
}

bool IsFull(int error) {
    return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

} // namespace

ForwardQueue::ForwardQueue(std::filesystem::path folder, ForwardOptions const& options)
    : folder_(Prepared(std::move(folder))), options_(options), lock_(folder_ / "queue"), stateFile_(folder_ / "state") {
    options_.maxBytes = std::max(options_.maxBytes, LeastBytes);
    LoadSegments();
    LoadState();
}

ForwardQueue::~ForwardQueue() {
    Commit();
}

void ForwardQueue::LoadSegments() {
    std::error_code error;
    for (auto const& file : std::filesystem::directory_iterator(folder_, error)) {
        if (std::uint64_t const number = NumberOf(file.path()); number != 0) {
            std::error_code ignored;
            auto const size = file.file_size(ignored);
            segments_[number] = {.path = file.path(), .bytes = ignored ? 0 : size};
        }
    }
    if (options_.keep.count() == 0) {
        return;
    }
    for (auto& numbered : segments_) {
        Segment& segment = numbered.second;
        Segment::ForEach(segment.Load(), 0, [&](ForwardEntry const& entry) {
            segment.newest = std::max(segment.newest, entry.time);
            last_ = entry.time;
            return true;
        });
    }
}

void ForwardQueue::LoadState() {
    auto const stored = stateFile_.Load();
    state_ = stored.value_or(ForwardState{});
    if (segments_.empty()) {
        return;
    }
    if (!stored) {
        state_.acknowledged = segments_.begin()->first - 1;
    }
    std::uint64_t const first = segments_.rbegin()->first;
    Segment const& last = segments_.rbegin()->second;
    state_.next = std::max(state_.next, first);
    Segment::ForEach(last.Load(), 0, [&](ForwardEntry const& entry) {
        bool const follows = entry.number >= state_.next && entry.number - first <= last.bytes;
        state_.next = follows ? entry.number + 1 : state_.next;
        return true;
    });
}

std::uint64_t ForwardQueue::Bytes() const {
    std::uint64_t bytes = 0;
    for (auto const& [first, segment] : segments_) {
        bytes += segment.bytes;
    }
    return bytes;
}

std::uint64_t ForwardQueue::SegmentBytes() const {
    constexpr std::uint64_t Most = 4U << 20;
    return std::min(options_.maxBytes / 16, Most);
}

std::uint64_t ForwardQueue::EndOf(Segments::const_iterator segment) const {
    auto const next = std::next(segment);
    return next == segments_.end() ? state_.next : next->first;
}

void ForwardQueue::Append(Microseconds time, std::string_view content) {
    if (content.size() > ForwardEntry::MostBytes) {
        ++state_.droppedForSize;
        isStateStored_ = false;
        return;
    }
    waiting_.push_back({.number = 0, .time = time, .content = std::string(content)});
    waitingBytes_ += Segment::SizeOf(waiting_.back());
    while (waitingBytes_ > options_.maxBytes) {
        waitingBytes_ -= Segment::SizeOf(waiting_.front());
        waiting_.pop_front();
        ++state_.droppedForSize;
        isStateStored_ = false;
    }
}

void ForwardQueue::Commit() {
    problem_.clear();
    WriteWaiting();
    DropOld();
    if (!isStateStored_) {
        StoreState();
    }
    RemoveAcknowledged();
}

void ForwardQueue::StoreState() {
    int const error = stateFile_.Store(state_);
    isStateStored_ = error == 0;
    if (error != 0) {
        problem_ = fmt::format("can't write {}: {}", folder_.string(), std::strerror(error));
    }
}

/// As many as go into one segment.
std::vector<ForwardEntry> ForwardQueue::TakeBatch() {
    std::vector<ForwardEntry> batch;
    std::uint64_t bytes = 0;
    while (!waiting_.empty() && bytes < SegmentBytes()) {
        bytes += Segment::SizeOf(waiting_.front());
        batch.push_back(std::move(waiting_.front()));
        batch.back().number = state_.next + batch.size() - 1;
        waiting_.pop_front();
    }
    waitingBytes_ -= bytes;
    return batch;
}

Segment& ForwardQueue::SegmentToWrite() {
    if (!mayAppend_ || segments_.empty() || segments_.rbegin()->second.bytes >= SegmentBytes()) {
        auto const path = folder_ / fmt::format("{:020}{}", state_.next, Extension);
        segments_[state_.next] = {.path = path};
        mayAppend_ = true;
    }
    return segments_.rbegin()->second;
}

void ForwardQueue::WriteWaiting() {
    while (!waiting_.empty()) {
        auto batch = TakeBatch();
        if (!Write(batch)) {
            for (ForwardEntry const& entry : batch) {
                waitingBytes_ += Segment::SizeOf(entry);
            }
            waiting_.insert(waiting_.begin(), std::move_iterator(batch.begin()), std::move_iterator(batch.end()));
            return;
        }
    }
}

bool ForwardQueue::Write(std::vector<ForwardEntry>& entries) {
    std::uint64_t bytes = 0;
    for (ForwardEntry const& entry : entries) {
        bytes += Segment::SizeOf(entry);
    }
    DropBeyondSize(bytes);
    for (;;) {
        Segment& segment = SegmentToWrite();
        bool const isNew = segment.bytes == 0;
        int error = segment.Append(entries);
        if (error == 0 && isNew) {
            error = SyncFolder(folder_);
        }
        if (error == 0) {
            state_.next += entries.size();
            last_ = entries.back().time;
            isStateStored_ = false;
            return true;
        }
        if (!IsFull(error) || segments_.size() < 2) {
            problem_ = fmt::format("can't write {}: {}", segment.path.string(), std::strerror(error));
            return false;
        }
        DropFirst(state_.droppedForSize);
    }
}

void ForwardQueue::DropBeyondSize(std::uint64_t more) {
    while (segments_.size() > 1 && Bytes() + more > options_.maxBytes) {
        DropFirst(state_.droppedForSize);
    }
}

void ForwardQueue::DropOld() {
    while (options_.keep.count() != 0 && !segments_.empty() &&
           segments_.begin()->second.newest < last_ - options_.keep.count()) {
        DropFirst(state_.droppedForAge);
    }
}

/// Each entry of the oldest segment is counted, as dropped or, where that is known, as damaged.
void ForwardQueue::DropFirst(std::uint64_t& count) {
    auto const first = segments_.begin();
    std::uint64_t const end = EndOf(first);
    while (state_.acknowledged + 1 < end) {
        auto const damage = damage_.upper_bound(state_.acknowledged);
        std::uint64_t const until = damage == damage_.end() ? end : std::min(end, damage->first);
        count += until - state_.acknowledged - 1;
        state_.acknowledged = until - 1;
        PassOverDamage();
    }
    mayAppend_ = mayAppend_ && segments_.size() > 1;
    StoreState(); // before the file goes, or its entries would be counted as damaged after a cut of power
    std::error_code ignored;
    std::filesystem::remove(first->second.path, ignored);
    segments_.erase(first);
}

void ForwardQueue::RemoveAcknowledged() {
    while (isStateStored_ && !segments_.empty() && EndOf(segments_.begin()) <= state_.acknowledged + 1) {
        std::error_code ignored;
        std::filesystem::remove(segments_.begin()->second.path, ignored);
        mayAppend_ = mayAppend_ && segments_.size() > 1;
        segments_.erase(segments_.begin());
    }
}

void ForwardQueue::NoteDamage(std::uint64_t first, std::uint64_t next) {
    damage_[first] = next;
    PassOverDamage();
}

/// What is damaged right behind the last acknowledged entry needs not wait for anything.
void ForwardQueue::PassOverDamage() {
    for (auto damage = damage_.begin(); damage != damage_.end() && damage->first <= state_.acknowledged + 1;
         damage = damage_.erase(damage)) {
        state_.damaged += damage->second - damage->first;
        state_.acknowledged = std::max(state_.acknowledged, damage->second - 1);
        isStateStored_ = false;
    }
}

std::vector<ForwardEntry> ForwardQueue::Read(std::uint64_t after, std::size_t mostEntries, std::size_t mostBytes) {
    std::vector<ForwardEntry> entries;
    std::size_t bytes = 0;
    auto const isEnough = [&] {
        bytes += entries.back().content.size();
        return entries.size() >= mostEntries || bytes >= mostBytes;
    };
    std::uint64_t expected = std::max(after, state_.acknowledged) + 1;
    auto segment = segments_.upper_bound(expected);
    segment = segment == segments_.begin() ? segment : std::prev(segment);
    for (; segment != segments_.end() && mostEntries > 0; ++segment) {
        if (segment->first > expected) {
            NoteDamage(expected, segment->first);
            expected = segment->first;
        }
        if (!ReadSegment(segment, expected, entries, isEnough)) {
            return entries;
        }
        if (expected < EndOf(segment)) {
            NoteDamage(expected, EndOf(segment));
            expected = EndOf(segment);
        }
    }
    return entries;
}

/// Returns false when it is enough.
bool ForwardQueue::ReadSegment(Segments::const_iterator segment, std::uint64_t& expected,
                               std::vector<ForwardEntry>& entries, std::function<bool()> const& isEnough) {
    if (cursor_.segment != segment->first || content_.size() != segment->second.bytes) {
        content_ = segment->second.Load();
        cursor_ = {.segment = segment->first, .expected = segment->first, .place = 0};
    }
    std::uint64_t const end = EndOf(segment);
    bool goesOn = true;
    std::size_t const begin = cursor_.expected == expected ? cursor_.place : 0;
    cursor_.place = Segment::ForEach(content_, begin, [&](ForwardEntry const& entry) {
        if (entry.number < expected || entry.number >= end) {
            return true;
        }
        if (entry.number > expected) {
            NoteDamage(expected, entry.number);
        }
        expected = entry.number + 1;
        entries.push_back(entry);
        goesOn = !isEnough();
        return goesOn;
    });
    cursor_.expected = expected;
    return goesOn;
}

void ForwardQueue::Acknowledge(std::uint64_t number) {
    number = std::min(number, state_.next - 1);
    if (number <= state_.acknowledged) {
        return;
    }
    isStateStored_ = false;
    while (state_.acknowledged < number) {
        auto const damage = damage_.upper_bound(state_.acknowledged);
        std::uint64_t const until = damage == damage_.end() ? number : std::min(number, damage->first - 1);
        state_.acknowledged = until;
        PassOverDamage();
    }
}

ForwardStatus ForwardQueue::Status() const {
    std::uint64_t waiting = state_.next - 1 - std::min(state_.acknowledged, state_.next - 1);
    for (auto const& [first, next] : damage_) {
        waiting -= std::min(waiting, next - first);
    }
    return {.next = state_.next,
            .acknowledged = state_.acknowledged,
            .waiting = waiting,
            .uncommitted = waiting_.size(),
            .bytes = Bytes(),
            .droppedForSize = state_.droppedForSize,
            .droppedForAge = state_.droppedForAge,
            .damaged = state_.damaged,
            .problem = problem_};
}

} // namespace harvlink::recording
