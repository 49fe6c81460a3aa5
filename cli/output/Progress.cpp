#include "cli/output/Progress.h"

#include <algorithm>
#include <ostream>

#include <fmt/format.h>

#include "words/text/Printable.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

constexpr std::chrono::milliseconds FirstShown{500};
constexpr std::chrono::milliseconds Refresh{100};
// A line that wraps could not be wiped off.
constexpr std::size_t LongestLine = 79;
constexpr char const* EraseLine = "\r\x1b[K";

} // namespace

Progress::Progress(Output& output, std::string_view text) : console_(output.console()), text_(Printable(text)) {
    if (output.Interactive()) {
        thread_ = std::thread([this] { Redraw(); });
    }
}

Progress::~Progress() {
    if (!thread_.joinable()) {
        return;
    }
    {
        std::lock_guard const lock(mutex_);
        hasEnded_ = true;
    }
    ended_.notify_one();
    thread_.join();
}

void Progress::Show(std::string_view text) {
    if (thread_.joinable()) {
        std::lock_guard const lock(mutex_);
        text_ = Printable(text);
    }
}

void Progress::Count(std::string_view what, std::size_t number, std::size_t total) {
    Show(fmt::format("{} {} of {}", what, number, total));
}

std::string Progress::Line() const {
    std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start_;
    std::string const time = fmt::format("  {:.1f} s", elapsed.count());
    return fmt::format("{}{}", FirstColumns(text_, LongestLine - time.size()), time);
}

void Progress::Redraw() {
    std::unique_lock lock(mutex_);
    auto const hasEnded = [this] { return hasEnded_; };
    bool isShown = false;
    while (!ended_.wait_for(lock, isShown ? Refresh : FirstShown, hasEnded)) {
        std::string const line = Line();
        // A terminal that is stuck must not stop the command, which may have to stop a robot.
        lock.unlock();
        console_.err << EraseLine << line << std::flush;
        lock.lock();
        isShown = true;
    }
    if (isShown) {
        console_.err << EraseLine << std::flush;
    }
}

} // namespace harvlink::cli
