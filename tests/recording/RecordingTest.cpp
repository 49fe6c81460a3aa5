#include <cmath>
#include <limits>
#include <sstream>

#include <gtest/gtest.h>

#include "recording/model/TimeText.h"
#include "recording/read/CsvExport.h"
#include "recording/read/History.h"
#include "recording/store/Schema.h"
#include "recording/write/Cut.h"
#include "recording/write/SampleStore.h"
#include "support/RecordedSamples.h"
#include "support/ScratchFolder.h"
#include "words/text/InputError.h"

namespace harvlink::recording {
namespace {

class RecordingTest : public testing::Test {
protected:
    template <typename Fill>
    void Record(Fill const& fill, StoreOptions const& options = {}) {
        SampleStore store(path_, options);
        Cell const cell(store);
        store.Begin();
        fill(store, cell);
        store.Commit();
        store.Close();
    }

    std::int64_t Number(std::string const& sql) { return Database(path_, Database::Access::Read).Number(sql); }

    test::ScratchFolder folder_;
    std::filesystem::path path_ = folder_.Path() / "x.harvlink";
};

TEST(RecordingTimes, OfAllYearsAndForms) {
    constexpr Microseconds Second = 1'000'000;
    for (auto const& [text, time, whole] :
         {std::tuple("1970-01-01", 0LL, "1970-01-01T00:00:00.000000Z"),
          {"1969-12-31T23:59:59.25Z", -Second * 3 / 4, "1969-12-31T23:59:59.250000Z"},
          {"2000-02-29 12:30", 951'827'400 * Second, "2000-02-29T12:30:00.000000Z"},
          {"2024-12-31T23:59:59.999999", 1'735'689'600 * Second - 1, "2024-12-31T23:59:59.999999Z"},
          {"9999-12-31 23:59:59Z", 253'402'300'799 * Second, "9999-12-31T23:59:59.000000Z"},
          {"1600-03-01T00:00", -11'670'912'000 * Second, "1600-03-01T00:00:00.000000Z"},
          {"+1.5s", 101'500'000LL, "1970-01-01T00:01:41.500000Z"},
          {"-1m", 140'000'000LL, "1970-01-01T00:02:20.000000Z"}}) {
        EXPECT_EQ(ParseTime(text, 100 * Second, 200 * Second), time) << text;
        EXPECT_EQ(FormatTime(time), whole);
    }
    EXPECT_EQ(FormatTimeForName(-1), "19691231T235959Z");
    for (char const* const wrong :
         {"", "2026", "2026-02-30", "2026-13-01", "2026-00-10", "2026-11-22T24:00", "2026-11-22T03:60", "2026-11-22T03",
          "2026-11-22T03:15:00.", "2026-11-22T03:15:00+01", "2026-11-22T03:15:00.0000000000", "2026-11-22x"}) {
        EXPECT_THROW(ParseTime(wrong, 0, 0), words::InputError) << wrong;
    }
}

TEST_F(RecordingTest, GivesBackExactlyWhatCameAndOnceWhatDidNotChange) {
    std::vector<RecordedValue> const reals{0.0,
                                           -0.0,
                                           0.1,
                                           -1234.567,
                                           1e300,
                                           std::nextafter(1.0, 2.0),
                                           std::numeric_limits<double>::infinity(),
                                           std::numeric_limits<double>::denorm_min(),
                                           5.0};
    Record([&](SampleStore& store, Cell const& cell) {
        Microseconds time = 0;
        for (RecordedValue const& real : reals) {
            for (int repeat = 0; repeat < 3; ++repeat) {
                store.Put(At(time += 1000, cell.position, {real, std::int64_t{1} << 60}));
            }
        }
        store.Put(At(time += 1000, cell.job, {std::string("\xE9t\xE9\0x", 5)}));
    });
    auto const changes = ChangesOf(path_);
    ASSERT_EQ(changes.size(), reals.size() + 1);
    for (std::size_t i = 0; i < reals.size(); ++i) {
        auto const got = std::get<double>(changes[i].values[0].second);
        auto const put = std::get<double>(reals[i]);
        EXPECT_TRUE(got == put && std::signbit(got) == std::signbit(put)) << i;
        EXPECT_EQ(changes[i].values.size(), i == 0 ? 2 : 1);
        EXPECT_EQ(changes[i].moment.answer, Begin + static_cast<Microseconds>(3 * i + 1) * 1000);
        EXPECT_EQ(changes[i].moment.request, changes[i].moment.answer - 2000);
    }
    EXPECT_EQ(changes.back().values[0].second, RecordedValue(std::string("\xE9t\xE9\0x", 5)));
}

TEST_F(RecordingTest, KeepsTimesOfARoundInOneRowAndViewsAgreeWithTheReader) {
    Record([&](SampleStore& store, Cell const& cell) {
        store.Put(At(0, cell.position, {1.5, 2.5}));
        auto sample = At(700, cell.number, {std::int64_t{7}});
        sample.moment.request += 300;
        store.Put(sample);
        store.Put({cell.number, {RecordedQuality::Refused, 45063, Begin + 5000, Begin + 6000, 77 * Second + 6000}, {}});
        auto late = At(9 * Second, cell.number, {std::int64_t{7}});
        late.moment.request -= 3 * Second;
        store.Put(late);
    });
    auto const changes = ChangesOf(path_);
    ASSERT_EQ(changes.size(), 4);
    EXPECT_EQ(changes[0].sequence, changes[1].sequence);
    Database database(path_, Database::Access::Read);
    Statement row(database,
                  "SELECT request_us, answer_us, monotonic_us, quality, code, value, time FROM samples ORDER BY "
                  "sequence, item");
    for (Change const& change : changes) {
        for (std::size_t i = 0; i < std::max<std::size_t>(change.values.size(), 1); ++i) {
            ASSERT_TRUE(row.Step());
            EXPECT_EQ(row.Integer(0), change.moment.request);
            EXPECT_EQ(row.Integer(1), change.moment.answer);
            EXPECT_EQ(row.Integer(2), change.moment.monotonic);
            EXPECT_EQ(row.Integer(3), static_cast<int>(change.moment.quality));
            EXPECT_EQ(row.Integer(4), change.moment.code);
            EXPECT_EQ(row.Value(5), change.values.empty() ? RecordedValue() : change.values[i].second);
        }
    }
    EXPECT_FALSE(row.Step());
    EXPECT_EQ(changes[1].moment.request, Begin - 1000);
    EXPECT_EQ(changes[2].moment.code, 45063);
    EXPECT_EQ(changes[3].values.size(), 1); // it is known again, so it is written again
    EXPECT_EQ(changes[3].moment.request, Begin + 6 * Second - 2000);
}

TEST_F(RecordingTest, KeepsTheOrderWhenTheClockIsSetBackAndGoesOnInAFileThatExists) {
    constexpr Microseconds Hour = 3600 * Second;
    Record([&](SampleStore& store, Cell const& cell) {
        store.Put(At(0, cell.position, {1.0, 2.0}));
        store.Put(At(Second, cell.number, {std::int64_t{1}}, Hour));
    });
    Record([&](SampleStore& store, Cell const& cell) { store.Put(At(100 * Second, cell.number, {std::int64_t{2}})); });
    auto const changes = ChangesOf(path_);
    Microseconds last = -1;
    std::int64_t lastSequence = 0;
    for (Change const& change : changes) {
        EXPECT_GE(change.moment.monotonic, last);
        EXPECT_GE(change.sequence, lastSequence);
        last = change.moment.monotonic;
        lastSequence = change.sequence;
    }
    ASSERT_EQ(changes.size(), 4); // with the picture of the second segment
    EXPECT_TRUE(changes[1].isPicture);
    EXPECT_EQ(changes[2].moment.answer, Begin + Second - Hour);
    EXPECT_EQ(Number("SELECT count(*) FROM segments"), 3);
    EXPECT_EQ(Number("SELECT count(*) FROM readings"), 3);
}

TEST_F(RecordingTest, DropsTheOldestInWholeSegmentsAndKeepsAFullPicture) {
    constexpr std::uint64_t Most = 4 << 20;
    SampleStore store(path_, {.maxBytes = Most});
    Cell const cell(store);
    for (int round = 0; round < 100; ++round) {
        store.Begin();
        store.Put(At(round * Second, cell.job, {std::string("CONSTANT")}));
        for (int i = 0; i < 2000; ++i) {
            store.Put(At(round * Second + i * 400, cell.position, {round + i * 0.1234567, 1.0}));
        }
        store.Commit();
        EXPECT_LE(store.FileBytes(), Most);
    }
    store.Close();
    auto const changes = ChangesOf(path_);
    EXPECT_GT(changes.front().moment.answer, Begin + 30 * Second);
    ASSERT_TRUE(changes.front().isPicture);
    EXPECT_EQ(std::get<std::string>(changes[1].values[0].second), "CONSTANT");
    EXPECT_EQ(
        Number("SELECT count(*) FROM samples WHERE item = 'job 0.name' AND sequence = (SELECT first_sequence FROM "
               "segments ORDER BY id LIMIT 1)"),
        1);
}

TEST_F(RecordingTest, CutBeginsWithAllThatIsKnown) {
    Record([&](SampleStore& store, Cell const& cell) {
        store.Put(At(0, cell.job, {std::string("MAIN")}));
        for (int i = 0; i < 10; ++i) {
            store.Put(At(i * Second, cell.position, {i * 0.5, -1.0}));
        }
        store.Put(RecordedEvent{Begin + 5 * Second, 82 * Second, cell.controller, "servo-off", 1, 0, 0, "", ""});
    });
    Recording recording(path_);
    auto const cut = folder_.Path() / "cut.harvlink";
    Cut(recording, {Begin + 4 * Second + 1, Begin + 7 * Second}, cut);
    auto const changes = ChangesOf(cut);
    ASSERT_EQ(changes.size(), 4);
    EXPECT_EQ(std::get<double>(changes[0].values[0].second), 2.0);
    EXPECT_EQ(changes[0].moment.answer, Begin + 4 * Second + 1);
    EXPECT_EQ(std::get<std::string>(changes[1].values[0].second), "MAIN");
    EXPECT_EQ(std::get<double>(changes[3].values[0].second), 3.0);
    EXPECT_EQ(Recording(cut).Events().size(), 1);
    EXPECT_THROW(Cut(recording, {}, cut), RecordingError);
}

TEST_F(RecordingTest, ExportsRowsOrColumnsWithUnits) {
    Record([&](SampleStore& store, Cell const& cell) {
        store.Put(At(0, cell.position, {1.5, 2.0}));
        store.Put(At(250'000, cell.job, {std::string("A,\"B\"")}));
        store.Put({cell.number, {RecordedQuality::Stale, 36876, Begin, Begin + 400'000, 77 * Second + 400'000}, {}});
        store.Put(At(600'000, cell.position, {-0.25, 2.0}));
    });
    std::string const t = "2026-09-21T14:13:20.";
    struct Case {
        CsvOptions options;
        std::string text;
    };
    Recording recording(path_);
    Case const cases[]{
        {{},
         "time,seconds,controller,item,unit,value,quality\n" + t +
             "000000Z,0.000000,press1,position R1 base.x,mm,1.5,good\n" + t +
             "000000Z,0.000000,press1,position R1 base.y,mm,2,good\n" + t +
             "250000Z,0.250000,press1,job 0.name,,\"A,\"\"B\"\"\",good\n" + t +
             "400000Z,0.400000,press1,register 3,,,stale\n" + t +
             "600000Z,0.600000,press1,position R1 base.x,mm,-0.25,good\n"},
        {{.wide = true, .every = std::chrono::milliseconds(300), .decimalComma = true, .readings = {1, 2}},
         "time;seconds;press1 position R1 base.x [mm];press1 position R1 base.y [mm];press1 register 3\n" + t +
             "000000Z;0,000000;1,5;2;\n" + t + "300000Z;0,300000;1,5;2;\n" + t + "600000Z;0,600000;-0,25;2;\n"},
        {{.range = {Begin + 300'000}, .wide = true, .readings = {1, 3}},
         "time,seconds,press1 position R1 base.x [mm],press1 position R1 base.y [mm],press1 job 0.name\n" + t +
             "600000Z,0.000000,-0.25,2,\"A,\"\"B\"\"\"\n"},
    };
    for (Case const& wanted : cases) {
        std::ostringstream out;
        ExportCsv(recording, wanted.options, out);
        EXPECT_EQ(out.str(), wanted.text);
    }
}

TEST_F(RecordingTest, ExportEndsWhenItsTargetTakesNothing) {
    constexpr int Count = 100'000;
    Record([&](SampleStore& store, Cell const& cell) {
        for (int i = 0; i < Count; ++i) {
            store.Put(At(i * 1000, cell.number, {std::int64_t{i}}));
        }
    });
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    Recording recording(path_);
    EXPECT_LT(ExportCsv(recording, {}, out), Count / 2);
}

TEST_F(RecordingTest, HistoryHasAGapWhereNobodyRecorded) {
    Record([&](SampleStore& store, Cell const& cell) { store.Put(At(0, cell.number, {std::int64_t{7}})); });
    Record([&](SampleStore& store, Cell const& cell) {
        store.Put(At(100 * Second, cell.number, {std::int64_t{7}}));
        store.Put(At(101 * Second, cell.position, {1.0, 2.0}));
    });
    HistoryQuery query{.controller = "press1", .items = {{"register 3", 0}}, .to = Begin + 200 * Second};
    struct Case {
        Microseconds from;
        std::vector<RecordedValue> values;
    };
    RecordedValue const seven = std::int64_t{7};
    for (Case const& each : {Case{Begin - Second, {seven, {}, seven}}, Case{Begin + 50 * Second, {{}, seven}},
                             Case{Begin + 150 * Second, {seven}}}) {
        query.from = each.from;
        std::vector<RecordedValue> values;
        HistoryResult const result = ReadHistory(path_, query);
        for (auto const& point : result.series[0].points) {
            values.push_back(point.last);
        }
        EXPECT_EQ(values, each.values);
    }
}

TEST_F(RecordingTest, HistoryOfASilentControllerEndsWithAGap) {
    Record([&](SampleStore& store, Cell const& cell) {
        store.Put(At(Second, cell.number, {std::int64_t{7}}));
        auto stale = At(9 * Second, cell.number, {});
        stale.moment.quality = RecordedQuality::Stale;
        store.Put(stale);
        for (int i = 10; i < 100; ++i) { // the file repeats all that it knows now and then
            store.Put(At(i * Second, cell.position, {1.0 * i, 2.0}));
        }
    });
    HistoryQuery query{.controller = "press1", .items = {{"register 3", 0}}, .to = Begin + 200 * Second};
    for (Microseconds const from : {Begin, Begin + 5 * Second}) { // before and after it had the value
        query.from = from;
        auto const points = ReadHistory(path_, query).series[0].points;
        ASSERT_EQ(points.size(), 2U) << from;
        EXPECT_EQ(points[0].last, RecordedValue(std::int64_t{7}));
        EXPECT_EQ(points[1].last, RecordedValue());
        EXPECT_EQ(points[1].time, Begin + 9 * Second);
    }
    query.from = Begin + 50 * Second;
    auto const points = ReadHistory(path_, query).series[0].points;
    EXPECT_TRUE(std::all_of(points.begin(), points.end(), [](auto const& point) { return point.last.index() == 0; }));
}

TEST_F(RecordingTest, RefusesWhatIsNotARecordingOrNewer) {
    Record([](SampleStore& store, Cell const& cell) { store.Put(At(0, cell.number, {std::int64_t{1}})); });
    auto const problem = [this](std::string const& change) {
        Database(path_, Database::Access::Write).Run(change);
        try {
            Recording{path_};
        } catch (RecordingError const& error) {
            return std::string(error.what()).substr(path_.string().size());
        }
        return std::string();
    };
    EXPECT_EQ(problem("PRAGMA user_version = 7"),
              ": the recording has version 7 of the schema, this program reads up to version 1. Use a newer program");
    EXPECT_THROW(SampleStore{path_}, RecordingError);
    EXPECT_EQ(problem("PRAGMA user_version = 1; UPDATE readings SET slot = 120"),
              ": the file is damaged: its table readings contradicts itself");
    EXPECT_EQ(problem("PRAGMA application_id = 1"), ": this is not a recording");
    test::WriteFile(path_, "Not a recording, but longer than the header of one, which has a hundred bytes. "
                           "Not a recording, but longer than the header of one, which has a hundred bytes.");
    EXPECT_THROW(Recording{path_}, RecordingError);
    EXPECT_THROW(Recording{"missing.harvlink"}, RecordingError);
}

/// A file as the first programs wrote it: what is recorded today must be readable for years. A reader relies on the names of tables
/// and columns, so a later file may have more of both.
TEST_F(RecordingTest, ReadsTheFirstVersionWhateverElseTheFileHas) {
    Database(path_, Database::Access::Write)
        .Run(test::ContentOf(HARVLINK_SOURCE_DIR "/tests/recording/version-1.sql") +
             "ALTER TABLE segments ADD COLUMN colour TEXT; CREATE TABLE weather(temperature REAL);");
    auto const check = [](std::filesystem::path const& path) {
        Recording recording(path);
        EXPECT_EQ(recording.Contents().controllers.at(0).encoding, "utf-8");
        EXPECT_GE(recording.Info().samples, 12); // a part has fewer, as it keeps changes alone
        EXPECT_EQ(recording.Events().back().event.text, "OUT OF RANGE");
        std::ostringstream out;
        ExportCsv(recording, {.wide = true, .readings = {5, 6}}, out);
        EXPECT_NE(out.str().find(",Pr\\xEAt,7\n"), std::string::npos) << out.str(); // not UTF-8, and stored as it came
        EXPECT_NE(out.str().find(",Pr\\xEAt,9\n"), std::string::npos) << out.str();
    };
    check(path_);
    Recording recording(path_);
    Cut(recording, {}, folder_.Path() / "cut.harvlink");
    check(folder_.Path() / "cut.harvlink");
    SampleStore store(path_); // goes on in it
    EXPECT_EQ(store.AddController({"press1", "10.0.0.2", "latin-1"}), 1);
    store.Begin();
    store.Commit();
    store.Close();
    EXPECT_EQ(Recording(path_).Contents().controllers.at(0), (RecordedController{"press1", "10.0.0.2", "latin-1"}));
}

} // namespace
} // namespace harvlink::recording
