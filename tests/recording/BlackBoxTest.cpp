#include "recording/blackbox/BlackBox.h"

#include <thread>

#include <gtest/gtest.h>

#include "support/RecordedSamples.h"
#include "support/ScratchFolder.h"

namespace harvlink::recording {
namespace {

RecordedEvent EventAt(Microseconds time, std::uint32_t controller, std::string const& kind, std::int64_t after = 0) {
    return {Begin + time, 77 * Second + time, controller, kind, 0, after, 0, "", ""};
}

class BlackBoxTest : public testing::Test {
protected:
    BlackBoxOptions Options() const {
        return {.folder = folder_.Path(),
                .before = std::chrono::seconds(10),
                .after = std::chrono::seconds(5),
                .writeInterval = std::chrono::milliseconds(1)};
    }

    void WriteTwoIncidents(BlackBoxOptions const& options);

    test::ScratchFolder folder_;
};

void BlackBoxTest::WriteTwoIncidents(BlackBoxOptions const& options) {
    BlackBox box(options);
    Cell const press(box, "press1");
    Cell const other(box, "../weld");
    box.Put(At(0, press.job, {std::string("MAIN")}));
    box.Put(At(0, press.position, {-1.0, 9.0}));
    for (int i = 0; i < 100; ++i) {
        box.Put(At(i * Second, press.number, {std::int64_t{i}}));
        box.Put(At(i * Second, other.number, {std::int64_t{1000 + i}}));
        if (i == 30 || i == 34) { // the second within the window of the first
            box.Put(EventAt(i * Second + 1, press.controller, "alarm-raised", i == 30 ? 0 : 4107));
        }
        if (i == 60) {
            box.Put(EventAt(i * Second + 1, press.controller, "job"));
            box.Put(EventAt(i * Second + 1, other.controller, "silent"));
        }
    }
    box.Close();
    ASSERT_EQ(box.Status().problem, "");
    auto const files = box.Status().incidents;
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(files[0].filename(), "press1-20260921T141350Z-alarm-4107.harvlink");
    EXPECT_EQ(files[1].filename(), ".._weld-20260921T141420Z-silent.harvlink");
    std::int64_t next = 21;
    bool knowsJob = false;
    for (Change const& change : ChangesOf(files[0])) {
        auto const& value = change.values.front().second;
        knowsJob |= change.isPicture && value == RecordedValue(std::string("MAIN"));
        if (!change.isPicture) {
            EXPECT_EQ(value, RecordedValue(next++));
        }
    }
    EXPECT_TRUE(knowsJob);
    EXPECT_EQ(next, 40);
    EXPECT_EQ(Recording(files[0]).Events().size(), 2);
    EXPECT_EQ(Recording(files[0]).Contents().controllers.size(), 1);
    EXPECT_LE(box.Status().samples, 24);
}

TEST_F(BlackBoxTest, WritesTheMinuteBeforeAndJoinsWhatHappensInOneWindow) {
    WriteTwoIncidents(Options());
}

TEST_F(BlackBoxTest, DoesTheSameFromAFileThatForgets) {
    auto options = Options();
    options.ringFile = folder_.Path() / "ring.harvlink";
    WriteTwoIncidents(options);
    EXPECT_GT(Recording(options.ringFile).Info().begin, Begin + 50 * Second);
    EXPECT_THROW((BlackBox{{.ringFile = "/sys/ring.harvlink"}}), RecordingError);
}

TEST_F(BlackBoxTest, SaysWhatIsMissingInAnIncident) {
    auto options = Options();
    options.writeInterval = std::chrono::hours(1); // everything is taken when it closes
    for (bool const isMemoryFull : {false, true}) {
        options.capacity = isMemoryFull ? 7 : 5;
        BlackBox box(options);
        Cell const press(box, isMemoryFull ? "press2" : "press1");
        for (int i = 0; i < 7; ++i) {
            box.Put(At(i * Second, press.number, {std::int64_t{i}}));
        }
        box.NoteLoss(10, Begin + 7 * Second, 84 * Second);
        box.Put(EventAt(7 * Second, press.controller, "servo-off"));
        box.Close();
        EXPECT_EQ(box.Status().dropped, isMemoryFull ? 10 : 12);
        ASSERT_EQ(box.Status().incidents.size(), 1);
        auto const gaps = Recording(box.Status().incidents[0]).Gaps();
        ASSERT_EQ(gaps.size(), 1);
        EXPECT_EQ(gaps[0].gap.count, isMemoryFull ? 10 : 12);
        EXPECT_EQ(gaps[0].gap.duration, isMemoryFull ? 0 : 2 * Second);
    }
}

TEST_F(BlackBoxTest, SaysHowMuchOfTheTimeBeforeDidNotFit) {
    auto options = Options();
    options.capacity = 4;
    BlackBox box(options);
    Cell const press(box);
    for (int i = 0; i < 8; ++i) {
        box.Put(At(i * Second, press.number, {std::int64_t{i}}));
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // it is taken out of the queue
    }
    box.Put(EventAt(7 * Second + 1, press.controller, "servo-off"));
    box.Close();
    ASSERT_EQ(box.Status().incidents.size(), 1);
    auto const file = box.Status().incidents[0];
    std::uint64_t there = 0;
    for (Change const& change : ChangesOf(file)) {
        there += change.isPicture ? 0 : 1;
    }
    auto const gaps = Recording(file).Gaps();
    ASSERT_EQ(gaps.size(), 1);
    EXPECT_EQ(gaps[0].gap.count + there, 8);
    EXPECT_EQ(gaps[0].gap.reason, "the memory for the time before was full");
}

} // namespace
} // namespace harvlink::recording
