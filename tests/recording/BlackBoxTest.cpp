#include "recording/blackbox/BlackBox.h"

#include <gtest/gtest.h>

#include "support/RecordedSamples.h"
#include "support/ScratchFolder.h"

namespace harvlink::recording {
namespace {

RecordedEvent EventAt(Microseconds time, std::uint32_t controller, std::string const& kind, std::int64_t after = 0) {
    return {Begin + time, 77 * Second + time, controller, kind, 0, after, 0, "", ""};
}

TEST(BlackBoxTest, WritesTheMinuteBeforeAndJoinsWhatHappensInOneWindow) {
    test::ScratchFolder const folder;
    BlackBox box({.folder = folder.Path(),
                  .before = std::chrono::seconds(10),
                  .after = std::chrono::seconds(5),
                  .writeInterval = std::chrono::milliseconds(1)});
    Cell const press(box, "press1");
    Cell const other(box, "../weld");
    box.Put(At(0, press.job, {std::string("MAIN")}));
    box.Put(At(0, press.position, {-1.0, 9.0}));
    for (int i = 0; i < 100; ++i) {
        box.Put(At(i * Second, press.number, {std::int64_t{i}}));
        box.Put(At(i * Second, other.number, {std::int64_t{1000 + i}}));
        if (i == 30 || i == 34) { // the second within the window of the first
            box.Put(EventAt(i * Second + 1, press.controller, "alarm-raised", 4107));
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
    EXPECT_LE(box.Status().samples, 24);
}

} // namespace
} // namespace harvlink::recording
