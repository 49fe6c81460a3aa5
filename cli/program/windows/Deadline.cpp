#include "cli/program/Deadline.h"

#include <utility>

#include <windows.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Terminal.h"

namespace harvlink::cli {

namespace {

HANDLE timer = nullptr;

void CALLBACK End(void* /*context*/, BOOLEAN /*isOver*/) {
    RestoreStreams();
    ::TerminateProcess(::GetCurrentProcess(), ExitStatus::Failure);
}

} // namespace

Deadline::Deadline(std::chrono::milliseconds time) {
    ::CreateTimerQueueTimer(&timer, nullptr, End, nullptr, static_cast<DWORD>(time.count()), 0, WT_EXECUTEONLYONCE);
}

Deadline::~Deadline() {
    if (timer != nullptr) {
        (void)::DeleteTimerQueueTimer(nullptr, std::exchange(timer, nullptr), INVALID_HANDLE_VALUE);
    }
}

} // namespace harvlink::cli
