#include "gateway/http/LiveFeed.h"

#include <algorithm>

#include <fmt/format.h>

#include "gateway/http/Items.h"

namespace harvlink::gateway {

namespace {

using words::Json;

constexpr std::size_t EventsOfHello = 100;
constexpr std::int64_t AnswerPace = 1000; ///< milliseconds: that it answered again is worth no message by itself

LiveText TextOf(Json const& json) {
    return std::make_shared<std::string const>(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace

bool LiveFeed::TakeChange(LatestController& changed, bool isWhole) {
    Known& known = known_[changed.controller->name];
    if (isWhole || known.latest.controller != changed.controller) {
        known.latest = std::move(changed);
        return true;
    }
    bool hasNews = known.latest.linkVersion != changed.linkVersion;
    for (std::size_t i = 0; i < changed.samples.size(); ++i) {
        if (changed.samples[i] != nullptr) {
            known.latest.samples[i] = std::move(changed.samples[i]);
            hasNews = hasNews || IsInSummary(changed.controller->readings[i]);
        }
    }
    changed.samples = std::move(known.latest.samples);
    known.latest = std::move(changed);
    return hasNews;
}

/// Adds the keys of the summary that have changed, if any has.
void LiveFeed::AddChanged(Json& changed, Known& known, bool hasNews, std::int64_t now) const {
    bool const saysAnswer = now - known.answerSaid >= AnswerPace || now < known.answerSaid;
    if (!hasNews && !saysAnswer) {
        return;
    }
    Json summary = SummaryJson(known.latest, roundTrips_);
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
    difference["name"] = known.latest.controller->name;
    known.summary = std::move(summary);
    changed.push_back(std::move(difference));
}

LiveText LiveFeed::Look() {
    LatestTable::Changes changes = api_.Sources().table->ChangesSince(version_);
    bool const isFirst = version_ == 0;
    version_ = changes.version;
    values_.clear();
    if (changes.controllers.empty() && changes.events.empty() && !changes.isWhole) {
        return nullptr;
    }
    roundTrips_ = api_.Sources().roundTrips();
    std::int64_t const now = NowMilliseconds();
    Json changed = Json::array();
    Json removed = Json::array();
    if (changes.isWhole) {
        std::erase_if(known_, [&](auto const& known) {
            bool const isThere =
                std::any_of(changes.controllers.begin(), changes.controllers.end(),
                            [&](LatestController const& each) { return each.controller->name == known.first; });
            if (!isThere) {
                removed.push_back(known.first);
            }
            return !isThere;
        });
    }
    for (LatestController& each : changes.controllers) {
        std::string const name = each.controller->name;
        bool const hasNews = TakeChange(each, changes.isWhole);
        AddChanged(changed, known_[name], hasNews, now);
    }
    Json events = Json::array();
    for (NumberedEvent const& event : changes.events) {
        events.push_back(EventJson(event));
    }
    if (changed.empty() && removed.empty() && events.empty()) {
        return nullptr;
    }
    hello_.reset();
    if (isFirst) {
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

std::uint32_t LiveFeed::IdOf(std::string const& controller) const {
    auto const found = known_.find(controller);
    return found == known_.end() ? 0 : found->second.latest.controller->id;
}

LiveText LiveFeed::Items(std::string const& controller, std::uint64_t& version) {
    auto const found = known_.find(controller);
    if (found == known_.end()) {
        return nullptr;
    }
    version = version_;
    LatestController const& latest = found->second.latest;
    Json items = Json::array();
    Json values = Json::array();
    for (ApiItem const& item : ItemsOf(*latest.controller)) {
        items.push_back(ItemJson(*latest.controller, item));
        values.push_back(ItemValueJson(*latest.controller, item, latest.samples.at(item.reading)));
    }
    return TextOf(
        {{"type", "items"}, {"controller", controller}, {"items", std::move(items)}, {"values", std::move(values)}});
}

LiveText LiveFeed::Values(std::string const& controller, std::uint64_t& version) {
    auto const found = known_.find(controller);
    if (found == known_.end() || version >= version_) {
        return nullptr;
    }
    std::uint64_t const from = std::exchange(version, version_);
    auto& made = values_[controller];
    auto const same = std::find_if(made.begin(), made.end(), [&](Values_ const& each) { return each.from == from; });
    if (same != made.end()) {
        return same->text;
    }
    LatestController const& latest = found->second.latest;
    std::string values;
    for (ApiItem const& item : ItemsOf(*latest.controller)) {
        if (latest.versions.at(item.reading) > from) {
            values += values.empty() ? "" : ",";
            AppendItemValue(values, *latest.controller, item, latest.samples.at(item.reading));
        }
    }
    LiveText text = values.empty()
                        ? nullptr
                        : std::make_shared<std::string const>(fmt::format(
                              R"({{"type":"values","controller":{},"values":[{}]}})", *TextOf(controller), values));
    made.push_back({from, version_, text});
    return text;
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
            watched.id = 0;
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
        watched_.push_back({name.get<std::string>(), 0, 0});
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
        std::uint32_t const id = feed_.IdOf(watched.controller);
        bool const isNew = id != watched.id;
        watched.id = id;
        LiveText text = isNew ? feed_.Items(watched.controller, watched.version)
                              : feed_.Values(watched.controller, watched.version);
        if (text != nullptr) {
            --turnsLeft_;
            return text;
        }
    }
    return nullptr;
}

} // namespace harvlink::gateway
