#include "recording/write/Recorder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <random>
#include <span>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/RecordedSamples.h"
#include "support/ScratchFolder.h"

namespace harvlink::recording {
namespace {

using std::chrono::milliseconds;

template <typename Condition>
bool Await(Condition const& condition) {
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(milliseconds(5));
    }
    return true;
}

class RecorderTest : public testing::Test {
protected:
    test::ScratchFolder folder_;
    std::filesystem::path path_ = folder_.Path() / "x.harvlink";
};

TEST_F(RecorderTest, RefusesASecondRecorderAndAFolderThatCannotBeWritten) {
    Recorder const recorder(path_);
    EXPECT_THROW(Recorder{path_}, Busy);
    EXPECT_THROW(Recorder{"/sys/x.harvlink"}, RecordingError);
    EXPECT_THROW(Recorder{folder_.Path() / "missing" / "x.harvlink"}, RecordingError);
}

TEST_F(RecorderTest, TakesAShortStallAndNamesWhatALongOneCost) {
    Recorder recorder(path_, {.commitInterval = milliseconds(10), .capacity = 1000});
    Cell const cell(recorder);
    recorder.Put(At(0, cell.number, {std::int64_t{-1}}));
    ASSERT_TRUE(Await([&] { return recorder.Status().samples == 1; }));
    Database other(path_, Database::Access::Write);
    std::int64_t number = 0;
    for (int const count : {900, 1500}) {
        other.Run("BEGIN IMMEDIATE");
        for (int i = 0; i < count; ++i, ++number) {
            recorder.Put(At(number * 1000, cell.number, {number}));
        }
        other.Run("COMMIT");
        ASSERT_TRUE(Await([&] {
            return recorder.Status().samples + recorder.Status().dropped == static_cast<std::uint64_t>(number) + 1;
        }));
    }
    recorder.Close();
    EXPECT_EQ(recorder.Status().problem, "");
    auto const gaps = Recording(path_).Gaps();
    ASSERT_EQ(gaps.size(), 1);
    EXPECT_EQ(gaps[0].gap.count, recorder.Status().dropped);
    EXPECT_EQ(gaps[0].gap.duration, static_cast<Microseconds>(gaps[0].gap.count - 1) * 1000);
    EXPECT_EQ(ChangesOf(path_).size() + gaps[0].gap.count, static_cast<std::size_t>(number) + 1);
}

TEST_F(RecorderTest, KeepsTheLogBoundedWhileAReaderStaysInATransaction) {
    constexpr std::uint64_t Most = 1 << 20;
    Recorder recorder(path_, {.store = {.maxLogBytes = Most}, .commitInterval = milliseconds(5), .capacity = 20'000});
    Cell const cell(recorder);
    recorder.Put(At(0, cell.number, {std::int64_t{-1}}));
    ASSERT_TRUE(Await([&] { return recorder.Status().samples == 1; }));
    Database reader(path_, Database::Access::Read);
    reader.Run("BEGIN");
    ASSERT_EQ(reader.Number("SELECT count(*) FROM samples"), 1);
    std::int64_t number = 0;
    auto const put = [&] {
        for (int i = 0; i < 1000; ++i, ++number) {
            recorder.Put(At(number * 1000, cell.job, {std::to_string(number)}));
        }
        return recorder.Status().dropped > 0;
    };
    ASSERT_TRUE(Await(put));
    EXPECT_LT(recorder.Status().logBytes, 3 * Most);
    reader.Run("COMMIT");
    recorder.Put(At(number * 1000, cell.number, {number}));
    recorder.Close();
    EXPECT_GE(Recording(path_).Gaps().size(), 1);
    EXPECT_FALSE(std::filesystem::exists(path_.string() + "-lock"));
}

TEST_F(RecorderTest, StopsWithAClearWordWhenTheDiskIsFull) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    Recorder recorder(path_, {.commitInterval = milliseconds(5)});
    Cell const cell(recorder);
    rlimit const limit{1 << 20, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    std::int64_t number = 0;
    bool const ended = Await([&] {
        for (int i = 0; i < 1000; ++i, ++number) {
            recorder.Put(At(number * 1000, cell.job, {std::to_string(number)}));
        }
        return !recorder.Status().problem.empty();
    });
    recorder.Close();
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(ended);
    EXPECT_NE(recorder.Status().problem.find("the disk is full"), std::string::npos) << recorder.Status().problem;
    EXPECT_GT(ChangesOf(path_).size(), 1000);
}

/// Gives this process, which must have one thread, a disk of a megabyte that no other sees.
bool MountSmallDisk(std::filesystem::path const& folder) {
    std::string const user = "0 " + std::to_string(getuid()) + " 1";
    std::string const group = "0 " + std::to_string(getgid()) + " 1";
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    test::WriteFile("/proc/self/uid_map", user);
    test::WriteFile("/proc/self/setgroups", "deny");
    test::WriteFile("/proc/self/gid_map", group);
    return mount("none", folder.c_str(), "tmpfs", 0, "size=1m") == 0;
}

/// Returns what the recorder said at its end; nothing if there can't be such a disk.
std::string RecordOnASmallDisk(std::filesystem::path const& folder) {
    if (!MountSmallDisk(folder)) {
        return "";
    }
    std::string said;
    {
        Recorder recorder(folder / "x.harvlink", {.commitInterval = milliseconds(5)});
        Cell const cell(recorder);
        std::int64_t number = 0;
        Await([&] {
            for (int i = 0; i < 1000; ++i, ++number) {
                recorder.Put(At(number * 1000, cell.job, {std::to_string(number)}));
            }
            return !recorder.Status().problem.empty();
        });
        recorder.Close();
        said = recorder.Status().problem;
    }
    return said + "; " + (ChangesOf(folder / "x.harvlink").size() > 1000 ? "the rest is there" : "the rest is lost");
}

TEST_F(RecorderTest, StopsOnADiskThatIsReallyFull) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    pid_t const child = fork();
    if (child == 0) {
        std::string const said = RecordOnASmallDisk(folder_.Path());
        auto const written = write(ends[1], said.data(), said.size());
        _exit(written == static_cast<ssize_t>(said.size()) ? 0 : 1);
    }
    close(ends[1]);
    std::string said(1000, '\0');
    said.resize(static_cast<std::size_t>(std::max<ssize_t>(read(ends[0], said.data(), said.size()), 0)));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    if (said.empty()) {
        GTEST_SKIP() << "this system does not let a test mount a file system of its own";
    }
    EXPECT_NE(said.find("the disk is full"), std::string::npos) << said;
    EXPECT_NE(said.find("the rest is there"), std::string::npos) << said;
}

/// Records until it is killed, and says in `newest` which number it has put at last.
[[noreturn]] void RecordForever(std::filesystem::path const& path, std::atomic<std::int64_t>& newest) {
    Recorder recorder(path);
    Cell const cell(recorder);
    auto const begin = std::chrono::steady_clock::now();
    for (;;) {
        auto const now = std::chrono::steady_clock::now() - begin;
        auto const number = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
        recorder.Put(At(number, cell.number, {number}));
        newest = number;
        std::this_thread::sleep_for(milliseconds(2));
    }
}

TEST_F(RecorderTest, LosesAtMostASecondWhenItIsKilled) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    constexpr std::size_t Times = 8; // more of so slow recorders at once would not keep up with two processors
#else
    constexpr std::size_t Times = 50;
#endif
    void* const memory = mmap(nullptr, Times * sizeof(std::atomic<std::int64_t>), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    std::span const newest(static_cast<std::atomic<std::int64_t>*>(memory), Times);
    std::vector<pid_t> children;
    auto const file = [&](std::size_t number) { return folder_.Path() / (std::to_string(number) + ".harvlink"); };
    for (std::size_t i = 0; i < Times; ++i) {
        children.push_back(fork());
        if (children.back() == 0) {
            RecordForever(file(i), newest[i]);
        }
    }
    std::mt19937 random(20); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same moments each time
    for (std::size_t i = 0; i < Times; ++i) {
        ASSERT_TRUE(Await([&] { return newest[i] > 1'200'000; }));
        std::this_thread::sleep_for(milliseconds(random() % 40));
        kill(children[i], SIGKILL);
        waitpid(children[i], nullptr, 0);
    }
    for (std::size_t i = 0; i < Times; ++i) {
        auto const changes = ChangesOf(file(i));
        ASSERT_FALSE(changes.empty());
        EXPECT_LE(newest[i] - std::get<std::int64_t>(changes.back().values[0].second), Second) << i;
        Database database(file(i), Database::Access::Read);
        Statement check(database, "PRAGMA integrity_check");
        EXPECT_TRUE(check.Step() && check.Text(0) == "ok");
        Recorder{file(i)}; // it goes on
    }
    munmap(memory, Times * sizeof(std::atomic<std::int64_t>));
}

} // namespace
} // namespace harvlink::recording
