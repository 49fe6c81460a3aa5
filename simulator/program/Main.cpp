#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unistd.h>

#include "harvlink/Version.h"
#include "simulator/model/Generation.h"
#include "simulator/network/Server.h"
#include "simulator/program/Arguments.h"
#include "simulator/program/ControlDesk.h"
#include "simulator/program/CtlCommand.h"
#include "simulator/program/FaultLog.h"
#include "simulator/program/PcapFile.h"
#include "simulator/program/TrafficReport.h"
#include "simulator/protocol/CommandName.h"
#include "simulator/scene/Scene.h"

namespace harvlink::simulator {
namespace {

constexpr int WrongUsage = 2;

/// Fills the places of closed standard streams. Otherwise a file opened later would take such a place and output would
/// go into it.
void OccupyStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) == -1) {
            open("/dev/null", O_RDONLY); // takes the lowest free number; writing to it fails as before
        }
    }
}

/// Blocks the signals that end the program. Called before the server's thread starts, which inherits the mask, so that
/// ControlDesk gets the signal.
sigset_t BlockEndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

/// The name of a file can have any bytes.
std::string Printable(std::string_view name) {
    std::string text;
    for (char const character : name) {
        bool const isPrintable = character >= ' ' && character <= '~';
        text +=
            isPrintable ? std::string(1, character) : fmt::format("\\x{:02X}", static_cast<unsigned char>(character));
    }
    return text;
}

void PrintExchange(VirtualController const& controller, Request const& request, Reply const& reply) {
    fmt::print("{}:{} id {} ", controller.Address(), static_cast<int>(request.port), request.header.requestId);
    if (request.port == Port::File) {
        fmt::print("{} block {:#x} ack {}", NameOfFileService(request.subHeader.service), request.header.blockNumber,
                   request.header.ack);
    } else {
        fmt::print("{} command {} instance {} attribute {}", NameOfCommand(request.subHeader.command),
                   request.subHeader.command, request.subHeader.instance, request.subHeader.attribute);
    }
    auto const answered = reply.Bytes().size() - harvlink::HeaderSize;
    fmt::print(" service {} {} bytes -> {} {} bytes\n", request.subHeader.service, request.payload.size(),
               reply.IsSuppressed() ? "unanswered" : fmt::format("code {}", static_cast<int>(reply.Code())), answered);
    std::fflush(stdout);
}

/// The generation that a software version belongs to.
std::optional<ControllerVersion> GenerationOf(std::string const& softwareVersion) {
    constexpr std::size_t Letters = 2;
    return GenerationFromName(std::string_view(softwareVersion).substr(0, Letters));
}

using Replays = std::vector<std::pair<std::string, Replay const*>>; ///< by the address where they are served

/// The controller that was recorded, as far as the file says what it is.
VirtualController& AddReplay(Server& server, std::string const& address, Arguments const& arguments, Replays& replays) {
    ReplayOptions replayOptions = arguments.replayOptions;
    replayOptions.servedAddress = address;
    auto replay = OpenReplay(*arguments.replay, replayOptions);
    if (std::string const warning = replay->Warning(); !warning.empty()) {
        fmt::print(stderr, "harvlink-sim: {}\n", warning);
    }
    ControllerOptions options = arguments.options;
    options.generation = GenerationOf(replay->SoftwareVersion()).value_or(options.generation);
    if (auto groups = replay->Groups(); !groups.empty()) {
        options.groups = std::move(groups);
    }
    VirtualController& controller = server.Add(address, options);
    replays.emplace_back(address, replay.get());
    controller.SetAnswerer(std::move(replay));
    return controller;
}

/// After the server has stopped.
void PrintMissed(Replays const& replays) {
    for (auto const& [address, replay] : replays) {
        auto const lines = replay->Missed().Lines();
        if (!lines.empty()) {
            fmt::print("harvlink-sim: {} was asked for what the file does not have:\n  {}\n", address,
                       fmt::join(lines, "\n  "));
        }
    }
}

