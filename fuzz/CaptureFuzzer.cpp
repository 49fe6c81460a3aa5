#include <cstdio>
#include <map>

#include "Input.h"
#include "recording/capture/CaptureFile.h"
#include "simulator/replay/CapturedTraffic.h"

/// Any file is read as a capture, to its end or to a clear error.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace harvlink; // NOLINT(google-build-using-namespace): a program of one page
    if (size == 0) {
        return 0; // no file in memory is empty
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): it is only read
    std::FILE* const file = fmemopen(const_cast<std::uint8_t*>(data), size, "rb");
    fuzz::Require(file != nullptr, "a file in memory opens");
    try {
        recording::CaptureFile capture(file, "input", {10040, 10041});
        auto const traffic = simulator::ReadTraffic(capture);
        for (auto const& [address, of] : traffic) {
            fuzz::Require(of.Begin() <= of.End(), "a capture begins before it ends");
        }
    } catch (recording::RecordingError const&) { // NOLINT(bugprone-empty-catch): refused
    }
    return 0;
}
