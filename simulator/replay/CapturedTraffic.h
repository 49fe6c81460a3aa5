#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "recording/capture/CaptureFile.h"
#include "simulator/replay/RequestNamer.h"

namespace harvlink::simulator {

/// What a controller answered to each request, and when it was asked.
class CapturedTraffic {
public:
    /// Takes over a datagram to or from the controller. They come in the order of the capture.
    void TakeRequest(recording::CapturedDatagram const& captured);
    void TakeAnswer(recording::CapturedDatagram const& captured);

    /// Call once, after the last datagram.
    void Finish();

    /// The answer to the last such request up to a time, or to the first one after it. Null if there was no such request; empty
    /// if it was not answered.
    std::string const* Find(NamedRequest const& request, recording::Microseconds time) const;

    bool Has(std::string const& text) const { return answers_.contains(text); }

    /// As the controller first said it; empty if it was not asked.
    std::string const& SoftwareVersion() const { return softwareVersion_; }

    std::uint64_t Requests() const { return requests_; }
    recording::Microseconds Begin() const { return begin_; }
    recording::Microseconds End() const { return end_; }

private:
    struct Step {
        recording::Microseconds time = 0;
        std::string const* datagram = nullptr;
    };
    struct Pending {
        std::string request; ///< its text
        recording::Microseconds asked = 0;
        recording::Microseconds counts = 0; ///< the time at which the answer counts
        std::uint16_t command = 0;
    };
    /// Address and port, and the port of the controller.
    using Client = std::tuple<std::uint32_t, std::uint16_t, std::uint16_t>;
    using Exchange = std::pair<Client, std::uint8_t>; ///< with the number of the request

    void NoteTime(recording::Microseconds time);
    void AddStep(Pending const& pending, std::string_view datagram);
    bool IsRepetition(Exchange const& exchange, Pending const& before, Pending const& now) const;
    bool IsCutOff(Pending const& pending) const;
    void NoteSoftware(std::span<std::byte const> datagram);

    RequestNamer namer_;
    std::map<Exchange, Pending> pending_;
    std::map<Client, std::uint8_t> lastNumbers_; ///< of requests
    std::unordered_map<std::string, std::vector<Step>> answers_; ///< by the text of the request
    std::set<std::string, std::less<>> datagrams_; ///< each answer once: most are the same again and again
    std::string softwareVersion_;
    std::uint64_t requests_ = 0;
    recording::Microseconds begin_ = 0;
    recording::Microseconds end_ = 0;
};

/// The traffic of each controller of a capture, by its address. Throws RecordingError.
std::map<std::uint32_t, CapturedTraffic> ReadTraffic(recording::CaptureFile& file);

} // namespace harvlink::simulator
