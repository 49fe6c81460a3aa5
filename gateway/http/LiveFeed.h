#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "gateway/http/Api.h"
#include "gateway/watch/LatestTable.h"

namespace harvlink::gateway {

/// A message that several clients share.
using LiveText = std::shared_ptr<std::string const>;

/// Makes the messages of /api/live, each once for all clients. For one thread.
class LiveFeed {
public:
    explicit LiveFeed(Api const& api) : api_(api) {}

    /// Looks what has changed. Returns the delta since the last look; null if nothing has.
    LiveText Look();

    /// The full picture, as of the last look.
    LiveText Hello();

    /// The items of a controller with their values, or those of them that have changed since a version of the table. Null if
    /// there is nothing to say. `version` becomes that of the answer.
    LiveText Items(std::string const& controller, std::uint64_t& version);
    LiveText Values(std::string const& controller, std::uint64_t& version);

    /// The id of a controller with this name, 0 if there is none. It changes with its items.
    std::uint32_t IdOf(std::string const& controller) const;

private:
    struct Known { // NOLINT(bugprone-exception-escape): its JSON is moved, which takes no memory
        LatestController latest;
        words::Json summary;
        std::int64_t answerSaid = 0; ///< when its last answer was last part of a delta
    };
    struct Values_ {
        std::uint64_t from = 0;
        std::uint64_t to = 0;
        LiveText text;
    };

    /// True if the summary may have changed in more than the time of the last answer.
    bool TakeChange(LatestController& changed, bool isWhole);
    void AddChanged(words::Json& changed, Known& known, bool hasNews, std::int64_t now) const;

    Api const& api_;
    std::uint64_t version_ = 0;
    std::map<std::string, Known> known_;
    LastRoundTrips roundTrips_;
    LiveText hello_; ///< null: must be made anew
    std::map<std::string, std::vector<Values_>> values_; ///< that were made since the last look
};

/// One client of /api/live: what it wants, and what it is sent next. Latest values win: what it could not take in time, it never
/// gets.
class LiveClient {
public:
    explicit LiveClient(LiveFeed& feed) : feed_(feed) {}

    /// A message of the client.
    void Receive(std::string_view text);

    /// There is a new delta, or null, and values may have changed. True if there is something to send.
    bool Tick(LiveText const& delta);

    /// The next message; null if there is nothing.
    LiveText Next();

    /// False if Next may have one more.
    bool IsDone() const;

private:
    struct Watched {
        std::string controller;
        std::uint32_t id = 0; ///< 0: its items are not sent yet
        std::uint64_t version = 0;
    };

    LiveText NextValues();

    static constexpr std::size_t MostWatched = 8;

    LiveFeed& feed_;
    bool isPaused_ = false;
    bool needsHello_ = true;
    LiveText delta_;
    LiveText error_;
    std::vector<Watched> watched_;
    std::size_t turn_ = 0; ///< of the watched: each gets its turn
    std::size_t turnsLeft_ = 0; ///< of the watched that may have values since the last tick
};

} // namespace harvlink::gateway
