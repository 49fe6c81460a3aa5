#include "simulator/replay/CapturedTraffic.h"

#include <algorithm>
#include <cstring>

#include "wire/SystemInfoMessage.h"

namespace harvlink::simulator {

namespace {

using recording::CapturedDatagram;
using recording::Microseconds;

constexpr Microseconds Patience = 3'000'000; ///< longer than clients wait for an answer

bool IsPort(std::uint16_t port) {
    return port == static_cast<std::uint16_t>(Port::Robot) || port == static_cast<std::uint16_t>(Port::File);
}

/// Answers have the same header.
bool Parse(CapturedDatagram const& captured, std::uint16_t port, Request& request) {
    request.port = static_cast<Port>(port);
    return request.Parse(captured.datagram.payload);
}

} // namespace

void CapturedTraffic::NoteTime(Microseconds time) {
    if (requests_ == 0 && answers_.empty()) {
        begin_ = end_ = time;
    }
    begin_ = std::min(begin_, time);
    end_ = std::max(end_, time);
}

void CapturedTraffic::TakeRequest(CapturedDatagram const& captured) {
    auto const& datagram = captured.datagram;
    Request request;
    if (!Parse(captured, datagram.toPort, request)) {
        return;
    }
    NoteTime(captured.time);
    ++requests_;
    request.peer = (std::uint64_t{datagram.from} << 16U) | datagram.fromPort;
    Pending pending{.request = namer_.Name(request).text,
                    .asked = captured.time,
                    .counts = namer_.TimeOf(request, captured.time),
                    .command = request.subHeader.command};
    Exchange const exchange{{datagram.from, datagram.fromPort, datagram.toPort}, request.header.requestId};
    auto const [found, isNew] = pending_.try_emplace(exchange, pending);
    if (!isNew && !IsRepetition(exchange, found->second, pending)) {
        AddStep(found->second, {});
        found->second = std::move(pending);
    }
    lastNumbers_[exchange.first] = exchange.second;
}

/// A client repeats what was not answered, and sniffers see some datagrams twice. Numbers come again after 256 requests.
bool CapturedTraffic::IsRepetition(Exchange const& exchange, Pending const& before, Pending const& now) const {
    return before.request == now.request && lastNumbers_.at(exchange.first) == exchange.second &&
           now.asked - before.asked < Patience;
}

void CapturedTraffic::TakeAnswer(CapturedDatagram const& captured) {
    auto const& datagram = captured.datagram;
    Request header;
    constexpr std::size_t MostBytes = HeaderSize + FileBlockSize;
    if (!Parse(captured, datagram.fromPort, header) || datagram.payload.size() > MostBytes) {
        return;
    }
    auto const found = pending_.find({{datagram.to, datagram.toPort, datagram.fromPort}, header.header.requestId});
    if (found == pending_.end()) {
        return; // of a request before the capture, or seen twice
    }
    NoteTime(captured.time);
    AddStep(found->second, {reinterpret_cast<char const*>(datagram.payload.data()), datagram.payload.size()});
    if (found->second.command == static_cast<std::uint16_t>(CommandNumber::SystemInformationRead)) {
        NoteSoftware(datagram.payload);
    }
    pending_.erase(found);
}

void CapturedTraffic::NoteSoftware(std::span<std::byte const> datagram) {
    SystemInfoReturnMsg message;
    if (softwareVersion_.empty() && datagram.size() >= HeaderSize + sizeof(message)) {
        std::memcpy(&message, datagram.data() + HeaderSize, sizeof(message));
        auto const& text = message.softwareVersion;
        softwareVersion_.assign(text.begin(), std::find(text.begin(), text.end(), '\0'));
    }
}

void CapturedTraffic::AddStep(Pending const& pending, std::string_view datagram) {
    auto found = datagrams_.find(datagram);
    if (found == datagrams_.end()) {
        found = datagrams_.emplace(datagram).first;
    }
    answers_[pending.request].push_back({pending.counts, &*found});
}

/// Whether the answer may lie behind the end of the capture.
bool CapturedTraffic::IsCutOff(Pending const& pending) const {
    return pending.asked > end_ - Patience && answers_.contains(pending.request);
}

void CapturedTraffic::Finish() {
    for (auto const& [exchange, pending] : pending_) {
        if (!IsCutOff(pending)) {
            AddStep(pending, {});
        }
    }
    pending_.clear();
    for (auto& [text, steps] : answers_) {
        std::stable_sort(steps.begin(), steps.end(), [](Step const& a, Step const& b) { return a.time < b.time; });
        auto const isSame = [](Step const& a, Step const& b) { return a.datagram == b.datagram; };
        steps.erase(std::unique(steps.begin(), steps.end(), isSame), steps.end());
    }
}

std::string const* CapturedTraffic::Find(NamedRequest const& request, Microseconds time) const {
    auto const found = answers_.find(request.text);
    if (found == answers_.end()) {
        return nullptr;
    }
    auto const& steps = found->second;
    auto const after = std::upper_bound(steps.begin(), steps.end(), time,
                                        [](Microseconds now, Step const& step) { return now < step.time; });
    return after == steps.begin() ? after->datagram : std::prev(after)->datagram;
}

std::map<std::uint32_t, CapturedTraffic> ReadTraffic(recording::CaptureFile& file) {
    std::map<std::uint32_t, CapturedTraffic> traffic;
    CapturedDatagram captured;
    while (file.Next(captured)) {
        auto const& datagram = captured.datagram;
        if (IsPort(datagram.toPort)) {
            traffic[datagram.to].TakeRequest(captured);
        }
        if (IsPort(datagram.fromPort)) {
            if (auto const found = traffic.find(datagram.from); found != traffic.end()) {
                found->second.TakeAnswer(captured);
            }
        }
    }
    std::erase_if(traffic, [](auto const& controller) { return controller.second.Requests() == 0; });
    for (auto& [address, of] : traffic) {
        of.Finish();
    }
    return traffic;
}

} // namespace harvlink::simulator
