#include "gateway/program/Program.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include "gateway/config/ConfigFile.h"
#include "gateway/program/Arguments.h"
#include "gateway/program/Bill.h"
#include "gateway/program/Deadline.h"
#include "gateway/program/Gateway.h"
#include "gateway/program/SystemNotice.h"
#include "gateway/program/VirtualPlant.h"
#include "harvlink/Version.h"

namespace harvlink::gateway {

namespace {

constexpr int Failure = 1;
constexpr std::string_view NotUsed = "the new configuration is not used; the gateway goes on with the one before";
constexpr std::chrono::milliseconds TimeToEnd(900);

/// A file that is opened later must not get the number of a closed standard stream, or output would go into it.
void OccupyStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) == -1) {
            open("/dev/null", O_RDONLY); // gets the lowest free number; writing to it fails, as before
        }
    }
}

/// Each answer to a scrape takes megabytes on one thread and gives them back on another. Unless such blocks are mapped each by
/// itself, and threads share their heaps, they leave holes that grow for hours.
void KeepMemoryFlat() {
#ifdef __GLIBC__
    constexpr int Large = 1 << 20;
    mallopt(M_MMAP_THRESHOLD, Large);
    mallopt(M_ARENA_MAX, 2);
#endif
}

struct Signals {
    sigset_t ends; ///< what ends the program
    sigset_t all; ///< these, and what reads the configuration again
};

/// Blocked before any thread starts, which inherits the mask, so that the main thread takes them.
Signals BlockSignals() {
    Signals signals{};
    sigemptyset(&signals.ends);
    for (int const signal : {SIGINT, SIGTERM, SIGQUIT}) {
        sigaddset(&signals.ends, signal);
    }
    signals.all = signals.ends;
    sigaddset(&signals.all, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals.all, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signals;
}

Config ConfigFor(Arguments const& arguments) {
    return arguments.config.empty() ? Config{} : ReadConfigFile(arguments.config, arguments.simulate == 0);
}

/// A bad file keeps what runs.
void Reload(Gateway& gateway, Arguments const& arguments, Log& log) {
    if (arguments.config.empty()) {
        log.Warning("there is no configuration file to read again");
        return;
    }
    try {
        gateway.Apply(ConfigFor(arguments));
    } catch (ConfigError const& error) {
        for (std::string const& problem : error.Problems()) {
            log.Error(problem);
        }
        log.Error(NotUsed);
    } catch (std::exception const& error) {
        log.Error(NotUsed, {{"reason", error.what()}});
    }
}

std::string StatusText(Gateway const& gateway) {
    return fmt::format("watches {} controllers", gateway.ControllerCount());
}

/// Until a signal ends the program.
void Serve(Gateway& gateway, Arguments const& arguments, sigset_t const& signals, Log& log) {
    SystemNotice const notice;
    notice.Ready(StatusText(gateway));
    auto const pause = notice.WatchdogPeriod().value_or(std::chrono::seconds(4)) / 2;
    timespec const time{.tv_sec = static_cast<time_t>(pause.count() / 1'000'000),
                        .tv_nsec = static_cast<long>(pause.count() % 1'000'000 * 1000)};
    while (true) {
        int const signal = sigtimedwait(&signals, nullptr, &time);
        if (signal == SIGHUP) {
            notice.Reloading();
            Reload(gateway, arguments, log);
            notice.Ready(StatusText(gateway));
        } else if (signal > 0) {
            log.Info("the gateway ends", {{"signal", std::to_string(signal)}});
            notice.Stopping();
            return;
        } else if (gateway.IsAlive()) {
            notice.Alive();
        }
    }
}

int Run(Arguments const& arguments) {
    KeepMemoryFlat();
    Signals const signals = BlockSignals();
    Log log;
    Deadline deadline(log, signals.ends, TimeToEnd);
    Config config = ConfigFor(arguments);
    log.SetLevel(config.gateway.logLevel);
    log.Info("the gateway starts", {{"version", std::string(HeaderVersion)}});
    Gateway gateway(log);
    if (arguments.simulate > 0) {
        gateway.Simulate(arguments.simulate);
    }
    gateway.Apply(std::move(config));
    ListenConfig const listen = gateway.Listening();
    fmt::print("harvlink-gateway: ready on {}://{}:{}/\n", listen.key.empty() ? "http" : "https",
               listen.address.find(':') == std::string::npos ? listen.address : "[" + listen.address + "]",
               listen.port);
    std::fflush(stdout);
    Serve(gateway, arguments, signals.all, log);
    deadline.Begin();
    return 0;
}

int Check(Arguments const& arguments) {
    Config config = ConfigFor(arguments);
    if (arguments.simulate > 0) {
        VirtualPlant::Watch(config, std::vector<std::string>(arguments.simulate)); // none is started for the bill
    }
    fmt::print("{}: right\n{}", arguments.config, BillOf(config));
    return 0;
}

} // namespace

int RunProgram(int argc, char** argv) {
    OccupyStandardStreams();
    int exitStatus = 0;
    auto const arguments = ParseArguments(argc, argv, exitStatus);
    if (!arguments) {
        return exitStatus;
    }
    try {
        if (arguments->printExample) {
            fmt::print("{}", ExampleConfig());
            return 0;
        }
        return arguments->check ? Check(*arguments) : Run(*arguments);
    } catch (ConfigError const& error) {
        for (std::string const& problem : error.Problems()) {
            fmt::print(stderr, "{}\n", problem);
        }
    } catch (std::exception const& error) {
        fmt::print(stderr, "harvlink-gateway: {}\n", error.what());
    }
    return Failure;
}

} // namespace harvlink::gateway
