#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "files/FileDownload.h"
#include "fleet/ControllerFacts.h"
#include "fleet/Item.h"
#include "fleet/Query.h"
#include "fleet/Services.h"

namespace harvlink::fleet {

/// What has to be asked before the items of a controller can be read: what it is, from which number it counts its variables
/// if any is read, and the axes of the groups whose positions are read. A step at a time.
class StartUp {
public:
    explicit StartUp(std::span<Item const> items);

    enum class State : std::uint8_t { AskRobotPort, AskFilePort, Done, Failed };
    State Now() const { return state; }

    /// The request to the robot port.
    Query Next() const;
    /// The datagram to the file port; none when the file has ended: EndOfFile follows.
    std::optional<FileStep> NextOfFile();
    void EndOfFile();

    /// What became of the request: the code of the answer or of its lack, and its payload.
    void Take(std::int32_t code, std::span<std::byte const> payload);
    void TakeOfFile(std::int32_t code, FileReply const& reply);

    ControllerFacts const& Facts() const { return facts; }
    std::int32_t Failure() const { return failure; }

private:
    enum class Subject : std::uint8_t { Software, VariableOrigin, Axes };

    void TakeSoftware(std::span<std::byte const> payload);
    void TakeAxes(std::span<std::byte const> payload);
    void GoOn();
    void Fail(std::int32_t code);

    bool needsVariableOrigin = false;
    std::vector<ControlGroupId> groups; ///< whose axes are still to be asked
    Subject subject = Subject::Software;
    State state = State::AskRobotPort;
    std::optional<FileDownload> download;
    ControllerFacts facts;
    std::int32_t failure = 0;
};

} // namespace harvlink::fleet
