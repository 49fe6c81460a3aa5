#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "gateway/http/Api.h"
#include "gateway/http/Items.h"
#include "gateway/watch/LatestTable.h"

namespace harvlink::gateway {

/// A message that several clients share.
using LiveText = std::shared_ptr<std::string const>;

/// Makes the messages of /api/live, each once for all clients. For one thread.
class LiveFeed {
public:
    /// What has been told of a controller that is watched.
    struct Seen {
        std::uint32_t id = 0; ///< of the controller, which changes with its items; 0: nothing has been told
        std::uint64_t version = 0; ///< of the table

        bool operator==(Seen const&) const = default;
    };

    explicit LiveFeed(Api const& api) : api_(api) {}

    /// Looks what has changed. Returns the delta since the last look; null if nothing has.
    LiveText Look();

    /// The full picture, as of the last look.
    LiveText Hello();

    /// What somebody who watches a controller is told next: its items with their values if it does not have them yet, or else the
    /// values that have changed. Null if there is nothing. `seen` becomes what is told.
    LiveText News(std::string const& controller, Seen& seen);

private:
    /// The last text of a controller: all who have seen the same are told the same.
    struct Told {
        Seen before;
        Seen after;
        LiveText text;
    };
    struct Known { // NOLINT(bugprone-exception-escape): its JSON is moved, which takes no memory
        LatestController const* latest = nullptr; ///< in copy_
        words::Json summary;
        std::int64_t answerSaid = 0; ///< when its last answer was last part of a delta
        std::vector<ApiItem> items; ///< none: nobody has asked for them
        Told told;
    };

    void RememberAll(words::Json& removed);
    bool HasNews(LatestController const& latest) const;
    void AddChanged(words::Json& changed, LatestController const& latest, std::int64_t now);

    Api const& api_;
    LatestCopy copy_;
    std::map<std::string, Known> known_;
    LastRoundTrips roundTrips_;
    std::int64_t roundTripsAsked_ = 0; ///< milliseconds UTC
    LiveText hello_; ///< null: must be made anew
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
        LiveFeed::Seen seen;
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
