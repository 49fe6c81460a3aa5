#pragma once

#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "cli/program/CommandLine.h"
#include "cli/verbs/AllCommands.h"

namespace harvlink::cli {

using Arguments = std::vector<std::string>;

struct Result {
    int exit = 0;
    std::string out;
    std::string err;
};

/// Words between spaces; single quotes keep spaces within a word.
inline Arguments Words(std::string const& line) {
    std::istringstream stream(line);
    Arguments words;
    for (std::string word; stream >> std::quoted(word, '\'');) {
        words.push_back(word);
    }
    return words;
}

inline Result RunTool(std::string const& line, std::string const& answer = "", bool isTerminal = false) {
    Arguments arguments = Words(line);
    std::vector<char const*> argv{"harvlink"};
    for (std::string const& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    std::istringstream in(answer);
    std::ostringstream out;
    std::ostringstream err;
    Console console{in, out, err, isTerminal, false, isTerminal};
    int const exit = RunCommandLine(static_cast<int>(argv.size()), argv.data(), console, AllCommands());
    return {exit, out.str(), err.str()};
}

} // namespace harvlink::cli