bool Prepare(VirtualController& controller, Arguments const& arguments) {
    return controller.WithParts([&](ControllerParts& parts) {
        if (!parts.files.FolderError().empty()) {
            fmt::print(stderr, "harvlink-sim: {}\n", parts.files.FolderError());
            return false;
        }
        for (auto const& name : parts.files.UnservedNames()) {
            fmt::print(stderr,
                       "harvlink-sim: {} is not served: the name of a file has at most {} ASCII letters, digits and "
                       "characters of -_#$.+&%\n",
                       Printable(name), FileNameSize);
        }
        if (arguments.scene) {
            arguments.scene->ApplyTo(parts);
        }
        return true;
    });
}

int FailToWrite(std::string const& path) {
    fmt::print(stderr, "harvlink-sim: can't write {}: {}\n", path, std::strerror(errno));
    return 1;
}

/// Adds the controllers and prepares them. Fewer than there are addresses if one can't be prepared.
std::vector<VirtualController*> AddControllers(Server& server, Arguments const& arguments, Replays& replays) {
    std::vector<VirtualController*> controllers;
    for (auto const& address : arguments.addresses) {
        VirtualController& controller =
            arguments.replay ? AddReplay(server, address, arguments, replays) : server.Add(address, arguments.options);
        if (!Prepare(controller, arguments)) {
            break;
        }
        controllers.push_back(&controller);
    }
    return controllers;
}

void Observe(Server& server, bool isVerbose, std::optional<FaultLog>& faultLog) {
    if (!isVerbose && !faultLog) {
        return;
    }
    server.SetObserver(
        [isVerbose, &faultLog](VirtualController& controller, Request const& request, Reply const& reply) {
            if (isVerbose) {
                PrintExchange(controller, request, reply);
            }
            if (faultLog) {
                faultLog->Write(controller, request);
            }
        });
}

int Serve(Arguments const& arguments) {
    auto const signals = BlockEndSignals();
    std::optional<PcapFile> recording; // both outlive the server's thread
    std::optional<FaultLog> faultLog;
    Server server;
    Replays replays;
    std::vector<VirtualController*> const controllers = AddControllers(server, arguments, replays);
    if (controllers.size() < arguments.addresses.size()) {
        return 1;
    }
    if (arguments.faultLog) {
        faultLog.emplace(*arguments.faultLog);
    }
    Observe(server, arguments.verbose, faultLog);
    if (arguments.pcap) {
        recording.emplace(*arguments.pcap);
        server.SetRecorder([&](auto const&... datagram) { recording->Write(datagram...); });
    }
    if (!server.Start()) {
        fmt::print(stderr, "harvlink-sim: {}\n", server.Error());
        return 1;
    }
    if (arguments.report && !CanWriteTrafficReport(*arguments.report)) {
        return FailToWrite(*arguments.report);
    }
    ControlDesk const desk(controllers, arguments.options);
    fmt::print("harvlink-sim: ready on {}\n", fmt::join(arguments.addresses, ", "));
    std::fflush(stdout);
    desk.ServeUntil(signals);
    server.Stop();
    PrintMissed(replays);
    if (recording && !recording->IsWhole()) {
        fmt::print(stderr, "harvlink-sim: could not write all datagrams to {}\n", *arguments.pcap);
        return 1;
    }
    if (arguments.report && !WriteTrafficReport(*arguments.report, controllers)) {
        return FailToWrite(*arguments.report);
    }
    return 0;
}

int Run(int argc, char** argv) {
    OccupyStandardStreams();
    CLI::App app("A virtual robot controller: answers on UDP ports 10040 and 10041 like a real one.", "harvlink-sim");
    app.set_version_flag("--version", "harvlink-sim " + std::string(HeaderVersion));
    ArgumentParser parser(app);
    CtlCommand const ctl(app);
    try {
        app.parse(argc, argv);
        return ctl.IsGiven() ? ctl.Run() : Serve(parser.Result());
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : WrongUsage;
    } catch (std::exception const& error) {
        fmt::print(stderr, "harvlink-sim: {}\n", error.what());
        return 1;
    }
}

} // namespace
} // namespace harvlink::simulator

int main(int argc, char** argv) {
    return harvlink::simulator::Run(argc, argv);
}
