#include "gateway/watch/Watch.h"

#include <algorithm>
#include <sstream>

#include <fmt/format.h>

namespace harvlink::gateway {

namespace {

constexpr std::chrono::seconds ResolvePause(30);

/// Two controllers with the same text are watched in the same way.
std::string Fingerprint(ControllerConfig const& config, std::vector<FleetGroup> const& groups) {
    std::ostringstream text;
    FleetControllerOptions const& options = config.options;
    text << options.address << ' ' << options.timeout << ' ' << options.retries << ' ' << options.lanes << ' '
         << options.gap.count() << ' ' << options.mostRequestsPerSecond << ' ' << static_cast<int>(options.generation)
         << ' ' << config.encoding;
    for (FleetGroup const& group : groups) {
        text << '\n' << group.period.count() << ' ' << group.onChange << ' ' << group.longestSilence.count();
        for (FleetItem const& item : group.items) {
            text << ", " << item << ' ' << static_cast<int>(item.group) << ' ' << int{item.toolNumber} << ' '
                 << int{item.userCoordinateNumber} << ' ' << item.detail << ' ' << item.deadBand;
        }
    }
    for (std::string const& poll : config.polls) {
        text << '\n' << poll;
    }
    return text.str();
}

std::string Join(std::vector<std::string> const& names) {
    std::string text;
    for (std::string const& name : names) {
        text += (text.empty() ? "" : " ") + name;
    }
    return text;
}

bool IsName(std::string const& host) {
    return host.find_first_not_of("0123456789.") != std::string::npos;
}

} // namespace

Watch::Watch(Log& log) : log_(log), dispatcher_(fleet_, log), resolver_([this] { Resolve(); }) {}

Watch::~Watch() {
    Stop();
}

void Watch::Stop() {
    {
        std::scoped_lock const lock(mutex_);
        isStopping_ = true;
    }
    wake_.notify_one();
    if (resolver_.joinable()) {
        resolver_.join();
    }
    fleet_.Stop();
    dispatcher_.Stop();
}

Watch::Applied Watch::Apply(Config const& config, bool areVirtual) {
    Applied applied;
    std::map<std::string, std::pair<ControllerConfig const*, std::string>> wanted;
    for (ControllerConfig const& controller : config.controllers) {
        wanted[controller.name] = {&controller, Fingerprint(controller, config.GroupsOf(controller))};
    }
    // First all that goes: what comes may have the address of what went.
    std::vector<std::string> gone;
    for (auto const& [name, watched] : watched_) {
        auto const found = wanted.find(name);
        if (found == wanted.end()) {
            gone.push_back(name);
            ++applied.removed;
        } else if (found->second.second != watched.fingerprint) {
            gone.push_back(name);
            ++applied.changed;
        } else {
            ++applied.kept;
        }
    }
    std::for_each(gone.begin(), gone.end(), [this](std::string const& name) { Remove(name); });
    for (ControllerConfig const& controller : config.controllers) {
        if (!watched_.contains(controller.name)) {
            Add(controller, config.GroupsOf(controller), wanted[controller.name].second, areVirtual);
            ++applied.added;
        }
    }
    applied.added -= applied.changed;
    return applied;
}

void Watch::Add(ControllerConfig const& config, std::vector<FleetGroup> const& groups, std::string fingerprint,
                bool isVirtual) {
    Controller controller;
    controller.id = ++lastId_;
    controller.name = config.name;
    controller.address = config.options.address;
    controller.readings = ReadingsOf(groups);
    controller.periods = PeriodsOf(groups);
    controller.polls = Join(config.polls);
    controller.encoding = config.encoding;
    controller.isVirtual = isVirtual;
    auto const shared = std::make_shared<Controller const>(std::move(controller));
    watched_[config.name] = {shared, std::move(fingerprint)};
    dispatcher_.Add(shared, groups);
    if (IsName(config.options.address)) {
        std::scoped_lock const lock(mutex_);
        waiting_[config.name] = {config.options, groups};
        wake_.notify_one();
        return;
    }
    if (StatusInfo const status = fleet_.Add(config.name, config.options, groups); status.StatusCode != 0) {
        log_.Error("a controller can't be watched", {{"controller", config.name}, {"reason", status.Message}});
    }
}

void Watch::Remove(std::string const& name) {
    {
        std::scoped_lock const lock(mutex_); // the resolver adds nothing meanwhile, and nothing afterwards
        waiting_.erase(name);
        fleet_.Remove(name);
    }
    dispatcher_.Remove(watched_.at(name).controller);
    watched_.erase(name);
}

/// To resolve a name may take long, and nothing else must wait for that.
void Watch::Resolve() {
    std::unique_lock lock(mutex_);
    while (!isStopping_) {
        std::map<std::string, Waiting> round = waiting_;
        lock.unlock();
        for (auto& [name, waiting] : round) {
            ResolveOne(name, waiting);
            std::scoped_lock const stopLock(mutex_);
            if (isStopping_) {
                return;
            }
        }
        lock.lock();
        bool const isNew =
            std::any_of(waiting_.begin(), waiting_.end(), [](auto const& each) { return !each.second.isTold; });
        if (!isNew && !isStopping_) {
            auto const until = waiting_.empty() ? std::chrono::hours(1) : ResolvePause;
            wake_.wait_for(lock, until);
        }
    }
}

void Watch::ResolveOne(std::string const& name, Waiting& waiting) {
    // A fleet of its own tries it with a short time, because a stop waits for this.
    constexpr unsigned Milliseconds = 400;
    Fleet trial({.queueCapacity = 2, .eventCapacity = 2});
    FleetControllerOptions options = waiting.options;
    options.timeout = Milliseconds;
    options.retries = 0;
    StatusInfo status = trial.Add(name, options, waiting.groups);
    std::unique_lock lock(mutex_);
    auto const found = waiting_.find(name);
    if (found == waiting_.end() || isStopping_) {
        return;
    }
    if (status.StatusCode == 0) {
        status = fleet_.Add(name, waiting.options, waiting.groups);
    }
    if (status.StatusCode == 0) {
        waiting_.erase(found);
    } else if (!found->second.isTold) {
        found->second.isTold = true;
        lock.unlock();
        log_.Warning("a controller can't be watched yet", {{"controller", name}, {"reason", status.Message}});
        // It is as good as silent, and the gateway is ready without it.
        FleetEvent silent;
        silent.controller = name;
        silent.time = std::chrono::system_clock::now();
        silent.after = static_cast<std::int64_t>(FleetState::Silent);
        silent.code = status.StatusCode;
        dispatcher_.Tell(silent);
    }
}

} // namespace harvlink::gateway
