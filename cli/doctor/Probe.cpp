#include "doctor/Probe.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>

#include "Text.h"
#include "doctor/ProbeSocket.h"

namespace harvlink::cli {

namespace {

using Clock = std::chrono::steady_clock;
using Event = ProbeSocket::Event;
using State = PortReport::State;

constexpr std::size_t HeaderSize = 32;
constexpr std::size_t LargestDatagram = 2048;
constexpr std::uint8_t HighestId = 127;
/// With the usual time-out long enough for this computer to find out that nobody has the address.
constexpr unsigned DiscoveryTries = 7;
/// Nobody waits for a controller that has gone in the middle.
constexpr unsigned MostSilentProbes = 20;

using Datagram = std::vector<std::byte>;

Datagram Request(std::uint8_t division, std::uint8_t id, std::string_view payload,
                 std::array<std::uint8_t, 6> const& tail) {
    Datagram bytes(HeaderSize);
    auto const put = [&](std::size_t offset, std::string_view text) {
        std::ranges::transform(text, bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                               [](char c) { return static_cast<std::byte>(c); });
    };
    put(0, "TROZ");
    bytes[4] = std::byte{HeaderSize};
    bytes[6] = static_cast<std::byte>(payload.size());
    bytes[8] = std::byte{3};
    bytes[9] = std::byte{division};
    bytes[11] = std::byte{id};
    put(16, "99999999");
    std::memcpy(bytes.data() + 24, tail.data(), tail.size());
    bytes.resize(HeaderSize + payload.size());
    put(HeaderSize, payload);
    return bytes;
}

// Command, instance, attribute and service of each.
Datagram SystemInformation(std::uint8_t id) {
    return Request(1, id, {}, {137, 0, 11, 0, 0, 1});
}

Datagram ControllerState(std::uint8_t id) {
    return Request(1, id, {}, {114, 0, 1, 0, 0, 1});
}

Datagram MissingFile(std::uint8_t id) {
    return Request(2, id, "HARVLINK.PROBE", {0, 0, 0, 0, 0, 22});
}

std::uint8_t Byte(std::span<std::byte const> datagram, std::size_t offset) {
    return std::to_integer<std::uint8_t>(datagram[offset]);
}

std::uint16_t Word(std::span<std::byte const> datagram, std::size_t offset) {
    return static_cast<std::uint16_t>(Byte(datagram, offset) | Byte(datagram, offset + 1) << 8);
}

bool IsWhole(std::span<std::byte const> datagram) {
    return datagram.size() >= HeaderSize && std::memcmp(datagram.data(), "TROZ", 4) == 0 &&
           Word(datagram, 4) == HeaderSize && datagram.size() == HeaderSize + Word(datagram, 6);
}

/// The code that the library would return.
int CodeOf(std::span<std::byte const> datagram) {
    if (Byte(datagram, 25) == 0 && Byte(datagram, 26) == 0) {
        return 0;
    }
    int const added = Word(datagram, 28);
    return added != 0 ? added : Byte(datagram, 25);
}

std::string Field(std::span<std::byte const> payload, std::size_t offset, std::size_t size) {
    if (offset >= payload.size()) {
        return {};
    }
    auto const field = payload.subspan(offset, std::min(size, payload.size() - offset));
    return TrimField({reinterpret_cast<char const*>(field.data()), field.size()});
}

class Examination {
    enum class Asked : std::uint8_t { Nothing, Command, File };
    enum class Fate : std::uint8_t { Unused, Awaited, Overdue, Done };

public:
    Examination(std::string const& host, std::chrono::milliseconds timeout) : socket_(host), timeout_(timeout) {}

    void Discover() {
        for (unsigned attempt = 0; attempt < DiscoveryTries && !IsKnown(); ++attempt) {
            if (IsOpen(report_.commands)) {
                Send(report_.commands, SystemInformation(NextId()), Asked::Command);
            }
            if (IsOpen(report_.files)) {
                Send(report_.files, MissingFile(NextId()), Asked::File);
            }
            auto const end = Clock::now() + timeout_;
            while (Clock::now() < end && !IsKnown()) {
                Note(Receive(end));
            }
        }
    }

    void Measure(unsigned probes, std::function<bool(unsigned)> const& progress) {
        LinkReport& link = report_.link;
        unsigned silent = 0;
        while (link.sent < probes && silent < MostSilentProbes && progress(link.sent)) {
            silent = ProbeOnce() ? 0 : silent + 1;
        }
        // What is on the way may still come.
        auto const end = Clock::now() + (link.answered == link.sent ? Clock::duration{} : timeout_);
        while (Clock::now() < end) {
            Judge(Receive(end), 0, {});
        }
        link.lost = link.sent - std::min(link.sent, link.answered + link.late);
        std::sort(link.milliseconds.begin(), link.milliseconds.end());
    }

    ControllerReport const& Report() const { return report_; }

private:
    static bool IsOpen(PortReport const& port) { return port.state == State::Silent || port.state == State::Garbled; }

