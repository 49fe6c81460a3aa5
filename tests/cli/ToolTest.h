#pragma once

#include <future>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/output/Words.h"
#include "cli/program/CommandLine.h"
#include "cli/verbs/AllCommands.h"
#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"
#include "wire/CommandNumber.h"

namespace harvlink::cli {

using Arguments = std::vector<std::string>;

struct Result {
    int exit = 0;
    std::string out;
    std::string err;
};

/// Words between spaces; single quotes keep spaces within a word.
inline Arguments Words(std::string const& line) {
    std::istringstream stream(line);
    Arguments words;
    for (std::string word; stream >> std::quoted(word, '\'');) {
        words.push_back(word);
    }
    return words;
}

inline Result RunTool(std::string const& line, std::string const& answer = "", bool isTerminal = false) {
    Arguments arguments = Words(line);
    std::vector<char const*> argv{"harvlink"};
    for (std::string const& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    std::istringstream in(answer);
    std::ostringstream out;
    std::ostringstream err;
    Console console{in, out, err, isTerminal, false, isTerminal};
    int const exit = RunCommandLine(static_cast<int>(argv.size()), argv.data(), console, AllCommands());
    return {exit, out.str(), err.str()};
}

/// Runs the program in this process against a virtual controller of its own.
class ToolTest : public testing::Test {
protected:
    ToolTest() {
        for (int attempt = 0; attempt < 10 && controller_ == nullptr; ++attempt) {
            host_ = test::NextLoopbackAddress();
            server_ = std::make_unique<simulator::Server>();
            simulator::VirtualController& controller = server_->Add(host_);
            server_->SetObserver([this](auto const&, simulator::Request const& request, auto const&) {
                Observe(request.subHeader.command);
            });
            controller_ = server_->Start() ? &controller : nullptr;
        }
        ::setenv("HARVLINK_HOST", host_.c_str(), 1);
    }

    void Observe(std::uint16_t command) {
        if (command == static_cast<std::uint16_t>(CommandNumber::MotionSendTarget) && !hasTarget_) {
            hasTarget_ = true;
            target_.set_value();
        }
    }

    template <typename Function>
    auto With(Function const& function) {
        return controller_->With(function);
    }

    std::string host_;
    bool hasTarget_ = false; // the server's thread only
    std::promise<void> target_; // before the server, whose thread fulfils it
    std::unique_ptr<simulator::Server> server_;
    simulator::VirtualController* controller_ = nullptr;
};

} // namespace harvlink::cli
