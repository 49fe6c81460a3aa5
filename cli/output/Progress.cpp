#include "cli/output/Progress.h"

#include <algorithm>
#include <atomic>
#include <ostream>
#include <utility>

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

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a signal handler reaches nothing else
std::atomic<bool> isOnTerminal = false;
static_assert(std::atomic<bool>::is_always_lock_free);

constexpr int BarWidth = 20;

std::string Bar(double fraction) {
    int const filled = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * BarWidth);
    return fmt::format("  [{:#<{}}{:-<{}}]", "", filled, "", BarWidth - filled);
}

std::string SizeText(double bytes) {
    constexpr double Step = 1000.0;
    return bytes < Step          ? fmt::format("{:.0f} bytes", bytes)
           : bytes < Step * Step ? fmt::format("{:.0f} kB", bytes / Step)
                                 : fmt::format("{:.1f} MB", bytes / Step / Step);
}

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
        bar_.clear();
    }
}

void Progress::Count(std::string_view what, std::size_t number, std::size_t total) {
    if (thread_.joinable()) {
        std::lock_guard const lock(mutex_);
        text_ = Printable(fmt::format("{} {} of {}", what, number, total));
        bar_ = Bar(static_cast<double>(number) / static_cast<double>(std::max<std::size_t>(total, 1)));
    }
}

void Progress::Follow(std::function<std::uint64_t()> bytes, std::uint64_t total) {
    if (thread_.joinable()) {
        std::lock_guard const lock(mutex_);
        bytes_ = std::move(bytes);
        totalBytes_ = total;
    }
}

std::string Progress::Transferred(double seconds) const {
    if (!bytes_) {
        return {};
    }
    auto const bytes = static_cast<double>(bytes_());
    auto const total = static_cast<double>(totalBytes_);
    // Datagrams have headers, so a little more is sent than the file has.
    std::string const amount =
        totalBytes_ == 0 ? SizeText(bytes) : fmt::format("{} of {}", SizeText(std::min(bytes, total)), SizeText(total));
    return fmt::format("  {}{}  {}/s", amount, totalBytes_ == 0 ? "" : Bar(bytes / total),
                       SizeText(bytes / std::max(seconds, 0.001)));
}

std::string Progress::Line() const {
    std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start_;
    std::string const end = fmt::format("{}{}  {:.1f} s", bar_, Transferred(elapsed.count()), elapsed.count());
    return fmt::format("{}{}", FirstColumns(text_, LongestLine - std::min(LongestLine, end.size())), end);
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
        isOnTerminal = true;
        lock.lock();
        isShown = true;
    }
    if (isShown) {
        isOnTerminal = false;
        console_.err << EraseLine << std::flush;
    }
}

bool Progress::IsShown() {
    return isOnTerminal;
}

} // namespace harvlink::cli
