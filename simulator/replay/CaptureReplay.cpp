#include "simulator/replay/CaptureReplay.h"

#include <map>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "recording/model/TimeText.h"
#include "simulator/protocol/Catalogue.h"

namespace harvlink::simulator {

namespace {

using recording::Microseconds;
using Controllers = std::map<std::uint32_t, CapturedTraffic>;

std::string AddressText(std::uint32_t address) {
    return fmt::format("{}.{}.{}.{}", address >> 24U, (address >> 16U) & 0xFFU, (address >> 8U) & 0xFFU,
                       address & 0xFFU);
}

CapturedTraffic Choose(std::string const& file, Controllers controllers, ReplayOptions const& options) {
    if (controllers.empty()) {
        throw recording::RecordingError(file +
                                        ": the capture has no request to a controller, UDP ports 10040 and 10041");
    }
    std::string names;
    CapturedTraffic* served = nullptr;
    for (auto& [address, traffic] : controllers) {
        std::string const name = AddressText(address);
        if (name == options.controller) {
            return {std::move(traffic)};
        }
        served = name == options.servedAddress ? &traffic : served;
        names += fmt::format("{}{} ({} requests)", names.empty() ? "" : ", ", name, traffic.Requests());
    }
    if (options.controller.empty() && (controllers.size() == 1 || served != nullptr)) {
        return std::move(served != nullptr ? *served : controllers.begin()->second);
    }
    throw recording::RecordingError(fmt::format("{}: choose a controller of the capture: {}", file, names));
}

std::string WarningOf(std::string const& file, recording::CaptureLosses const& losses) {
    std::string text;
    auto const add = [&](std::uint64_t count, char const* what) {
        if (count > 0) {
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, what);
        }
    };
    add(losses.fragments, "fragments of datagrams");
    add(losses.cutShort, "datagrams that the sniffer cut short");
    add(losses.malformed, "malformed packets");
    return text.empty() ? text : fmt::format("{}: left out: {}", file, text);
}

} // namespace

CaptureReplay::CaptureReplay(std::filesystem::path const& path, ReplayOptions const& options) {
    recording::CaptureFile file(path,
                                {static_cast<std::uint16_t>(Port::Robot), static_cast<std::uint16_t>(Port::File)});
    traffic_ = Choose(path.string(), ReadTraffic(file), options);
    warning_ = WarningOf(path.string(), file.Losses());
    Microseconds const at = StartTime(options.at, traffic_.Begin(), traffic_.End());
    clock_.emplace(traffic_.Begin(), traffic_.End(), at, options.speed);
}

bool CaptureReplay::Answer(Request const& request, Reply& reply) {
    NamedRequest const named = namer_.Name(request);
    bool const isConnecting = IsOfConnecting(request) && !traffic_.Has(named.text);
    Microseconds const time = namer_.TimeOf(request, clock_->Now(isConnecting));
    if (auto const* const datagram = traffic_.Find(named, time)) {
        if (datagram->empty()) {
            reply.Suppress();
        } else {
            reply.SetDatagram(std::as_bytes(std::span(*datagram)), request);
        }
        return true;
    }
    bool const isGoingOn = !named.opening.empty() && traffic_.Has(named.opening);
    if (isConnecting && !isGoingOn) {
        missed_.Note(request, MissedRequests::Outcome::AnsweredByVirtualController);
        return false;
    }
    missed_.Note(request, MissedRequests::Outcome::Refused);
    reply.Begin(request);
    bool const isRead = request.port == Port::Robot && !request.IsWrite();
    Refusal const fault = isRead ? CheckAgainstCatalogue(request, true) : WriteRefused;
    reply.Refuse(fault == Refusal::None ? NotRecorded : fault);
    return true;
}

} // namespace harvlink::simulator
