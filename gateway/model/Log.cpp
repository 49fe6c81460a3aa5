#include "gateway/model/Log.h"

#include <array>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

namespace harvlink::gateway {

namespace {

constexpr std::array<std::string_view, 4> LevelNames{"error", "warning", "info", "debug"};
constexpr std::array<int, 4> SystemLevels{3, 4, 6, 7}; ///< of the system's journal

bool IsPlain(unsigned char letter) {
    return letter > ' ' && letter < 0x7F && letter != '"' && letter != '\\' && letter != '=';
}

void AppendValue(std::string& line, std::string_view value) {
    bool isPlain = !value.empty();
    for (char const letter : value) {
        isPlain = isPlain && IsPlain(static_cast<unsigned char>(letter));
    }
    if (isPlain) {
        line += value;
        return;
    }
    line += '"';
    for (char const letter : value) {
        auto const code = static_cast<unsigned char>(letter);
        if (letter == '"' || letter == '\\') {
            line += '\\';
            line += letter;
        } else if (code < ' ' || code == 0x7F) {
            line += fmt::format("\\x{:02x}", code);
        } else {
            line += letter;
        }
    }
    line += '"';
}

/// Whoever reads the error stream may have stopped: that must not stop whoever has something to say.
class ErrorStream {
public:
    void operator()(LogLevel level, std::string const& line) {
        if (!CanWrite()) {
            ++lost_;
            return;
        }
        std::string text;
        if (lost_ > 0) {
            Append(text, LogLevel::Warning,
                   fmt::format("level=warning text=\"the log could not be written\" lines={}", lost_));
            lost_ = 0;
        }
        Append(text, level, line);
        [[maybe_unused]] auto const written = std::fwrite(text.data(), 1, text.size(), stderr);
    }

private:
    /// Waits a moment for a reader that is only slow, but not for each line.
    bool CanWrite() const {
        constexpr int Patience = 100; // milliseconds
        pollfd stream{STDERR_FILENO, POLLOUT, 0};
        return poll(&stream, 1, lost_ > 0 ? 0 : Patience) != 0; // a closed stream does not wait either
    }

    void Append(std::string& text, LogLevel level, std::string_view line) const {
        constexpr std::size_t Longest = PIPE_BUF - 200; // so much can be written at once, if anything can
        if (isJournal_) {
            text += fmt::format("<{}>", SystemLevels.at(static_cast<std::size_t>(level)));
        }
        text.append(line.substr(0, Longest)).append("\n");
    }

    bool isJournal_ = std::getenv("JOURNAL_STREAM") != nullptr; // NOLINT(concurrency-mt-unsafe): never set here
    std::uint64_t lost_ = 0; ///< lines
};

} // namespace

struct Log::State {
    std::mutex mutex;
    Write write;
    std::atomic<LogLevel> least{LogLevel::Info};
};

Log::Log() : Log(ErrorStream()) {}

Log::Log(Write write) : state_(std::make_unique<State>()) {
    state_->write = std::move(write);
}

Log::~Log() = default;

void Log::SetLevel(LogLevel least) {
    state_->least = least;
}

void Log::Line(LogLevel level, std::string_view text, std::initializer_list<LogField> fields) {
    if (level > state_->least) {
        return;
    }
    std::string line = fmt::format("level={} text=", LevelNames.at(static_cast<std::size_t>(level)));
    AppendValue(line, text);
    for (auto const& [name, value] : fields) {
        line += ' ';
        line += name;
        line += '=';
        AppendValue(line, value);
    }
    std::scoped_lock const lock(state_->mutex);
    state_->write(level, line);
}

void Log::Error(std::string_view text, std::initializer_list<LogField> fields) {
    Line(LogLevel::Error, text, fields);
}

void Log::Warning(std::string_view text, std::initializer_list<LogField> fields) {
    Line(LogLevel::Warning, text, fields);
}

void Log::Info(std::string_view text, std::initializer_list<LogField> fields) {
    Line(LogLevel::Info, text, fields);
}

void Log::Debug(std::string_view text, std::initializer_list<LogField> fields) {
    Line(LogLevel::Debug, text, fields);
}

} // namespace harvlink::gateway
