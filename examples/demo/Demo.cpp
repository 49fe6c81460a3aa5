#include "Demo.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <thread>

namespace demo {

void Require(harvlink::StatusInfo const& status, std::string_view step) {
    if (status.StatusCode != 0) {
        throw Failure(std::string(step) + ": code " + std::to_string(status.StatusCode) + ": " + status.Message);
    }
}

void Require(bool condition, std::string_view step) {
    if (!condition) {
        throw Failure(std::string(step));
    }
}

bool IsSupported(harvlink::StatusInfo const& status, std::string_view step) {
    using harvlink::ErrorStatusCodes;
    if (status.StatusCode == static_cast<int>(ErrorStatusCodes::UnsupportedOnThisController)) {
        std::cout << step << ": not on a controller of this generation\n";
        return false;
    }
    return true;
}

void Title(std::string_view text) {
    std::cout << "\n== " << text << '\n';
}

std::string Trimmed(std::string text) {
    text.erase(std::ranges::find(text, '\0'), text.end());
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

bool Await(std::function<bool()> const& condition) {
    using namespace std::chrono_literals;
    auto const end = std::chrono::steady_clock::now() + 10s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

namespace {

void Run(std::string const& address) {
    harvlink::StatusInfo status;
    auto const robot =
        harvlink::Connect({.address = address, .timeout = 300, .access = harvlink::Access::Full}, status);
    Require(status, "open a connection to " + address);
    ShowController(*robot);
    ShowControlGroups(*robot);
    ExchangeFiles(*robot);
    ExchangeVariables(*robot);
    ExchangeSignals(*robot);
    RunJob(*robot);
    ShowAlarms(*robot);
    ConvertPositions(*robot);
    DriveArm(*robot);
    std::cout << "\nAll sections done.\n";
}

} // namespace
} // namespace demo

int main(int argc, char** argv) {
    std::string_view const argument = argc == 2 ? argv[1] : "";
    bool const isHelp = argument == "--help" || argument == "-h";
    if (isHelp || argument.empty() || argument.starts_with('-')) {
        (isHelp ? std::cout : std::cerr)
            << "Usage: " << argv[0] << " ADDRESS\n"
            << "Moves the robot, overwrites variables and deletes a job: use it with the virtual controller only.\n";
        return isHelp ? 0 : 2;
    }
    try {
        demo::Run(argv[1]);
    } catch (std::exception const& failure) {
        std::cout.flush();
        std::cerr << "demo: " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
