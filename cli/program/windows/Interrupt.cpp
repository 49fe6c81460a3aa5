#include "cli/program/Interrupt.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string_view>

#include <windows.h>

#include "cli/output/Progress.h"
#include "cli/program/ScratchSpace.h"
#include "cli/program/Terminal.h"

namespace harvlink::cli {
namespace {

constexpr int StatusOfInterrupt = 130; // as shells have it

/// What the handler, which runs on a thread of its own, shares with the Interrupts that live.
struct Shared {
    HANDLE hasCome = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::mutex counting;
    int living = 0;
    bool isTaken = false; ///< the living ones have had theirs
    std::recursive_mutex ending; ///< held by SignalsHeldBack, and by the handler that ends the process
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

/// Whether an Interrupt lives that has had none yet: it has one then.
bool IsTakenByOne() {
    Shared& shared = Common();
    std::lock_guard const lock(shared.counting);
    if (shared.living == 0 || shared.isTaken) {
        return false;
    }
    shared.isTaken = true;
    ::SetEvent(shared.hasCome);
    return true;
}

/// Ctrl-C, Ctrl-Break, a window that is closed, the end of the session.
BOOL WINAPI Handle(DWORD kind) {
    if (IsTakenByOne()) {
        if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) {
            ::Sleep(
                INFINITE); // after the return of the handler the system ends the process, which it gives some seconds
        }
        return TRUE;
    }
    std::lock_guard const lock(Common().ending);
    ScratchSpace::RemoveAtSignal();
    Say(Progress::IsShown() ? "\r\x1b[Kharvlink: interrupted\n" : "harvlink: interrupted\n");
    RestoreStreams();
    ::TerminateProcess(::GetCurrentProcess(), StatusOfInterrupt);
    return TRUE;
}

} // namespace

Interrupted::Interrupted(std::string const& text) : std::runtime_error(text), exitStatus_(StatusOfInterrupt) {}

void EndBySignals() {
    (void)Common();
    ::SetConsoleCtrlHandler(Handle, TRUE);
}

Interrupt::Interrupt() {
    Shared& shared = Common();
    std::lock_guard const lock(shared.counting);
    if (shared.living++ == 0) {
        ::ResetEvent(shared.hasCome);
        shared.isTaken = false;
    }
}

Interrupt::~Interrupt() {
    Shared& shared = Common();
    std::lock_guard const lock(shared.counting);
    --shared.living;
}

bool Interrupt::Wait(std::chrono::milliseconds time) const {
    constexpr std::chrono::milliseconds Longest = std::chrono::hours(24 * 40); // the largest number stands for no end
    auto const bounded = std::clamp(time, std::chrono::milliseconds(0), Longest);
    return ::WaitForSingleObject(Common().hasCome, static_cast<DWORD>(bounded.count())) == WAIT_OBJECT_0;
}

// There is no signal for a closed pipe: writing to it fails.
BrokenPipesIgnored::BrokenPipesIgnored() = default;
BrokenPipesIgnored::~BrokenPipesIgnored() = default;

SignalsHeldBack::SignalsHeldBack() {
    Common().ending.lock();
}

SignalsHeldBack::~SignalsHeldBack() {
    Common().ending.unlock();
}

} // namespace harvlink::cli
