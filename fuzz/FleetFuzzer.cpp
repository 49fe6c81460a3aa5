#include <vector>

#include "Input.h"
#include "fleet/ChangeFilter.h"
#include "fleet/ControllerRecord.h"
#include "fleet/Edges.h"
#include "fleet/ItemCheck.h"
#include "fleet/Query.h"
#include "fleet/Record.h"
#include "fleet/StartUp.h"

// The answers that a fleet takes: those of the start-up, and those to any item. Input: items, then answers.

namespace harvlink::fuzz {
namespace {

// NOLINTNEXTLINE(google-build-using-namespace): nearly all that follows is of the engine
using namespace fleet;

FleetItem TakeItem(Input& input) {
    FleetItem item;
    item.kind = static_cast<FleetItemKind>(input.Take<std::uint8_t>() % 20);
    item.index = input.Take<std::uint16_t>();
    item.group = static_cast<ControlGroupId>(input.Take<std::uint8_t>() % 46);
    item.coordinate = static_cast<CoordinateType>(input.Take<std::uint8_t>() % 20);
    item.userCoordinateNumber = input.Take<std::uint8_t>() % 64;
    item.axis = input.Take<std::int8_t>() % 9 - 1;
    item.deadBand = input.Take<std::uint8_t>();
    return item;
}

/// The payload of an answer that is long enough for the request.
std::span<std::byte const> TakePayload(Input& input, std::size_t minimum, FileReply& reply) {
    reply = {};
    auto const taken = input.TakeBytes(std::max<std::size_t>(input.Take<std::uint8_t>(), minimum));
    auto const bytes = std::as_writable_bytes(std::span(reply.payload));
    std::ranges::copy(taken, bytes.begin());
    return bytes.first(std::max(taken.size(), minimum));
}

ControllerFacts Learn(std::span<Item const> items, Input& input) {
    StartUp startUp(items);
    FileReply reply;
    for (int steps = 0; steps < 100 && startUp.Now() <= StartUp::State::AskFilePort; ++steps) {
        auto const code = static_cast<std::int32_t>(input.Take<std::uint8_t>() % 4 == 3 ? 40961 : 0);
        if (startUp.Now() == StartUp::State::AskRobotPort) {
            std::size_t const minimum = startUp.Next().minimumReply;
            startUp.Take(code, TakePayload(input, minimum, reply));
        } else if (startUp.NextOfFile()) {
            (void)TakePayload(input, 0, reply);
            reply.header.blockNumber = input.Take<std::uint32_t>();
            startUp.TakeOfFile(code, reply);
        } else {
            startUp.EndOfFile();
        }
    }
    return startUp.Facts();
}

void TakeAnswer(ControllerRecord& controller, std::uint32_t number, ControllerFacts const& facts, Edges& edges,
                ChangeFilter& filter, Input& input) {
    Item const& item = controller.items[number];
    if (RefusalByGeneration(item, facts.generation) != 0) {
        return;
    }
    std::vector<std::byte> record(RoomForRecord(item));
    std::size_t size = 0;
    FileReply reply;
    for (unsigned part = 0; part < item.Parts(); ++part) {
        std::size_t const minimum = QueryFor(item, part, facts).minimumReply;
        size = MakeRecord(item, part, facts, TakePayload(input, minimum, reply), record);
    }
    size = item.Parts() > 1 ? record.size() : size;
    Require(size <= record.size(), "a record has its room");
    std::vector<std::byte> old(record.size());
    Stamped before{.stamp = controller.table.Read(item, old)};
    before.record = std::span(old).first(before.stamp.size);
    Stamped const now{{.answerTime = 1, .size = static_cast<std::uint16_t>(size), .quality = FleetQuality::Good},
                      std::span(record).first(size)};
    controller.table.Write(item, now.stamp, now.record);
    edges.Look(item, before.record, now.record, 1);
    (void)filter.Passes(number, before, now);
    std::vector<std::byte> again(record.size());
    Stamp const stamp = controller.table.Read(item, again);
    Require(std::ranges::equal(std::span(again).first(stamp.size), now.record), "the table gives what it got");
    Reading const reading = ReadRecord(item, now.record);
    Require((reading.code != 0) == (reading.value.index() == 0), "there is a value or a code");
    (void)RefusalCode(item, input.Take<std::uint16_t>());
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    FleetGroup group;
    group.onChange = true;
    for (int count = input.Take<std::uint8_t>() % 8; count >= 0; --count) {
        FleetItem const item = TakeItem(input);
        if (WhyNot(item, ControllerVersion::VersionUnknown).empty()) {
            group.items.push_back(item);
        }
    }
    if (group.items.empty()) {
        return 0;
    }
    ControllerRecord controller(1, "c", {.address = "127.0.0.1"}, {}, {group});
    ControllerFacts const facts = Learn(controller.items, input);
    EventQueue events(16);
    Edges edges(events, 1);
    ChangeFilter filter(controller);
    for (int round = 0; round < 3; ++round) {
        for (std::uint32_t i = 0; i < controller.items.size(); ++i) {
            TakeAnswer(controller, i, facts, edges, filter, input);
        }
    }
    return 0;
}

} // namespace harvlink::fuzz
