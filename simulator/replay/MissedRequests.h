#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "simulator/protocol/Request.h"

namespace harvlink::simulator {

/// What was asked and is not in the file that is played back.
class MissedRequests {
public:
    enum class Outcome { Refused, AnsweredByVirtualController };

    void Note(Request const& request, Outcome outcome);

    /// A line for each kind of request: "12 x ByteVariable instance 5 service 14: refused".
    std::vector<std::string> Lines() const;

private:
    std::map<std::string, std::uint64_t> counts_; ///< by what the line says
    std::uint64_t others_ = 0; ///< of kinds for which there was no room
};

} // namespace harvlink::simulator
