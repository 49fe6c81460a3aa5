#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "gateway/sparkplug/Sockets.h"
#include "support/Program.h"

namespace harvlink::test {

/// A mosquitto at an address of its own, port 1883. It keeps nothing over a restart.
class Broker {
public:
    /// `settings` are further lines of its configuration.
    explicit Broker(std::string address, std::string const& settings = {}, std::string const& anonymous = "true")
        : address_(std::move(address)), file_(std::filesystem::current_path() / (address_ + ".conf")) {
        std::ofstream(file_) << fmt::format("listener 1883 {}\nallow_anonymous {}\nuser root\npersistence false\n"
                                            "log_dest none\nmax_queued_messages 0\n{}\n",
                                            address_, anonymous, settings);
        Start();
    }

    void Start() {
        program_ = std::make_unique<Program>(fmt::format("{} -c {}", HARVLINK_MOSQUITTO, file_.string()));
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        int connection = -1;
        while ((connection = ConnectTo(address_, 1883)) < 0 && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10)); // it has no other way to say that it listens
        }
        ASSERT_GE(connection, 0) << "mosquitto does not start";
        close(connection);
    }
    void Kill() { program_.reset(); }

    std::string const& Address() const { return address_; }

private:
    std::string address_;
    std::filesystem::path file_;
    std::unique_ptr<Program> program_;
};

} // namespace harvlink::test
