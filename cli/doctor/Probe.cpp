#include "cli/doctor/Probe.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "cli/doctor/ProbeDatagrams.h"
#include "cli/doctor/ProbeSocket.h"
#include "cli/program/HostAddress.h"

namespace harvlink::cli {

namespace {

using Clock = std::chrono::steady_clock;
using Event = ProbeSocket::Event;
using State = PortReport::State;
using BadAnswer = PortReport::BadAnswer;

constexpr std::size_t LargestDatagram = 2048;
/// With the usual time-out this is long enough for the operating system to find out that no device has the address.
constexpr unsigned DiscoveryTries = 7;
/// A series ends early if the controller has stopped answering.
constexpr unsigned MostSilentProbes = 20;
/// For how long an answer may still arrive, if the time-out is shorter.
constexpr std::chrono::seconds LateAnswerTime{1};

class ControllerProbe {
    enum class Asked : std::uint8_t { Nothing, Identity, File, Probe };
    enum class Phase : std::uint8_t { Unused, Awaited, Overdue, Done };

    struct Question {
        Asked asked = Asked::Nothing;
        Phase phase = Phase::Unused;
        Clock::time_point sent{};
        bool isAmbiguous = false; ///< see OtherAnswers::IsAmbiguous
    };

    /// What arrived while a probe waited and was not its answer.
    struct OtherAnswers {
        unsigned spoilt = 0;
        unsigned repeated = 0; ///< with the id of an earlier probe, which had its answer
        unsigned previous = 0; ///< with the id of the last probe, which had its answer
        unsigned early = 0; ///< with the id of a question asked before the probes
        /// Either an ordinary second answer, or the probe's own with a damaged id.
        bool IsAmbiguous() const { return previous + early > 0; }
    };

public:
    ControllerProbe(std::string const& host, std::chrono::milliseconds timeout, std::function<bool()> const& goesOn)
        : socket_(host), timeout_(timeout), goesOn_(goesOn) {}

    void Discover() {
        while (report_.attempts < DiscoveryTries && !IsKnown() && goesOn_()) {
            ++report_.attempts;
            if (IsOpen(report_.commands)) {
                Ask(report_.commands, Asked::Identity, SystemInformation);
            }
            if (IsOpen(report_.files)) {
                Ask(report_.files, Asked::File, MissingFile);
            }
            auto const end = Clock::now() + timeout_;
            while (Clock::now() < end && !IsKnown() && goesOn_()) {
                Note(Receive(end));
            }
        }
    }

    void Measure(unsigned probes, std::function<void(unsigned)> const& progress) {
        LinkReport& link = report_.link;
        unsigned silent = 0;
        unsigned receivedBefore = 0;
        while (link.sent < probes && silent < MostSilentProbes && goesOn_()) {
            progress(link.sent);
            receivedBefore = silent == 0 ? received_ : receivedBefore;
            silent = ProbeOnce() ? 0 : silent + 1;
        }
        WaitForLateAnswers();
        CountAmbiguous();
        link.silentAtEnd = silent == MostSilentProbes && received_ == receivedBefore ? silent : 0;
        link.lost = link.sent - std::min(link.sent, link.answered + link.late + link.spoilt);
        std::sort(link.milliseconds.begin(), link.milliseconds.end());
    }

    ControllerReport const& Report() const { return report_; }

private:
    static bool IsOpen(PortReport const& port) {
        return port.state == State::Silent || port.state == State::BadAnswers;
    }

    bool IsKnown() const { return !IsOpen(report_.commands) && !IsOpen(report_.files); }

    /// Whether the answer may still arrive. Its id must not be used again until then.
    static bool IsOutstanding(Question const& question) {
        return question.phase == Phase::Awaited ||
               (question.phase == Phase::Overdue && Clock::now() - question.sent < 2 * LateAnswerTime);
    }

    /// Only odd ids are used, so that an answer with an id that is off by one is seen to be wrong.
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
        questions_.at(id) = {asked, Phase::Awaited, Clock::now()};
        int const error = socket_.Send(port.port, request(id));
        // A port that has answered once is not unreachable; the probe counts as lost.
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
        bool const isKnown = received.isFromHost || received.sender == 0 || ProbeSocket::IsOwn(received.sender);
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
            NoteBadAnswer(source == report_.files.port ? report_.files : report_.commands, BadAnswer::Foreign);
        } else if (asked == Asked::Identity && IsConsistent(datagram, SystemInformationSize)) {
            int const code = CodeOf(datagram);
            report_.commands.state = code == 0 ? State::Answers : State::Refuses;
            report_.commands.code = code;
            report_.software = TextOf(datagram, 0, 24);
            report_.model = TextOf(datagram, 24, 16);
            question->phase = Phase::Done;
        } else if (asked == Asked::File) {
            // The expected answer is that there is no such file.
            report_.files.state = State::Answers;
            question->phase = Phase::Done;
        } else {
            NoteBadAnswer(source == report_.files.port ? report_.files : report_.commands,
                          isWhole && asked == Asked::Nothing ? BadAnswer::WrongId
                          : HasSignature(datagram)           ? BadAnswer::Damaged
                                                             : BadAnswer::Foreign);
        }
    }

