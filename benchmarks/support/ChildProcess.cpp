#include "support/ChildProcess.h"

#include <array>
#include <csignal>
#include <stdexcept>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/Machine.h"

namespace harvlink::bench {

ChildProcess::ChildProcess(int core, std::function<void(std::function<void()> const& ready)> const& body) {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    process = ::fork();
    if (process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::close(pipe[0]);
        if (core >= 0) {
            PinTo(core);
        }
        try {
            body([&] { [[maybe_unused]] auto const written = ::write(pipe[1], "r", 1); });
        } catch (std::exception const&) { // the parent notices that the pipe closes
        }
        ::_exit(0);
    }
    ::close(pipe[1]);
    char byte = 0;
    bool const isReady = ::read(pipe[0], &byte, 1) == 1;
    ::close(pipe[0]);
    if (!isReady) {
        throw std::runtime_error("an answering process did not start");
    }
}

ChildProcess::~ChildProcess() {
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

} // namespace harvlink::bench
