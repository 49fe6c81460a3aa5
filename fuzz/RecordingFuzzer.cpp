#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

#include "recording/read/KnownState.h"
#include "recording/write/SampleStore.h"

namespace {

using namespace harvlink::recording; // NOLINT(google-build-using-namespace): a program of one page

std::string ScratchFile() {
    return "/dev/shm/harvlink-fuzz-" + std::to_string(getpid());
}

/// A recording with a value of each type, an event and a gap.
std::string WholeRecording() {
    std::string const path = ScratchFile();
    std::filesystem::remove(path);
    {
        SampleStore store(path);
        RecordedReading reading;
        reading.controller = store.AddController({"press1", "127.0.0.1"});
        reading.name = "all";
        reading.kind = "all";
        reading.items = {{"i", "", RecordedType::Integer, 1},
                         {"r", "mm", RecordedType::Real, 1000},
                         {"t", "", RecordedType::Text, 1}};
        auto const id = store.AddReading(reading);
        store.Begin();
        for (int i = 1; i < 20; ++i) {
            RecordedMoment moment;
            moment.request = moment.answer = moment.monotonic = i * 1'000'000;
            moment.quality = i % 7 == 0 ? RecordedQuality::Stale : RecordedQuality::Good;
            store.Put(RecordedSample{id, moment, {std::int64_t{i}, i * 0.3, std::to_string(i)}});
        }
        store.Put(RecordedEvent{
            .time = 20'000'000, .monotonic = 20'000'000, .controller = 1, .kind = "job", .text = "A", .card = ""});
        store.Put(
            RecordedGap{.time = 20'000'000, .monotonic = 20'000'000, .duration = 5, .count = 2, .reason = "disk"});
        store.Commit();
        store.Close();
    }
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void ReadAll(std::string const& path) {
    Recording recording(path);
    recording.Info();
    recording.Events();
    recording.Gaps();
    KnownState state(recording.Contents());
    int changes = 0;
    recording.ForEachChange({}, true, [&](Change const& change) {
        state.Apply(change);
        constexpr int Enough = 10'000;
        return ++changes < Enough;
    });
}

} // namespace

/// A recording is damaged: each four bytes of the input are a place and the byte that stands there. It is read to its end, or
/// refused.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static std::string const whole = WholeRecording();
    std::string damaged = whole;
    for (std::size_t i = 0; i + 4 <= size; i += 4) {
        std::size_t const place = data[i] | (std::size_t{data[i + 1]} << 8U) | (std::size_t{data[i + 2]} << 16U);
        damaged[place % damaged.size()] = static_cast<char>(data[i + 3]);
    }
    std::string const path = ScratchFile();
    std::ofstream(path, std::ios::binary | std::ios::trunc) << damaged;
    try {
        ReadAll(path);
    } catch (RecordingError const&) { // NOLINT(bugprone-empty-catch): refused
    }
    unlink(path.c_str());
    return 0;
}
