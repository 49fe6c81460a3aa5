#include <algorithm>
#include <array>
#include <string>

#include "cases/Cases.h"
#include "support/AllocationCounter.h"
#include "support/BareClient.h"
#include "support/Responder.h"

namespace harvlink::bench {
namespace {

constexpr std::size_t mebibyte = 1 << 20;

using BlockReply = IncomingPacket<std::array<char, FileBlockSize>>;

std::string NameOf(std::size_t size) {
    return std::to_string(size) + ".DAT";
}

/// The same datagrams with nothing around them.
void BareSave(BareClient& client, std::size_t size, std::string& text) {
    std::string const name = NameOf(size);
    OutgoingPacket<std::array<char, FileNameSize>> request;
    request.header.division = Division::FileControl;
    request.header.payloadSize = static_cast<std::uint16_t>(name.size());
    request.subHeader = SubHeaderForSending(FileServices::SaveFile);
    std::ranges::copy(name, request.payload.begin());
    BlockReply reply;
    client.Exchange(request.Bytes().first(HeaderSize + name.size()), reply.Bytes(), Division::FileControl);
    request.header.ack = 1;
    request.header.payloadSize = 0;
    text.clear();
    for (;;) {
        text.append(reply.payload.data(), reply.header.payloadSize);
        request.header.blockNumber = reply.header.blockNumber;
        if ((reply.header.blockNumber & LastBlockFlag) != 0) {
            client.Send(request.Bytes().first(HeaderSize), Division::FileControl);
            return;
        }
        client.Exchange(request.Bytes().first(HeaderSize), reply.Bytes(), Division::FileControl);
    }
}

void BareLoad(BareClient& client, std::string const& text) {
    OutgoingPacket<std::array<char, FileBlockSize>> block;
    block.header.division = Division::FileControl;
    block.subHeader = SubHeaderForSending(FileServices::LoadFile);
    IncomingPacket<std::uint8_t> reply;
    client.Exchange(block.Bytes().first(HeaderSize), reply.Bytes(), Division::FileControl);
    block.header.payloadSize = FileBlockSize;
    for (std::size_t first = 0; first < text.size(); first += FileBlockSize) {
        text.copy(block.payload.data(), FileBlockSize, first);
        ++block.header.blockNumber;
        client.Exchange(block.Bytes().first(HeaderSize + FileBlockSize), reply.Bytes(), Division::FileControl);
    }
}

Row MemoryRow(std::string const& name, double value, double target) {
    return {
        .name = name, .unit = "", .harvlink = value, .gated = value, .comparison = "<=", .target = target, .note = ""};
}

struct HeapCost {
    double allocationsPerBlock = 0.0;
    double extraMemory = 0.0; ///< peak above the start, by file size
};

HeapCost CostOf(std::size_t size, auto transfer) {
    HeapUse const before = CurrentHeapUse();
    ResetPeak();
    transfer();
    HeapUse const after = CurrentHeapUse();
    auto const blocks = size / FileBlockSize + 1;
    return {static_cast<double>(after.allocations - before.allocations) / static_cast<double>(blocks),
            static_cast<double>(after.peakBytes - before.bytes) / static_cast<double>(size)};
}

void AddThroughput(Report& report, std::string const& name, Paired const& seconds) {
    double const megabytes = static_cast<double>(mebibyte) * 1e-6;
    AddRate(report, name, "MB/s", megabytes, seconds, 0.93);
}

} // namespace

void FileCases(Report& report) {
    PinTo(0);
    std::string const address = BenchAddress(2);
    Responder const responder({address}, 0);
    BareClient bare(address);
    Connection const connection = Open(address);
    std::string text;
    auto const save = [&](std::size_t size) {
        Require(connection->Files->SaveFromControllerToString(NameOf(size), text));
    };
    auto const load = [&] { Require(connection->Files->LoadToControllerFromString("BENCH.DAT", text)); };

    AddThroughput(report, "file of 1 MiB to a string",
                  Pair([&] { return Time([&] { BareSave(bare, mebibyte, text); }); },
                       [&] { return Time([&] { save(mebibyte); }); }));
    AddThroughput(report, "file of 1 MiB from a string",
                  Pair([&] { return Time([&] { BareLoad(bare, text); }); }, [&] { return Time(load); }));

    std::string().swap(text);
    HeapCost const saving = CostOf(mebibyte, [&] { save(mebibyte); });
    HeapCost const loading = CostOf(mebibyte, load);
    report.Add(MemoryRow("file to a string, allocations per block", saving.allocationsPerBlock, 0.02));
    report.Add(MemoryRow("file to a string, extra memory by file size", saving.extraMemory - 1.0, 1.2));
    report.Add(MemoryRow("file from a string, allocations per block", loading.allocationsPerBlock, 0.02));
    report.Add(MemoryRow("file from a string, extra memory by file size", loading.extraMemory, 1.2));

    Points growth;
    for (std::size_t size = mebibyte / 100; size <= 10 * mebibyte; size *= 10) {
        growth.emplace_back(static_cast<double>(size), MedianTime(5, [&] { save(size); }));
    }
    AddGrowth(report, "bytes of a file", growth);
}

} // namespace harvlink::bench