    bool IsKnown() const { return !IsOpen(report_.commands) && !IsOpen(report_.files); }

    /// Odd ones only, so that an answer with the id before it is seen to be wrong.
    std::uint8_t NextId() {
        lastId_ = static_cast<std::uint8_t>((lastId_ + 2) % (HighestId + 1));
        return lastId_;
    }

    void Send(PortReport& port, Datagram const& request, Asked asked) {
        asked_.at(lastId_) = asked;
        int const error = socket_.Send(port.port, request);
        if (error != 0) {
            port.state = State::Unreachable;
            port.error = error;
        }
    }

    ProbeSocket::Received Receive(Clock::time_point end) {
        return socket_.Receive(buffer_, std::chrono::ceil<std::chrono::microseconds>(end - Clock::now()));
    }

    void Note(ProbeSocket::Received const& received) {
        if (received.event == Event::PortClosed || received.event == Event::Unreachable) {
            for (PortReport* const port : {&report_.commands, &report_.files}) {
                if (IsOpen(*port) && (received.port == 0 || received.port == port->port)) {
                    port->state = received.event == Event::PortClosed ? State::Closed : State::Unreachable;
                    port->error = received.error;
                }
            }
        } else if (received.event == Event::Datagram) {
            NoteDatagram(std::span(buffer_).first(received.length), received.port);
        }
    }

    void NoteDatagram(std::span<std::byte const> datagram, std::uint16_t source) {
        bool const isWhole = IsWhole(datagram);
        Asked const asked = isWhole ? asked_.at(Byte(datagram, 11) & HighestId) : Asked::Nothing;
        if (asked == Asked::Command) {
            int const code = CodeOf(datagram);
            report_.commands.state = code == 0 ? State::Answers : State::Refuses;
            report_.commands.code = code;
            report_.software = Field(datagram.subspan(HeaderSize), 0, 24);
            report_.model = Field(datagram.subspan(HeaderSize), 24, 16);
        } else if (asked == Asked::File) {
            // That there is no such file is the answer that was expected.
            report_.files.state = State::Answers;
        } else {
            PortReport& port = source == report_.files.port ? report_.files : report_.commands;
            port.state = IsOpen(port) ? State::Garbled : port.state;
        }
    }

    bool ProbeOnce() {
        std::uint8_t const id = NextId();
        fate_.at(id) = Fate::Awaited;
        ++report_.link.sent;
        auto const start = Clock::now();
        socket_.Send(report_.commands.port, ControllerState(id));
        auto const end = start + timeout_;
        while (Clock::now() < end) {
            if (Judge(Receive(end), id, start)) {
                return true;
            }
        }
        fate_.at(id) = Fate::Overdue;
        return false;
    }

    /// Returns whether it is the answer to probe `id`; 0 awaits none.
    bool Judge(ProbeSocket::Received const& received, std::uint8_t id, Clock::time_point start) {
        LinkReport& link = report_.link;
        if (received.event != Event::Datagram) {
            return false;
        }
        auto const datagram = std::span<std::byte const>(buffer_).first(received.length);
        if (!IsWhole(datagram)) {
            ++link.damaged;
            return false;
        }
        std::uint8_t const answeredId = Byte(datagram, 11) & HighestId;
        Fate& fate = fate_.at(answeredId);
        if (fate == Fate::Unused && asked_.at(answeredId) != Asked::Nothing) {
            return false; // what the discovery did not wait for
        }
        link.otherSources += received.isFromHost && received.port == report_.commands.port ? 0 : 1;
        bool const isAnswer = id != 0 && answeredId == id && fate == Fate::Awaited;
        if (isAnswer) {
            Answered(datagram, Clock::now() - start);
        } else {
            link.late += fate == Fate::Overdue ? 1 : 0;
            link.duplicates += fate == Fate::Done ? 1 : 0;
            link.wrongIds += fate == Fate::Unused ? 1 : 0;
        }
        fate = fate == Fate::Unused ? Fate::Unused : Fate::Done;
        return isAnswer;
    }

    void Answered(std::span<std::byte const> datagram, Clock::duration time) {
        LinkReport& link = report_.link;
        ++link.answered;
        link.milliseconds.push_back(std::chrono::duration<double, std::milli>(time).count());
        if (int const code = CodeOf(datagram); code != 0) {
            ++link.refused;
            link.refusalCode = code;
        }
    }

    ProbeSocket socket_;
    std::chrono::milliseconds timeout_;
    ControllerReport report_;
    std::array<std::byte, LargestDatagram> buffer_{};
    std::array<Fate, HighestId + 1> fate_{};
    std::array<Asked, HighestId + 1> asked_{};
    std::uint8_t lastId_ = HighestId;
};

} // namespace

ControllerReport Examine(std::string const& host, std::chrono::milliseconds timeout, unsigned probes,
                         std::function<bool(unsigned)> const& progress) {
    Examination examination(host, timeout);
    examination.Discover();
    if (examination.Report().commands.state == State::Answers) {
        examination.Measure(probes, progress);
    }
    return examination.Report();
}

} // namespace harvlink::cli
