#pragma once

#include <csignal>
#include <cstdio>
#include <string>

#include <sys/wait.h>

namespace harvlink::test {

/// A program that runs, and what it writes.
class Program {
public:
    /// The command is one for bash. The shell prints its process id, which is then that of the program.
    explicit Program(std::string const& command)
        : pipe_(popen(("exec bash -c \"echo \\$\\$; exec " + command + "\"").c_str(), "r")),
          process_(std::stoi(ReadLine())) {}
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;
    ~Program() {
        if (pipe_ != nullptr) {
            kill(process_, SIGKILL);
            pclose(pipe_);
        }
    }

    /// Empty at the end of the output.
    std::string ReadLine() {
        std::string line;
        for (int next = fgetc(pipe_); next != EOF; next = fgetc(pipe_)) {
            line += static_cast<char>(next);
            if (next == '\n') {
                break;
            }
        }
        return line;
    }

    std::string ReadRest() {
        std::string text;
        for (auto line = ReadLine(); !line.empty(); line = ReadLine()) {
            text += line;
        }
        return text;
    }

    void Signal(int number) const { kill(process_, number); }

    /// Waits for the end. -1 if a signal ended it.
    int ExitCode() {
        int const status = pclose(pipe_);
        pipe_ = nullptr;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    FILE* pipe_ = nullptr;
    pid_t process_ = -1;
};

} // namespace harvlink::test
