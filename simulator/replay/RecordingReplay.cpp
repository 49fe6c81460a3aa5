#include "simulator/replay/RecordingReplay.h"

#include <algorithm>
#include <limits>
#include <set>

#include <fmt/format.h>

#include "recording/model/Kinds.h"
#include "recording/model/TimeText.h"
#include "simulator/protocol/Catalogue.h"

namespace harvlink::simulator {

namespace {

using recording::Microseconds;
using recording::RecordedQuality;

/// As a controller answers for a variable that it does not have.
constexpr Refusal NotRecorded = Refusal::InvalidInstance;
constexpr Refusal WriteRefused = Refusal::IncorrectMode;

bool IsFileWrite(Request const& request) {
    auto const service = static_cast<FileServices>(request.subHeader.service);
    return service == FileServices::DeleteFile || service == FileServices::LoadFile;
}

/// The ids of robots, bases and stations begin ten apart.
std::string GroupName(std::int32_t id) {
    char const* const letter = id < 10 ? "R" : id < 20 ? "B" : "S";
    return fmt::format("{}{}", letter, id < 10 ? id : id < 20 ? id - 10 : id - 20);
}

/// What a client asks for when it connects, and no recording has.
bool IsOfController(Request const& request) {
    return request.Command() == CommandNumber::SystemParameterRead ||
           request.Command() == CommandNumber::AxisConfigurationRead;
}

} // namespace

RecordingReplay::RecordingReplay(std::filesystem::path const& path, ReplayOptions const& options)
    : recording_(path), known_(recording_.Contents()) {
    ChooseController(options.controller);
    MakeIndex();
    FindSoftware();
    auto const info = recording_.Info();
    if (info.segments == 0) {
        throw recording::RecordingError(path.string() + ": the recording is empty");
    }
    Microseconds const at = options.at.empty() ? info.begin : recording::ParseTime(options.at, info.begin, info.end);
    if (at < info.begin || at > info.end) {
        throw recording::RecordingError(fmt::format("{} is not in the recording, which is from {} to {}",
                                                    recording::FormatTime(at), recording::FormatTime(info.begin),
                                                    recording::FormatTime(info.end)));
    }
    auto const begin = recording_.Find(info.begin);
    firstRow_ = begin.firstRow;
    clock_.emplace(begin.monotonic, std::max(info.endMonotonic, begin.monotonic), recording_.Find(at).monotonic,
                   options.speed);
    Rewind();
}

void RecordingReplay::ChooseController(std::string const& name) {
    auto const& controllers = recording_.Contents().controllers;
    std::string names;
    for (std::size_t i = 0; i < controllers.size(); ++i) {
        if (controllers[i].name == name || (name.empty() && controllers.size() == 1)) {
            controller_ = static_cast<std::uint32_t>(i + 1);
        }
        names += (names.empty() ? "" : ", ") + controllers[i].name;
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

/// A client asks first of all what the controller is, before anything else was recorded.
void RecordingReplay::FindSoftware() {
    auto const& readings = recording_.Contents().readings;
    std::size_t missing = 0;
    for (auto const& reading : readings) {
        missing += reading.controller == controller_ && reading.kind == recording::kind::Software ? 1 : 0;
    }
    if (missing == 0) {
        return;
    }
    recording::KnownState state(recording_.Contents());
    recording_.ForEachChange({}, false, [&](recording::Change const& change) {
        auto const& reading = readings[change.reading - 1];
        if (reading.controller == controller_ && reading.kind == recording::kind::Software && !change.values.empty() &&
            software_.try_emplace(change.reading, state.Apply(change)).second) {
            --missing;
        }
        return missing > 0;
    });
}

std::string RecordingReplay::SoftwareVersion() const {
    if (software_.empty() || software_.begin()->second.values.empty()) {
        return {};
    }
    auto const* const version = std::get_if<std::string>(&software_.begin()->second.values.front());
    return version == nullptr ? std::string() : *version;
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
    }
}

bool RecordingReplay::Answer(Request const& request, Reply& reply) {
    bool const isFile = request.port == Port::File;
    if (isFile ? !IsFileWrite(request) : IsOfController(request)) {
        return false;
    }
    reply.Begin(request);
    if (isFile || request.IsWrite()) {
        reply.Refuse(WriteRefused);
    } else if (request.header.payloadSize != request.payload.size()) {
        reply.Refuse(Refusal::DataSizeError);
    } else if (!reply.RefuseIf(CheckAgainstCatalogue(request, true))) {
        bool const isRecorded = readings_.contains(KeyOf(request));
        if (!isRecorded && request.Command() == CommandNumber::SystemInformationRead) {
            return false;
        }
        AnswerRead(request, reply);
    }
    return true;
}

void RecordingReplay::AnswerRead(Request const& request, Reply& reply) {
    auto const found = readings_.find(KeyOf(request));
    if (found == readings_.end()) {
        reply.Refuse(NotRecorded);
        return;
    }
    MoveTo(clock_->Now(request.Command() == CommandNumber::SystemInformationRead));
    answers_.clear();
    auto quality = RecordedQuality::NeverRead;
    std::int32_t code = 0;
    for (std::uint32_t const id : found->second) {
        auto const first = software_.find(id);
        auto const& now = known_.Samples()[id - 1];
        bool const isAhead = first != software_.end() && now.moment.quality == RecordedQuality::NeverRead;
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
