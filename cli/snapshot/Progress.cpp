#include "cli/snapshot/Progress.h"

#include <ostream>

#include "cli/output/Words.h"
#include "words/text/Text.h"

namespace harvlink::cli::snapshot {

namespace {

constexpr std::chrono::milliseconds Refresh{100};
constexpr char const* EraseLine = "\r\x1b[K";

} // namespace

Progress::~Progress() {
    if (isShown_) {
        output_.console().err << EraseLine << std::flush;
    }
}

void Progress::Show(std::string_view what) {
    auto const now = std::chrono::steady_clock::now();
    if (output_.Interactive() && now - last_ >= Refresh) {
        output_.console().err << EraseLine << "Reading " << Printable(what) << std::flush;
        last_ = now;
        isShown_ = true;
    }
}

} // namespace harvlink::cli::snapshot
