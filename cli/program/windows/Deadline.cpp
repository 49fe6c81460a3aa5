#include "cli/program/Deadline.h"

#include <windows.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Terminal.h"

namespace harvlink::cli {

namespace {

void CALLBACK End(void* /*context*/, BOOLEAN /*isOver*/) {
    RestoreStreams();
    ::TerminateProcess(::GetCurrentProcess(), ExitStatus::Failure);
}

} // namespace

Deadline::Deadline(std::chrono::milliseconds time) {
    ::CreateTimerQueueTimer(&timer_, nullptr, End, nullptr, static_cast<DWORD>(time.count()), 0, WT_EXECUTEONLYONCE);
}

Deadline::~Deadline() {
    if (timer_ != nullptr) {
        (void)::DeleteTimerQueueTimer(nullptr, timer_, INVALID_HANDLE_VALUE);
    }
}

} // namespace harvlink::cli
