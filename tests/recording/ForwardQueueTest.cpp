#include "recording/forward/ForwardQueue.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <random>
#include <thread>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/ScratchFolder.h"

namespace harvlink::recording {
namespace {

constexpr Microseconds Second = 1'000'000;

std::string ContentFor(std::uint64_t number) {
    return std::to_string(number) + std::string(number % 200, 'x');
}

/// Entries that are numbered from `first` on, each a second after the one before.
void AppendMany(ForwardQueue& queue, std::uint64_t first, std::uint64_t count) {
    for (std::uint64_t number = first; number < first + count; ++number) {
        queue.Append(static_cast<Microseconds>(number) * Second, ContentFor(number));
    }
}

/// Takes out everything in portions, checks that each entry is as it was and that they are in order, and returns their number.
std::uint64_t Drain(ForwardQueue& queue) {
    std::uint64_t count = 0;
    std::uint64_t last = 0;
    for (auto entries = queue.Read(0, 70); !entries.empty(); entries = queue.Read(0, 70)) {
        for (ForwardEntry const& entry : entries) {
            EXPECT_GT(entry.number, last);
            EXPECT_EQ(entry.content, ContentFor(entry.number));
            last = entry.number;
        }
        count += entries.size();
        queue.Acknowledge(last);
    }
    return count;
}

class ForwardQueueTest : public testing::Test {
protected:
    std::vector<std::filesystem::path> Files() const {
        std::vector<std::filesystem::path> files;
        for (auto const& file : std::filesystem::directory_iterator("q")) {
            files.push_back(file.path());
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    test::ScratchFolder folder_;
};

TEST_F(ForwardQueueTest, GivesInOrderWhatIsNotAcknowledged) {
    {
        ForwardQueue queue("q");
        EXPECT_THROW(ForwardQueue("q"), Busy);
        AppendMany(queue, 1, 5);
        EXPECT_TRUE(queue.Read(0, 10).empty());
        queue.Commit();
        auto const two = queue.Read(0, 2);
        ASSERT_EQ(two.size(), 2);
        EXPECT_EQ(two[1].time, 2 * Second);
        EXPECT_EQ(queue.Read(two[1].number, 10).size(), 3);
        EXPECT_EQ(queue.Read(0, 10, 1).size(), 1);
        queue.Acknowledge(2);
        queue.Append(0, std::string(ForwardEntry::MostBytes + 1, 'x'));
        AppendMany(queue, 6, 1);
    }
    ForwardQueue queue("q");
    EXPECT_EQ(queue.Status().waiting, 4);
    EXPECT_EQ(queue.Status().droppedForSize, 1);
    EXPECT_EQ(queue.Read(0, 1)[0].number, 3);
    EXPECT_EQ(Drain(queue), 4);
    AppendMany(queue, 7, 1);
    queue.Commit();
    EXPECT_EQ(Drain(queue), 1);
    queue.Commit();
    EXPECT_EQ(queue.Status().bytes, 0);
    EXPECT_THROW(ForwardQueue("/sys/q"), RecordingError);
}

TEST_F(ForwardQueueTest, DropsTheOldestBeyondItsLimitsAndCountsThem) {
    constexpr std::uint64_t Many = 10'000;
    for (bool const isOld : {false, true}) {
        std::filesystem::remove_all("q");
        ForwardOptions const options{.maxBytes = isOld ? 1U << 30 : 256U << 10,
                                     .keep = std::chrono::hours(isOld ? 1 : 0)};
        {
            ForwardQueue queue("q", options);
            for (std::uint64_t number = 1; number < Many; number += 50) {
                AppendMany(queue, number, 50);
                queue.Commit();
                EXPECT_LE(queue.Status().bytes, options.maxBytes);
            }
        }
        ForwardQueue queue("q", options);
        auto const before = queue.Status();
        EXPECT_GT(before.waiting, isOld ? 3600 : 1000);
        EXPECT_EQ((isOld ? before.droppedForAge : before.droppedForSize) + before.waiting, Many);
        EXPECT_EQ(queue.Read(0, 1)[0].number, Many - before.waiting + 1);
        EXPECT_EQ(Drain(queue), before.waiting);
    }
}

TEST_F(ForwardQueueTest, ClockThatWasAheadMakesNothingOld) {
    ForwardOptions const options{.keep = std::chrono::hours(1)};
    {
        ForwardQueue queue("q", options);
        queue.Append(Microseconds{1} << 50, "ahead");
    }
    ForwardQueue queue("q", options);
    queue.Append(1, "set back");
    queue.Commit();
    queue.Acknowledge(1);
    queue.Commit();
    queue.Append(2, "later");
    queue.Commit();
    EXPECT_EQ(queue.Status().waiting, 2U);
    EXPECT_EQ(queue.Status().droppedForAge, 0U);
}

TEST_F(ForwardQueueTest, PassesOverChangedBytesAndCountsWhatTheyCost) {
    constexpr std::uint64_t Many = 3000;
    std::mt19937 random(21); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        std::filesystem::remove_all("q");
        {
            ForwardQueue queue("q", {.maxBytes = 1 << 20});
            AppendMany(queue, 1, Many);
        }
        auto files = Files();
        ASSERT_GT(files.size(), 4);
        if (round % 10 == 9) {
            std::filesystem::remove(files[random() % (files.size() - 1)]); // the last one is the state
            files = Files();
        }
        for (int flip = 0; flip < 1 + round % 5; ++flip) {
            auto const& file = files[random() % files.size()];
            std::string content = test::ContentOf(file);
            std::size_t const limit = file.filename() == "state" ? 56 : content.size(); // one copy of it
            content[random() % limit] ^= static_cast<char>(1U << (random() % 8));
            test::WriteFile(file, round % 7 == 6 ? content.substr(0, content.size() - 100) : content);
        }
        ForwardQueue queue("q", {.maxBytes = 1 << 20});
        std::uint64_t const read = Drain(queue);
        EXPECT_EQ(read + queue.Status().damaged, Many);
        EXPECT_LT(read, Many + 1);
        EXPECT_EQ(queue.Status().waiting, 0);
        AppendMany(queue, Many + 1, 3);
        queue.Commit();
        EXPECT_EQ(Drain(queue), 3);
    }
}

[[noreturn]] void AppendForever(std::atomic<std::uint64_t>& committed) {
    ForwardQueue queue("q");
    std::uint64_t next = queue.Status().waiting + 1;
    for (;; next += 20) {
        AppendMany(queue, next, 20);
        queue.Commit();
        committed = next + 19;
    }
}

TEST_F(ForwardQueueTest, KeepsWhatWasCommittedWhenItIsKilled) {
    void* const memory =
        mmap(nullptr, sizeof(std::atomic<std::uint64_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& committed = *static_cast<std::atomic<std::uint64_t>*>(memory);
    std::mt19937 random(22); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    for (int round = 0; round < 20; ++round) {
        std::uint64_t const before = committed;
        pid_t const child = fork();
        if (child == 0) {
            AppendForever(committed);
        }
        for (int wait = 0; committed == before && wait < 20'000; ++wait) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 5000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        ForwardQueue queue("q");
        EXPECT_GE(queue.Status().waiting, committed);
        EXPECT_LE(queue.Status().waiting, committed + 20);
        committed = queue.Status().waiting;
    }
    ForwardQueue queue("q");
    std::uint64_t const waiting = queue.Status().waiting;
    EXPECT_EQ(Drain(queue), waiting);
    EXPECT_EQ(queue.Status().damaged, 0);
    munmap(memory, sizeof(std::atomic<std::uint64_t>));
}

} // namespace
} // namespace harvlink::recording
