#include "cli/doctor/Probe.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "cli/doctor/ProbeDatagrams.h"
#include "cli/doctor/ProbeSocket.h"

namespace harvlink::cli {

namespace {

using Clock = std::chrono::steady_clock;
using Event = ProbeSocket::Event;
using State = PortReport::State;
using Garble = PortReport::Garble;

constexpr std::size_t LargestDatagram = 2048;
/// With the usual time-out long enough for this computer to find out that nobody has the address.
constexpr unsigned DiscoveryTries = 7;
/// Nobody waits for a controller that has gone in the middle.
constexpr unsigned MostSilentProbes = 20;
/// For how long an answer may still come, if the time-out is shorter.
constexpr std::chrono::seconds Patience{1};

class Examination {
    enum class Asked : std::uint8_t { Nothing, Identity, File, Probe };
    enum class Fate : std::uint8_t { Unused, Awaited, Overdue, Done };

    struct Question {
        Asked asked = Asked::Nothing;
        Fate fate = Fate::Unused;
        Clock::time_point sent{};
        bool isDoubtful = false; ///< see Strays::IsDoubtful
    };

    /// What came while a probe waited and is no answer to it.
    struct Strays {
        unsigned spoilt = 0;
        unsigned repeated = 0; ///< carry the id of a probe before the last, which had its answer
        unsigned previous = 0; ///< carry the id of the last probe, which had its answer
        unsigned early = 0; ///< carry the id of a question before the probes
        /// A second answer of the usual kind, or the probe's own with a damaged id.
        bool IsDoubtful() const { return previous + early > 0; }
    };

public:
    Examination(std::string const& host, std::chrono::milliseconds timeout) : socket_(host), timeout_(timeout) {}

