#include "recording/read/History.h"

#include <algorithm>
#include <map>

namespace harvlink::recording {

namespace {

bool IsLess(RecordedValue const& left, RecordedValue const& right) {
    auto const number = [](RecordedValue const& value) {
        auto const* const integer = std::get_if<std::int64_t>(&value);
        return integer != nullptr ? static_cast<double>(*integer) : *std::get_if<double>(&value);
    };
    return left.index() != 3 && right.index() != 3 && left.index() != 0 && right.index() != 0 &&
           number(left) < number(right);
}

/// Makes points of the changes of one item.
class SeriesMaker {
public:
    SeriesMaker(HistoryQuery const& query, HistorySeries& series)
        : from_(query.from),
          length_(std::max<Microseconds>(1, (query.to - query.from) / static_cast<Microseconds>(query.points))),
          series_(series) {}

    /// A picture repeats what is known; of a silent controller its last value first, and then that it is silent.
    void PutPicture(Microseconds time, RecordedValue const& value) {
        if (!isKnown_) {
            Put(time, value);
            isKnown_ = value.index() == 0;
        }
    }

    /// Nobody recorded from here on: a line over this time would be made up.
    void Interrupt(Microseconds time) {
        Put(time, {});
        isKnown_ = false;
    }

    void Put(Microseconds time, RecordedValue const& value) {
        isKnown_ = true;
        if (time <= from_) {
            start_ = value;
            hasStart_ = true;
            return;
        }
        Begin();
        if (!series_.points.empty() && series_.points.back().last == value) {
            return;
        }
        Microseconds const part = (time - from_) / length_;
        bool const isSamePart = part == part_ && !series_.points.empty();
        // A gap is not merged with values: that a controller was silent must be seen at every scale.
        if (isSamePart && value.index() != 0 && series_.points.back().last.index() != 0) {
            HistorySeries::Point& point = series_.points.back();
            point.low = IsLess(value, point.low) ? value : point.low;
            point.high = IsLess(point.high, value) ? value : point.high;
            point.last = value;
            return;
        }
        part_ = part;
        series_.points.push_back({time, value, value, value});
    }

    /// What was known at the start of the time.
    void Begin() {
        if (hasStart_) {
            series_.points.push_back({from_, start_, start_, start_});
            hasStart_ = false;
        }
    }

private:
    Microseconds from_;
    Microseconds length_;
    HistorySeries& series_;
    RecordedValue start_;
    bool hasStart_ = false;
    bool isKnown_ = false; ///< pictures say nothing new
    Microseconds part_ = -1;
};

/// The makers of a reading, with the places that they take.
using Makers = std::multimap<std::uint32_t, std::pair<std::size_t, SeriesMaker*>>;

Makers MakersOf(Catalogue const& catalogue, HistoryQuery const& query, std::vector<SeriesMaker>& all) {
    Makers makers;
    for (std::uint32_t id = 1; id <= catalogue.readings.size(); ++id) {
        RecordedReading const& reading = catalogue.readings[id - 1];
        if (catalogue.controllers.at(reading.controller - 1).name != query.controller) {
            continue;
        }
        for (std::size_t i = 0; i < query.items.size(); ++i) {
            if (query.items[i].reading == reading.name && query.items[i].place < reading.items.size()) {
                makers.emplace(id, std::pair(query.items[i].place, &all[i]));
            }
        }
    }
    return makers;
}

void Use(Change const& change, Makers const& makers) {
    auto const [begin, end] = makers.equal_range(change.reading);
    bool const isGood = change.moment.quality == RecordedQuality::Good;
    auto const put = [&](SeriesMaker& series, RecordedValue const& value) {
        if (change.isPicture) {
            series.PutPicture(change.moment.answer, value);
        } else {
            series.Put(change.moment.answer, value);
        }
    };
    for (auto maker = begin; maker != end; ++maker) {
        auto const& [place, series] = maker->second;
        if (!isGood) {
            put(*series, {});
            continue;
        }
        for (auto const& [changedPlace, value] : change.values) {
            if (static_cast<std::size_t>(changedPlace) == place) {
                put(*series, value);
            }
        }
    }
}

} // namespace

HistoryResult ReadHistory(std::filesystem::path const& file, HistoryQuery const& query) {
    Recording source(file);
    HistoryResult result;
    result.series.resize(query.items.size());
    std::vector<SeriesMaker> all;
    all.reserve(query.items.size());
    for (HistorySeries& series : result.series) {
        all.emplace_back(query, series);
    }
    Makers const makers = MakersOf(source.Contents(), query, all);
    std::vector<TimeRange> const pauses = source.Pauses();
    auto pause = pauses.begin();
    auto const putPausesBefore = [&](Microseconds time) {
        for (; pause != pauses.end() && pause->end <= time; ++pause) {
            for (SeriesMaker& maker : all) {
                maker.Interrupt(pause->begin);
            }
        }
    };
    auto const end = std::chrono::steady_clock::now() + query.longest;
    std::size_t count = 0;
    constexpr std::size_t Often = 1024;
    source.ForEachChange({query.from, query.to}, true, [&](Change const& change) {
        putPausesBefore(change.moment.answer);
        Use(change, makers);
        result.isCut = ++count % Often == 0 && (std::chrono::steady_clock::now() > end || query.stop.stop_requested());
        return !result.isCut;
    });
    if (!result.isCut) {
        putPausesBefore(query.to);
    }
    for (SeriesMaker& maker : all) {
        maker.Begin();
    }
    return result;
}

std::vector<PastEvent> ReadPastEvents(std::filesystem::path const& file, TimeRange const& range) {
    std::vector<PastEvent> events;
    ForEachPastEvent(file, range, [&](PastEvent&& event) {
        events.push_back(std::move(event));
        return true;
    });
    std::reverse(events.begin(), events.end());
    return events;
}

void ForEachPastEvent(std::filesystem::path const& file, TimeRange const& range,
                      std::function<bool(PastEvent&&)> const& use) {
    Recording source(file);
    source.ForEachEvent(range, Recording::Order::NewestFirst, [&](StoredEvent&& stored) {
        auto const& controllers = source.Contents().controllers;
        std::size_t const place = stored.event.controller - std::size_t{1};
        std::string const name = place < controllers.size() ? controllers[place].name : "";
        return use({stored.sequence, name, std::move(stored.event)});
    });
}

} // namespace harvlink::recording
