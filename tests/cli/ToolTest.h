#pragma once

#include <future>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "RunTool.h"
#include "cli/output/Words.h"
#include "simulator/network/Server.h"
#include "support/LoopbackAddress.h"
#include "wire/CommandNumber.h"

namespace harvlink::cli {

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
