#include "cli/program/Deadline.h"

#include <csignal>

#include <sys/time.h>
#include <unistd.h>

#include "cli/program/CommandLine.h"

namespace harvlink::cli {

namespace {

void Set(itimerval const& time) {
    ::setitimer(ITIMER_REAL, &time, nullptr);
}

} // namespace

Deadline::Deadline(std::chrono::milliseconds time) {
    std::signal(SIGALRM, [](int) { _exit(ExitStatus::Failure); });
    Set({.it_interval = {}, .it_value = {0, std::chrono::microseconds(time).count()}});
}

Deadline::~Deadline() {
    Set({});
}

} // namespace harvlink::cli
