#include "gateway/http/LiveFeed.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace harvlink::gateway {

namespace {

using words::Json;

constexpr std::size_t EventsOfHello = 100;
constexpr std::int64_t AnswerPace = 1000; ///< milliseconds: that it answered again is worth no message by itself

/// The clock may have been set back since.
bool IsDue(std::int64_t last, std::int64_t now) {
    return now - last >= AnswerPace || now < last;
}

LiveText TextOf(Json const& json) {
    return std::make_shared<std::string const>(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

LiveText ItemsText(LatestController const& latest, std::vector<ApiItem> const& all) {
    Json items = Json::array();
    Json values = Json::array();
    for (ApiItem const& item : all) {
        items.push_back(ItemJson(*latest.controller, item));
        values.push_back(ItemValueJson(*latest.controller, item, latest.samples.at(item.reading)));
    }
    return TextOf({{"type", "items"},
                   {"controller", latest.controller->name},
                   {"items", std::move(items)},
                   {"values", std::move(values)}});
}

/// Those that have changed since a version; null if none has.
LiveText ValuesText(LatestController const& latest, std::vector<ApiItem> const& items, std::uint64_t version) {
    std::string values;
    for (ApiItem const& item : items) {
        if (latest.versions.at(item.reading) > version) {
            values += values.empty() ? "" : ",";
            AppendItemValue(values, *latest.controller, item, latest.samples.at(item.reading));
        }
    }
    return values.empty()
               ? nullptr
               : std::make_shared<std::string const>(fmt::format(R"({{"type":"values","controller":{},"values":[{}]}})",
                                                                 *TextOf(latest.controller->name), values));
}

} // namespace

/// Controllers were added or removed: the copy has them at other places, or with other items.
void LiveFeed::RememberAll(Json& removed) {
    std::map<std::string, Known> before = std::exchange(known_, {});
    for (auto const& [id, latest] : copy_.controllers) {
        Known& known = known_[latest.controller->name];
        if (auto const found = before.find(latest.controller->name); found != before.end()) {
            known.summary = std::move(found->second.summary);
            before.erase(found);
        }
        known.latest = &latest;
    }
    for (auto const& [name, known] : before) {
        removed.push_back(name);
    }
}

/// True if the summary may have changed in more than the time of the last answer.
bool LiveFeed::HasNews(LatestController const& latest) const {
    bool hasNews = copy_.isWhole || latest.linkVersion > copy_.versionBefore;
    for (std::size_t i = 0; i < latest.versions.size() && !hasNews; ++i) {
        hasNews = latest.versions[i] > copy_.versionBefore && IsInSummary(latest.controller->readings[i]);
    }
    return hasNews;
}

/// Adds the keys of the summary that have changed, if any has.
void LiveFeed::AddChanged(Json& changed, LatestController const& latest, std::int64_t now) {
    Known& known = known_.at(latest.controller->name);
    bool const saysAnswer = IsDue(known.answerSaid, now);
    if (!saysAnswer && !HasNews(latest)) {
        return;
    }
    Json summary = SummaryJson(latest, roundTrips_);
    Json difference = Json::object();
    for (auto const& [key, value] : summary.items()) {
        bool const isAnswer = key == "answered" || key == "roundTrip";
        if ((!isAnswer || saysAnswer) && (!known.summary.is_object() || known.summary[key] != value)) {
            difference[key] = value;
        }
    }
    if (difference.empty()) {
        return;
    }
    known.answerSaid = saysAnswer ? now : known.answerSaid;
    difference["name"] = latest.controller->name;
    known.summary = std::move(summary);
    changed.push_back(std::move(difference));
}

LiveText LiveFeed::Look() {
    api_.Sources().table->BringUpToDate(copy_);
    if (copy_.changed.empty() && copy_.events.empty() && !copy_.isWhole) {
        return nullptr;
    }
    std::int64_t const now = NowMilliseconds();
    if (IsDue(roundTripsAsked_, now)) {
        roundTripsAsked_ = now;
        roundTrips_ = api_.Sources().roundTrips();
    }
    Json changed = Json::array();
    Json removed = Json::array();
    if (copy_.isWhole) {
        RememberAll(removed);
    }
    for (LatestController const* each : copy_.changed) {
        AddChanged(changed, *each, now);
    }
    Json events = Json::array();
    for (NumberedEvent const& event : copy_.events) {
        events.push_back(EventJson(event));
    }
    if (changed.empty() && removed.empty() && events.empty()) {
        return nullptr;
    }
    hello_.reset();
    if (copy_.versionBefore == 0) {
        return nullptr; // nobody can have an older picture
    }
    return TextOf({{"type", "delta"},
                   {"time", now},
                   {"changed", std::move(changed)},
                   {"removed", std::move(removed)},
                   {"events", std::move(events)}});
}

LiveText LiveFeed::Hello() {
    if (hello_ == nullptr) {
        Json hello = api_.Hello();
        Json controllers = Json::array();
        for (auto& [name, known] : known_) {
            controllers.push_back(known.summary);
        }
        Json events = Json::array();
        auto const all = api_.Sources().table->Events();
        for (std::size_t i = all.size() - std::min(all.size(), EventsOfHello); i < all.size(); ++i) {
            events.push_back(EventJson(all[i]));
        }
        hello["controllers"] = std::move(controllers);
        hello["events"] = std::move(events);
        hello_ = TextOf(hello);
    }
    return hello_;
}

LiveText LiveFeed::News(std::string const& controller, Seen& seen) {
    auto const found = known_.find(controller);
    if (found == known_.end()) {
        seen = {};
        return nullptr;
    }
    Known& known = found->second;
    LatestController const& latest = *known.latest;
    Seen const before = std::exchange(seen, {latest.controller->id, copy_.version});
    if (before == seen) {
        return nullptr;
    }
    if (known.told.before != before || known.told.after != seen) {
        if (known.items.empty()) {
            known.items = ItemsOf(*latest.controller);
        }
        bool const hasItems = before.id == seen.id;
        known.told = {before, seen,
                      hasItems ? ValuesText(latest, known.items, before.version) : ItemsText(latest, known.items)};
    }
    return known.told.text;
}

void LiveClient::Receive(std::string_view text) {
    Json const message = Json::parse(text, nullptr, false);
    auto const fail = [this](char const* what) { error_ = TextOf({{"type", "error"}, {"text", what}}); };
    if (!message.is_object()) {
        fail("a message must be a JSON object");
        return;
    }
    if (auto const pause = message.find("pause"); pause != message.end()) {
        if (!pause->is_boolean()) {
            fail("\"pause\" must be true or false");
            return;
        }
        isPaused_ = pause->get<bool>();
        needsHello_ = true; // what went by is not sent any more
        delta_.reset();
        for (Watched& watched : watched_) {
            watched.seen = {};
        }
    }
    auto const watch = message.find("watch");
    if (watch == message.end()) {
        return;
    }
    bool const isList = watch->is_array() &&
                        std::all_of(watch->begin(), watch->end(), [](Json const& name) { return name.is_string(); });
    if (!isList || watch->size() > MostWatched) {
        fail("\"watch\" must be a list of at most 8 names");
        return;
    }
    watched_.clear();
    for (Json const& name : *watch) {
        watched_.push_back({name.get<std::string>(), {}});
    }
    turn_ = 0;
    turnsLeft_ = watched_.size();
}

bool LiveClient::Tick(LiveText const& delta) {
    turnsLeft_ = watched_.size();
    if (delta != nullptr && !needsHello_) {
        // It has not taken the last one yet: it gets the full picture instead of both.
        needsHello_ = delta_ != nullptr;
        delta_ = needsHello_ ? nullptr : delta;
    }
    return !IsDone();
}

bool LiveClient::IsDone() const {
    return error_ == nullptr && (isPaused_ || (!needsHello_ && delta_ == nullptr && turnsLeft_ == 0));
}

LiveText LiveClient::Next() {
    if (error_ != nullptr) {
        return std::exchange(error_, nullptr);
    }
    if (isPaused_) {
        return nullptr;
    }
    if (needsHello_) {
        needsHello_ = false;
        delta_.reset();
        return feed_.Hello();
    }
    if (delta_ != nullptr) {
        return std::exchange(delta_, nullptr);
    }
    return NextValues();
}

LiveText LiveClient::NextValues() {
    for (; turnsLeft_ > 0; --turnsLeft_) {
        Watched& watched = watched_[turn_];
        turn_ = (turn_ + 1) % watched_.size();
        if (LiveText text = feed_.News(watched.controller, watched.seen); text != nullptr) {
            --turnsLeft_;
            return text;
        }
    }
    return nullptr;
}

} // namespace harvlink::gateway
