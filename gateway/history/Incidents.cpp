#include "gateway/history/Incidents.h"

#include <algorithm>
#include <string_view>
#include <tuple>

#include "recording/store/FileLock.h"
#include "recording/write/SampleStore.h"

namespace harvlink::gateway {

namespace {

constexpr std::string_view Extension = ".harvlink";
constexpr std::size_t TimeLength = 16; ///< of 20261122T031500Z

/// "press-1-20261122T031500Z-alarm-4107": the name of the controller may have dashes too.
bool ReadName(std::string const& stem, Incident& incident) {
    for (std::size_t dash = stem.rfind('-'); dash != std::string::npos && dash > 0; dash = stem.rfind('-', dash - 1)) {
        std::string const time = stem.substr(dash + 1, TimeLength);
        if (time.size() == TimeLength && time[8] == 'T' && time.back() == 'Z' &&
            time.find_first_not_of("0123456789TZ") == std::string::npos) {
            incident.controller = stem.substr(0, dash);
            incident.time = time;
            std::size_t const kind = dash + 1 + TimeLength;
            incident.kind = kind < stem.size() ? stem.substr(kind + 1) : "";
            return true;
        }
    }
    return false;
}

/// Somebody may still read it when its recorder has ended, and then a log is beside it.
bool IsComplete(std::filesystem::path const& file) {
    std::error_code failure;
    return !std::filesystem::exists(recording::FileLock::NameFor(file), failure) &&
           !std::filesystem::exists(file.string() + "-wal", failure);
}

} // namespace

std::vector<Incident> ListIncidents(std::filesystem::path const& folder) {
    std::vector<Incident> incidents;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), last; !error && entry != last;
         entry.increment(error)) {
        Incident incident;
        incident.file = entry->path().filename().string();
        std::error_code failure;
        if (entry->path().extension() == Extension && entry->is_regular_file(failure) &&
            ReadName(entry->path().stem().string(), incident)) {
            incident.bytes = entry->file_size(failure);
            incident.isComplete = IsComplete(entry->path());
            incidents.push_back(std::move(incident));
        }
    }
    std::sort(incidents.begin(), incidents.end(), [](Incident const& left, Incident const& right) {
        return std::tie(left.time, left.file) > std::tie(right.time, right.file);
    });
    return incidents;
}

void FinishIncidents(std::filesystem::path const& folder) {
    for (Incident const& incident : ListIncidents(folder)) {
        if (!incident.isComplete) {
            try {
                recording::SampleStore(folder / incident.file).Close();
            } catch (recording::RecordingError const&) {
                // Another gateway writes it, or it can't be mended: it stays as it is.
            }
        }
    }
}

Incident const* FindIncident(std::vector<Incident> const& incidents, std::string const& file) {
    auto found = std::find_if(incidents.begin(), incidents.end(), [&](auto const& each) { return each.file == file; });
    std::string const stem = std::filesystem::path(file).stem().string();
    if (found == incidents.end() && stem.ends_with("Z-alarm")) {
        found = std::find_if(incidents.begin(), incidents.end(),
                             [&](auto const& each) { return each.file.starts_with(stem + "-"); });
    }
    return found == incidents.end() ? nullptr : &*found;
}

} // namespace harvlink::gateway
