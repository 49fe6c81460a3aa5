#pragma once

#include <algorithm>
#include <atomic>
#include <utility>
#include <vector>

#include "motion/MotionSession.h"

namespace harvlink::test {

using namespace std::chrono_literals;

inline constexpr unsigned start = 839, stop = 840, clear = 841, target = 842, alarm = 916;

/// Commands, and the first axis of each target.
using Sequence = std::vector<std::pair<unsigned, int>>;

inline Sequence Summary(std::vector<Datagram> const& sent) {
    Sequence summary;
    for (Datagram const& datagram : sent) {
        unsigned const command = CommandOf(datagram);
        summary.emplace_back(command, command == target ? AxisOf(datagram, 0) : 0);
    }
    return summary;
}

/// Points whose settings the monitor has already sent, so that each needs one datagram.
struct RunningSession : MotionSession {
    explicit RunningSession(ConnectionPolicy const& policy = {}) : MotionSession({1}, "YA1.00", policy) {
        controller.AnswerRest([this](Datagram const& datagram) {
            bool const isRefused = CommandOf(datagram) == target && isFull;
            return Replies{isRefused ? Refusal(65520) : Reply{}};
        });
        Add(0);
        manager->MotionStart();
        Sent(4); // start, coordinates, speed, target
        manager->SetTool(TargetControlGroup::GroupOne, 0); // when this has its reply, the target has its own too
        before += 5;
    }
    ~RunningSession() {
        isFull = false;
        manager.reset();
    }
    void Add(double x) { EXPECT_EQ(manager->AddPointToTrajectory(Point(x), {}, {}, {}).StatusCode, 0); }

    /// All accepted datagrams without repetitions, after the last one was sent.
    Sequence Finish() {
        manager.reset();
        Sequence summary = Summary(Sent());
        summary.erase(std::unique(summary.begin(), summary.end()), summary.end());
        return summary;
    }

    std::atomic<bool> isFull = false;
};

} // namespace harvlink::test
