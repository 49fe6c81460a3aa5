#include "simulator/replay/MissedRequests.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "simulator/protocol/CommandName.h"

namespace harvlink::simulator {

namespace {

/// The name of a file at the start of a transfer, without what could not be shown.
std::string FileNameOf(Request const& request) {
    std::string name;
    for (std::byte const byte : request.payload.first(std::min(request.payload.size(), FileNameSize))) {
        auto const character = std::to_integer<char>(byte);
        if (character > ' ' && character <= '~') {
            name += character;
        }
    }
    return name;
}

std::string NameOf(Request const& request) {
    if (request.port == Port::File) {
        bool const isOpening = request.header.ack == 0;
        return fmt::format("{} {}", NameOfFileService(request.subHeader.service),
                           isOpening ? FileNameOf(request) : fmt::format("block {:#x}", request.header.blockNumber));
    }
    auto const& sub = request.subHeader;
    return fmt::format("{} (command {}) instance {} attribute {} service {:#04x}{}", NameOfCommand(sub.command),
                       sub.command, sub.instance, sub.attribute, sub.service, request.IsWrite() ? " (write)" : "");
}

} // namespace

void MissedRequests::Note(Request const& request, Outcome outcome) {
    bool const isBlock = request.port == Port::File && request.header.ack != 0;
    if (isBlock && outcome == Outcome::AnsweredByVirtualController) {
        return; // its transfer is in the list
    }
    constexpr std::size_t MostKinds = 1000;
    char const* const how = outcome == Outcome::Refused ? "refused" : "answered by the virtual controller";
    std::string const name = fmt::format("{}: {}", NameOf(request), how);
    if (auto const found = counts_.find(name); found != counts_.end()) {
        ++found->second;
    } else if (counts_.size() < MostKinds) {
        counts_.emplace(name, 1);
    } else {
        ++others_;
    }
}

std::vector<std::string> MissedRequests::Lines() const {
    std::vector<std::string> lines;
    for (auto const& [name, count] : counts_) {
        lines.push_back(fmt::format("{} x {}", count, name));
    }
    if (others_ > 0) {
        lines.push_back(fmt::format("{} x others", others_));
    }
    return lines;
}

} // namespace harvlink::simulator
