#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace harvlink::gateway {

/// A configuration that can't be used. It has all that is wrong with it: file, line, section and key, and what is wrong.
class ConfigError : public std::runtime_error {
public:
    explicit ConfigError(std::vector<std::string> problems)
        : std::runtime_error(problems.empty() ? "" : problems.front()), problems_(std::move(problems)) {}

    std::vector<std::string> const& Problems() const { return problems_; }

private:
    std::vector<std::string> problems_;
};

} // namespace harvlink::gateway
