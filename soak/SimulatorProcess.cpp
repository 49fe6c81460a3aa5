#include "soak/SimulatorProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace harvlink::soak {

namespace {

constexpr std::string_view ReadyMark = "ready on";

struct Pipe {
    std::array<int, 2> ends{-1, -1};

    Pipe() {
        if (pipe(ends.data()) != 0) {
            throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
        }
    }
    Pipe(Pipe const&) = delete;
    ~Pipe() {
        close(ends[0]);
        close(ends[1]);
    }
};

pid_t Spawn(std::vector<std::string> const& command, int output) {
    std::vector<std::string> words = command; // the interface takes them as if it wrote to them
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (auto& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    pid_t process = -1;
    int const error = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error("can't start " + command[0] + ": " + std::strerror(error));
    }
    return process;
}

/// Whether the line with ReadyMark comes before the end of the output.
bool SaysReady(int output) {
    std::string text;
    std::array<char, 256> buffer{};
    while (text.find(ReadyMark) == std::string::npos) {
        auto const count = read(output, buffer.data(), buffer.size());
        if (count <= 0) {
            return false;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

SimulatorProcess::SimulatorProcess(std::string name, std::vector<std::string> const& command) : name_(std::move(name)) {
    Pipe output;
    process_ = Spawn(command, output.ends[1]);
    close(output.ends[1]); // so that the output ends with the process
    output.ends[1] = -1;
    if (!SaysReady(output.ends[0])) {
        Stop();
        throw std::runtime_error(name_ + " did not start: " + command[0]);
    }
}

SimulatorProcess::~SimulatorProcess() {
    Stop();
}

ProcessFigures SimulatorProcess::Figures() const {
    auto figures = FiguresOf(name_, process_);
    figures.spareDescriptors = 1; // the socket for the fault other-source
    return figures;
}

bool SimulatorProcess::Stop() {
    if (process_ < 0) {
        return true;
    }
    kill(process_, SIGTERM);
    int result = 0;
    while (waitpid(process_, &result, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    return WIFEXITED(result) && WEXITSTATUS(result) == 0;
}

} // namespace harvlink::soak