    static void NoteBadAnswer(PortReport& port, BadAnswer badAnswer) {
        port.badAnswer = std::max(port.badAnswer, badAnswer);
        port.state = IsOpen(port) ? State::BadAnswers : port.state;
    }

    /// Returns whether anything came back.
    bool ProbeOnce() {
        std::uint8_t const previous = lastId_;
        std::uint8_t const id = Ask(report_.commands, Asked::Probe, ControllerState);
        LinkReport& link = report_.link;
        ++link.sent;
        Question& question = questions_.at(id);
        OtherAnswers others;
        auto const end = question.sent + timeout_;
        while (question.phase == Phase::Awaited && Clock::now() < end && goesOn_()) {
            CountAnswer(Receive(end), id, previous, others);
        }
        if (question.phase == Phase::Awaited && !goesOn_()) {
            --link.sent; // its time was not over
            return true;
        }
        if (question.phase == Phase::Done) {
            link.duplicates += others.repeated + others.previous;
            return true;
        }
        link.wrongIds += others.repeated;
        bool const isSpoilt = others.spoilt + others.repeated > 0;
        link.spoilt += isSpoilt ? 1 : 0;
        question.phase = isSpoilt ? Phase::Done : Phase::Overdue;
        question.isAmbiguous = !isSpoilt && others.IsAmbiguous();
        ambiguous_ += question.isAmbiguous ? 1 : 0;
        ambiguousRepeats_ += others.previous;
        return isSpoilt;
    }

    /// Ambiguous answers count as damaged on a link that damages ids, else as duplicates.
    void CountAmbiguous() {
        LinkReport& link = report_.link;
        if (link.wrongIds > 0) {
            link.spoilt += ambiguous_;
            link.wrongIds += ambiguous_;
        } else {
            link.duplicates += ambiguousRepeats_;
        }
    }

    void WaitForLateAnswers() {
        LinkReport const& link = report_.link;
        auto const end =
            Clock::now() + (goesOn_() ? std::max<Clock::duration>(timeout_, LateAnswerTime) : LateAnswerTime);
        OtherAnswers others;
        while (link.answered + link.late + link.spoilt < link.sent && Clock::now() < end) {
            CountAnswer(Receive(end), lastId_, lastId_, others);
        }
    }

    /// Counts a datagram that arrives while the probe `id` waits for its answer, or after all probes.
    void CountAnswer(ProbeSocket::Received const& received, std::uint8_t id, std::uint8_t previous,
                     OtherAnswers& others) {
        if (received.event != Event::Datagram) {
            return;
        }
        ++received_;
        LinkReport& link = report_.link;
        auto const datagram = BytesOf(received);
        Question* const question = IsWhole(datagram) ? &questions_.at(IdOf(datagram)) : nullptr;
        bool const isDamaged =
            question == nullptr || (question->asked == Asked::Probe && !IsConsistent(datagram, ControllerStateSize));
        if (isDamaged || question->phase == Phase::Unused) {
            (isDamaged ? link.damaged : link.wrongIds) += 1;
            ++others.spoilt;
            return;
        }
        if (question->asked == Asked::Probe) {
            NoteSource(received);
        }
        if (question->phase != Phase::Done) {
            others.early += question->asked == Asked::Probe ? 0 : 1;
            NoteAnswer(*question, IdOf(datagram) == id, CodeOf(datagram));
        } else if (IdOf(datagram) == previous) {
            ++others.previous;
        } else {
            ++others.repeated;
        }
    }

    void NoteAnswer(Question& question, bool isAwaited, int code) {
        LinkReport& link = report_.link;
        double const time = std::chrono::duration<double, std::milli>(Clock::now() - question.sent).count();
        if (question.asked == Asked::Probe && isAwaited && question.phase == Phase::Awaited) {
            ++link.answered;
            link.milliseconds.push_back(time);
            link.refused += code != 0 ? 1 : 0;
            link.refusalCode = code != 0 ? code : link.refusalCode;
        } else if (question.asked == Asked::Probe) {
            ++link.late;
            ambiguous_ -= question.isAmbiguous ? 1 : 0;
            link.latestMilliseconds = std::max(link.latestMilliseconds, time);
        }
        question.phase = Phase::Done;
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
    std::function<bool()> const& goesOn_;
    ControllerReport report_;
    std::array<std::byte, LargestDatagram> buffer_{};
    std::array<Question, 256> questions_{};
    std::uint8_t lastId_ = HighestId;
    unsigned received_ = 0;
    unsigned ambiguous_ = 0; ///< probes
    unsigned ambiguousRepeats_ = 0;
};

} // namespace

ControllerReport ProbeController(std::string const& host, std::chrono::milliseconds timeout, unsigned probes,
                                 std::function<void(unsigned)> const& progress, std::function<bool()> const& goesOn) {
    ControllerProbe probe(host, timeout, goesOn);
    probe.Discover();
    if (probe.Report().commands.state == State::Answers) {
        probe.Measure(probes, progress);
    }
    return probe.Report();
}

} // namespace harvlink::cli
