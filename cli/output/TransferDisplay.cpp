#include "cli/output/TransferDisplay.h"

#include <ostream>
#include <utility>

#include <fmt/format.h>

namespace harvlink::cli {

namespace {

constexpr std::chrono::milliseconds Patience{500};
constexpr std::chrono::milliseconds Refresh{100};
constexpr char const* EraseLine = "\r\x1b[K";

} // namespace

TransferDisplay::TransferDisplay(Output& output, std::string text)
    : console_(output.console()), text_(std::move(text)) {
    if (output.Interactive()) {
        thread_ = std::thread([this] { Show(); });
    }
}

TransferDisplay::~TransferDisplay() {
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

void TransferDisplay::Show() {
    std::unique_lock lock(mutex_);
    auto const hasEnded = [this] { return hasEnded_; };
    if (ended_.wait_for(lock, Patience, hasEnded)) {
        return;
    }
    do {
        std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start_;
        console_.err << fmt::format("{}{}  {:.1f} s", EraseLine, text_, elapsed.count()) << std::flush;
    } while (!ended_.wait_for(lock, Refresh, hasEnded));
    console_.err << EraseLine << std::flush;
}

} // namespace harvlink::cli
