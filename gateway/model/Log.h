#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace harvlink::gateway {

enum class LogLevel { Error, Warning, Info, Debug };

/// A name and a value that belong to a line of the log. Never a secret.
using LogField = std::pair<std::string_view, std::string>;

/// Writes lines such as: level=warning text="the controller is silent" controller=press1. Values that need it are quoted, control
/// characters are escaped, so that a text from a controller or from the network stays within its line and its field. May be
/// called from any thread.
class Log {
public:
    using Write = std::function<void(LogLevel, std::string const& line)>;

    /// Writes to the error stream; under systemd with the level as its journal reads it.
    Log();
    /// Calls `write` for each line, one at a time.
    explicit Log(Write write);
    Log(Log const&) = delete;
    Log& operator=(Log const&) = delete;
    ~Log();

    void SetLevel(LogLevel least); ///< Info without

    void Error(std::string_view text, std::initializer_list<LogField> fields = {});
    void Warning(std::string_view text, std::initializer_list<LogField> fields = {});
    void Info(std::string_view text, std::initializer_list<LogField> fields = {});
    void Debug(std::string_view text, std::initializer_list<LogField> fields = {});

private:
    void Line(LogLevel level, std::string_view text, std::initializer_list<LogField> fields);

    struct State;
    std::unique_ptr<State> state_;
};

} // namespace harvlink::gateway