    void Discover() {
        while (report_.attempts < DiscoveryTries && !IsKnown()) {
            ++report_.attempts;
            if (IsOpen(report_.commands)) {
                Ask(report_.commands, Asked::Identity, SystemInformation);
            }
            if (IsOpen(report_.files)) {
                Ask(report_.files, Asked::File, MissingFile);
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
        unsigned heardBefore = 0;
        while (link.sent < probes && silent < MostSilentProbes && progress(link.sent)) {
            heardBefore = silent == 0 ? heard_ : heardBefore;
            silent = ProbeOnce() ? 0 : silent + 1;
        }
        AwaitLateOnes();
        SettleDoubts();
        link.silentAtEnd = silent == MostSilentProbes && heard_ == heardBefore ? silent : 0;
        link.lost = link.sent - std::min(link.sent, link.answered + link.late + link.spoilt);
        std::sort(link.milliseconds.begin(), link.milliseconds.end());
    }

    ControllerReport const& Report() const { return report_; }

private:
    static bool IsOpen(PortReport const& port) { return port.state == State::Silent || port.state == State::Garbled; }

    bool IsKnown() const { return !IsOpen(report_.commands) && !IsOpen(report_.files); }

    /// Whether the answer may still come. If its id were given again, it would pass for the answer to that.
    static bool IsOutstanding(Question const& question) {
        return question.fate == Fate::Awaited ||
               (question.fate == Fate::Overdue && Clock::now() - question.sent < 2 * Patience);
    }

    /// Odd ones only, so that an answer with the id before it is seen to be wrong.
    std::uint8_t NextId() {
        auto const after = [](std::uint8_t id) { return static_cast<std::uint8_t>((id + 2) % (HighestId + 1)); };
        std::uint8_t id = after(lastId_);
        while (id != lastId_ && IsOutstanding(questions_.at(id))) {
            id = after(id);
        }
        lastId_ = id == lastId_ ? after(lastId_) : id;
        return lastId_;
    }

    std::uint8_t Ask(PortReport& port, Asked asked, ProbeDatagram (*request)(std::uint8_t)) {
        std::uint8_t const id = NextId();
        questions_.at(id) = {asked, Fate::Awaited, Clock::now()};
        int const error = socket_.Send(port.port, request(id));
        // What answered once is not unreachable; the probe is lost.
        if (error != 0 && IsOpen(port)) {
            port.state = State::Unreachable;
            port.error = error;
        }
        return id;
    }

    ProbeSocket::Received Receive(Clock::time_point end) {
        return socket_.Receive(buffer_, std::chrono::ceil<std::chrono::microseconds>(end - Clock::now()));
    }

    std::span<std::byte const> BytesOf(ProbeSocket::Received const& received) const {
        return std::span<std::byte const>(buffer_).first(received.length);
    }

    void Note(ProbeSocket::Received const& received) {
        if (received.event == Event::Datagram) {
            NoteDatagram(BytesOf(received), received.port);
        } else if (received.event != Event::Nothing) {
            for (PortReport* const port : {&report_.commands, &report_.files}) {
                if (IsOpen(*port) && (received.port == 0 || received.port == port->port)) {
                    NoteError(*port, received);
                }
            }
        }
    }

    static void NoteError(PortReport& port, ProbeSocket::Received const& received) {
        bool const isKnown = received.isFromHost || received.sender.s_addr == 0 || ProbeSocket::IsOwn(received.sender);
        port.state = received.event == Event::PortClosed ? State::Closed : State::Unreachable;
        port.error = received.error;
        port.reporter = isKnown ? "" : AddressText(received.sender);
    }

    void NoteDatagram(std::span<std::byte const> datagram, std::uint16_t source) {
        bool const isWhole = IsWhole(datagram);
        Question* const question = isWhole ? &questions_.at(IdOf(datagram)) : nullptr;
        Asked const asked = question == nullptr ? Asked::Nothing : question->asked;
        bool const isEcho =
            isWhole && std::ranges::equal(datagram, asked == Asked::File ? MissingFile(IdOf(datagram))
                                                                         : SystemInformation(IdOf(datagram)));
        if (isEcho) {
            NoteGarble(source == report_.files.port ? report_.files : report_.commands, Garble::Foreign);
        } else if (asked == Asked::Identity && IsConsistent(datagram, SystemInformationSize)) {
            int const code = CodeOf(datagram);
            report_.commands.state = code == 0 ? State::Answers : State::Refuses;
            report_.commands.code = code;
            report_.software = TextOf(datagram, 0, 24);
            report_.model = TextOf(datagram, 24, 16);
            question->fate = Fate::Done;
        } else if (asked == Asked::File) {
            // That there is no such file is the answer that was expected.
            report_.files.state = State::Answers;
            question->fate = Fate::Done;
        } else {
            NoteGarble(source == report_.files.port ? report_.files : report_.commands,
                       isWhole && asked == Asked::Nothing ? Garble::WrongId
                       : HasSignature(datagram)           ? Garble::Damaged
                                                          : Garble::Foreign);
        }
    }

    static void NoteGarble(PortReport& port, Garble garble) {
        port.garble = std::max(port.garble, garble);
        port.state = IsOpen(port) ? State::Garbled : port.state;
    }

    /// Returns whether something came back for it.
    bool ProbeOnce() {
        std::uint8_t const previous = lastId_;
        std::uint8_t const id = Ask(report_.commands, Asked::Probe, ControllerState);
        LinkReport& link = report_.link;
        ++link.sent;
        Question& question = questions_.at(id);
        Strays strays;
        auto const end = question.sent + timeout_;
        while (question.fate == Fate::Awaited && Clock::now() < end) {
            Judge(Receive(end), id, previous, strays);
        }
        if (question.fate == Fate::Done) {
            link.duplicates += strays.repeated + strays.previous;
            return true;
        }
        link.wrongIds += strays.repeated;
        bool const isSpoilt = strays.spoilt + strays.repeated > 0;
        link.spoilt += isSpoilt ? 1 : 0;
        question.fate = isSpoilt ? Fate::Done : Fate::Overdue;
        question.isDoubtful = !isSpoilt && strays.IsDoubtful();
        doubtful_ += question.isDoubtful ? 1 : 0;
        doubtfulRepeats_ += strays.previous;
        return isSpoilt;
    }

    /// On a link that damages ids, those that may be damaged are.
    void SettleDoubts() {
        LinkReport& link = report_.link;
        if (link.wrongIds > 0) {
            link.spoilt += doubtful_;
            link.wrongIds += doubtful_;
        } else {
            link.duplicates += doubtfulRepeats_;
        }
    }

    void AwaitLateOnes() {
        LinkReport const& link = report_.link;
        auto const end = Clock::now() + std::max<Clock::duration>(timeout_, Patience);
        Strays strays;
        while (link.answered + link.late + link.spoilt < link.sent && Clock::now() < end) {
            Judge(Receive(end), lastId_, lastId_, strays);
        }
    }

    /// What a datagram means while the probe `id` waits for its answer, or after all of them.
    void Judge(ProbeSocket::Received const& received, std::uint8_t id, std::uint8_t previous, Strays& strays) {
        if (received.event != Event::Datagram) {
            return;
        }
        ++heard_;
        LinkReport& link = report_.link;
        auto const datagram = BytesOf(received);
        Question* const question = IsWhole(datagram) ? &questions_.at(IdOf(datagram)) : nullptr;
        bool const isDamaged =
            question == nullptr || (question->asked == Asked::Probe && !IsConsistent(datagram, ControllerStateSize));
        if (isDamaged || question->fate == Fate::Unused) {
            (isDamaged ? link.damaged : link.wrongIds) += 1;
            ++strays.spoilt;
            return;
        }
        if (question->asked == Asked::Probe) {
            NoteSource(received);
        }
        if (question->fate != Fate::Done) {
            strays.early += question->asked == Asked::Probe ? 0 : 1;
            NoteAnswer(*question, IdOf(datagram) == id, CodeOf(datagram));
        } else if (IdOf(datagram) == previous) {
            ++strays.previous;
        } else {
            ++strays.repeated;
        }
    }

    void NoteAnswer(Question& question, bool isAwaited, int code) {
        LinkReport& link = report_.link;
        double const time = std::chrono::duration<double, std::milli>(Clock::now() - question.sent).count();
        if (question.asked == Asked::Probe && isAwaited && question.fate == Fate::Awaited) {
            ++link.answered;
            link.milliseconds.push_back(time);
            link.refused += code != 0 ? 1 : 0;
            link.refusalCode = code != 0 ? code : link.refusalCode;
        } else if (question.asked == Asked::Probe) {
            ++link.late;
            doubtful_ -= question.isDoubtful ? 1 : 0;
            link.latestMilliseconds = std::max(link.latestMilliseconds, time);
        }
        question.fate = Fate::Done;
    }

    void NoteSource(ProbeSocket::Received const& received) {
        LinkReport& link = report_.link;
        bool const isExpected = received.isFromHost && received.port == report_.commands.port;
        if (!isExpected) {
            ++link.otherSources;
            link.otherHost = received.isFromHost ? "" : AddressText(received.sender);
            link.otherPort = received.port;
        }
    }

    ProbeSocket socket_;
    std::chrono::milliseconds timeout_;
    ControllerReport report_;
    std::array<std::byte, LargestDatagram> buffer_{};
    std::array<Question, 256> questions_{};
    std::uint8_t lastId_ = HighestId;
    unsigned heard_ = 0;
    unsigned doubtful_ = 0; ///< probes
    unsigned doubtfulRepeats_ = 0;
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
