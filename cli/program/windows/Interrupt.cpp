#include "cli/program/Interrupt.h"

#include <atomic>
#include <mutex>
#include <string_view>

#include <windows.h>

#include "cli/output/Progress.h"
#include "cli/program/ScratchSpace.h"

namespace harvlink::cli {
namespace {

constexpr int statusOfInterrupt = 130; // as shells have it

/// What the handler, which runs on a thread of its own, shares with the Interrupts that live.
struct Shared {
    HANDLE hasCome = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::mutex counting;
    std::atomic<int> living = 0;
    std::atomic<bool> isTaken = false;
};

Shared& Common() {
    static auto* const shared =
        new Shared; // NOLINT(cppcoreguidelines-owning-memory): the handler may run at the very end
    return *shared;
}

void Say(std::string_view text) {
    DWORD written = 0;
    ::WriteFile(::GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

/// The first one comes to those that live, the second ends the process.
BOOL WINAPI Handle(DWORD /*kind*/) {
    Shared& shared = Common();
    if (shared.living > 0 && !shared.isTaken.exchange(true)) {
        ::SetEvent(shared.hasCome);
        return TRUE;
    }
    ScratchSpace::RemoveAtSignal();
    Say(Progress::IsShown() ? "\r\x1b[Kharvlink: interrupted\n" : "harvlink: interrupted\n");
    ::TerminateProcess(::GetCurrentProcess(), statusOfInterrupt);
    return TRUE;
}

} // namespace

Interrupted::Interrupted(std::string const& text) : std::runtime_error(text), exitStatus_(statusOfInterrupt) {}

void EndBySignals() {
    (void)Common();
    ::SetConsoleCtrlHandler(Handle, TRUE);
}

Interrupt::Interrupt() {
    Shared& shared = Common();
    std::lock_guard const lock(shared.counting);
    if (shared.living == 0) {
        ::ResetEvent(shared.hasCome);
        shared.isTaken = false;
    }
    ++shared.living;
}

Interrupt::~Interrupt() {
    Shared& shared = Common();
    std::lock_guard const lock(shared.counting);
    --shared.living;
}

bool Interrupt::Wait(std::chrono::milliseconds time) const {
    constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 40); // the largest number stands for no end
    auto const bounded = std::clamp(time, std::chrono::milliseconds(0), longest);
    return ::WaitForSingleObject(Common().hasCome, static_cast<DWORD>(bounded.count())) == WAIT_OBJECT_0;
}

// There is no signal for a closed pipe: writing to it fails.
BrokenPipesIgnored::BrokenPipesIgnored() = default;
BrokenPipesIgnored::~BrokenPipesIgnored() = default;

// The handler removes files on its own thread, and what was begun here may be left behind.
SignalsHeldBack::SignalsHeldBack() = default;
SignalsHeldBack::~SignalsHeldBack() = default;

} // namespace harvlink::cli
