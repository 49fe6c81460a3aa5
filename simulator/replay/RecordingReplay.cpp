#include "simulator/replay/RecordingReplay.h"

#include <algorithm>
#include <limits>
#include <set>

#include <fmt/format.h>

#include "recording/model/Kinds.h"
#include "simulator/protocol/Catalogue.h"

namespace harvlink::simulator {

namespace {

using recording::Microseconds;
using recording::RecordedQuality;
using recording::RecordedReading;

/// The ids of robots, bases and stations begin ten apart.
std::string GroupName(std::int32_t id) {
    char const* const letter = id < 10 ? "R" : id < 20 ? "B" : "S";
    return fmt::format("{}{}", letter, id < 10 ? id : id < 20 ? id - 10 : id - 20);
}

} // namespace

RecordingReplay::RecordingReplay(std::filesystem::path const& path, ReplayOptions const& options)
    : recording_(path), known_(recording_.Contents()) {
    ChooseController(options);
    texts_.emplace(recording_.Contents().controllers[controller_ - 1]);
    MakeIndex();
    auto const info = recording_.Info();
    if (info.segments == 0) {
        throw recording::RecordingError(path.string() + ": the recording is empty");
    }
    Microseconds const at = StartTime(options.at, info.begin, info.end);
    auto const begin = recording_.Find(info.begin);
    FindFirst(begin.monotonic);
    firstRow_ = begin.firstRow;
    clock_.emplace(begin.monotonic, std::max(info.endMonotonic, begin.monotonic), recording_.Find(at).monotonic,
                   options.speed);
    Rewind();
}

void RecordingReplay::ChooseController(ReplayOptions const& options) {
    auto const& controllers = recording_.Contents().controllers;
    std::string const& wanted = options.controller;
    std::string names;
    for (std::uint32_t id = 1; id <= controllers.size(); ++id) {
        recording::RecordedController const& each = controllers[id - 1];
        bool const isNamed = each.name == wanted || (controller_ == 0 && each.address == wanted);
        bool const isOnly = wanted.empty() && (controllers.size() == 1 || each.address == options.servedAddress);
        controller_ = isNamed || isOnly ? id : controller_;
        names += (names.empty() ? "" : ", ") + each.name;
    }
    if (controller_ == 0) {
        throw recording::RecordingError(fmt::format("choose a cell of the recording: {}", names));
    }
}

void RecordingReplay::MakeIndex() {
    auto const& readings = recording_.Contents().readings;
    for (std::uint32_t id = 1; id <= readings.size(); ++id) {
        if (readings[id - 1].controller != controller_) {
            continue;
        }
        for (RequestKey const& key : KeysOf(readings[id - 1])) {
            readings_[key].push_back(id);
        }
    }
}

/// A client asks first of all what the controller is, before anything else was recorded, and then for values of which some were
/// read a little later than others.
void RecordingReplay::FindFirst(Microseconds begin) {
    constexpr Microseconds FirstRound = 1'000'000;
    auto const& readings = recording_.Contents().readings;
    auto const isSoftware = [&](std::uint32_t id) {
        return readings[id - 1].controller == controller_ && readings[id - 1].kind == recording::kind::Software;
    };
    std::size_t missing = 0;
    for (std::uint32_t id = 1; id <= readings.size(); ++id) {
        missing += isSoftware(id) ? 1 : 0;
    }
    recording::KnownState state(recording_.Contents());
    recording_.ForEachChange({}, false, [&](recording::Change change) {
        bool const isEarly = change.moment.monotonic <= begin + FirstRound;
        if ((isEarly || isSoftware(change.reading)) && !change.values.empty()) {
            texts_->Restore(change);
            bool const isNew = first_.try_emplace(change.reading, state.Apply(change)).second;
            missing -= isNew && isSoftware(change.reading) ? 1 : 0;
        }
        return isEarly || missing > 0;
    });
}

std::string RecordingReplay::SoftwareVersion() const {
    for (auto const& [id, sample] : first_) {
        RecordedReading const& reading = recording_.Contents().readings[id - 1];
        if (reading.controller == controller_ && reading.kind == recording::kind::Software && !sample.values.empty()) {
            auto const* const version = std::get_if<std::string>(&sample.values.front());
            return version == nullptr ? std::string() : *version;
        }
    }
    return {};
}

std::vector<ControlGroup> RecordingReplay::Groups() const {
    std::set<std::int32_t> numbers;
    std::vector<ControlGroup> groups;
    for (auto const& reading : recording_.Contents().readings) {
        bool const hasGroup = reading.kind == recording::kind::Position || reading.kind == recording::kind::Torque ||
                              reading.kind == recording::kind::PositionError;
        if (reading.controller == controller_ && hasGroup && numbers.insert(reading.group).second) {
            if (auto const group = ControlGroups::FromText(GroupName(reading.group))) {
                groups.push_back(*group);
            }
        }
    }
    return groups;
}

void RecordingReplay::Rewind() {
    known_ = recording::KnownState(recording_.Contents());
    nextRow_ = firstRow_;
    changes_.clear();
    reached_ = 0;
    now_ = std::numeric_limits<Microseconds>::min();
}

void RecordingReplay::MoveTo(Microseconds now) {
    if (now < now_) {
        Rewind();
    }
    now_ = now;
    for (;;) {
        for (; reached_ < changes_.size(); ++reached_) {
            if (changes_[reached_].moment.monotonic > now) {
                return;
            }
            known_.Apply(changes_[reached_]);
        }
        if (nextRow_ == 0) {
            return;
        }
        changes_.clear();
        reached_ = 0;
        nextRow_ = recording_.ReadSome(nextRow_, changes_);
        for (recording::Change& change : changes_) {
            texts_->Restore(change);
        }
    }
}

bool RecordingReplay::Answer(Request const& request, Reply& reply) {
    using Outcome = MissedRequests::Outcome;
    if (IsLeftToController(request)) {
        missed_.Note(request, Outcome::AnsweredByVirtualController);
        return false;
    }
    reply.Begin(request);
    if (request.port == Port::File || request.IsWrite()) {
        missed_.Note(request, Outcome::Refused);
        reply.Refuse(WriteRefused);
    } else if (request.header.payloadSize != request.payload.size()) {
        reply.Refuse(Refusal::DataSizeError);
    } else if (!reply.RefuseIf(CheckAgainstCatalogue(request, true))) {
        AnswerRead(request, reply);
    }
    return true;
}

bool RecordingReplay::IsLeftToController(Request const& request) const {
    return IsOfConnecting(request) && (request.port == Port::File || !readings_.contains(KeyOf(request)));
}

void RecordingReplay::AnswerRead(Request const& request, Reply& reply) {
    auto const found = readings_.find(KeyOf(request));
    if (found == readings_.end()) {
        missed_.Note(request, MissedRequests::Outcome::Refused);
        reply.Refuse(NotRecorded);
        return;
    }
    MoveTo(clock_->Now(request.Command() == CommandNumber::SystemInformationRead));
    answers_.clear();
    auto quality = RecordedQuality::NeverRead;
    std::int32_t code = 0;
    for (std::uint32_t const id : found->second) {
        auto const first = first_.find(id);
        auto const& now = known_.Samples()[id - 1];
        bool const isAhead = first != first_.end() && now.moment.quality == RecordedQuality::NeverRead;
        auto const& sample = isAhead ? first->second : now;
        if (sample.moment.quality == RecordedQuality::Good) {
            answers_.push_back({&recording_.Contents().readings[id - 1], &sample});
        } else if (sample.moment.quality != RecordedQuality::NeverRead) {
            quality = sample.moment.quality;
            code = sample.moment.code;
        }
    }
    if (!answers_.empty()) {
        SetPayload(request, answers_, reply);
    } else if (quality == RecordedQuality::Stale) {
        reply.Suppress();
    } else {
        // A recording has the code as the library returns it, which may not be the one of the wire.
        constexpr std::int32_t LastOfController = 0xFFFF;
        reply.Refuse(code > 0 && code <= LastOfController ? static_cast<Refusal>(code) : NotRecorded);
    }
}

} // namespace harvlink::simulator
