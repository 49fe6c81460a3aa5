#include <array>
#include <bitset>

#include <fmt/format.h>

#include "cli/snapshot/TableReaders.h"
#include "harvlink/IOInterface.h"

namespace harvlink::cli::snapshot {

namespace {

constexpr int NoSuchAddress = 40961;
constexpr int NoSuchRegister = 65535;
constexpr unsigned GroupLimit = 10'000;
constexpr unsigned RegisterLimit = 2048;

// The groups of eight at which classes of signals begin, on any generation. The groups of a class follow each other
// without a gap, so the first that the controller refuses is the end of the class.
constexpr std::array<unsigned, 16> FirstGroups{1,    1001, 2001, 2501, 2701, 3001, 3501, 3701,
                                               4001, 5001, 6001, 7001, 8001, 8201, 8701, GroupLimit};

StatusInfo ReadSignalRun(Source& source, Entries& table, unsigned first, unsigned end) {
    for (unsigned group = first; group < end; ++group) {
        std::bitset<8> bits;
        std::string const name = fmt::format("{}", group * 10);
        StatusInfo status = source.Ask("signals " + name, [&] { return source.robot.IO->ReadByte(group * 10, bits); });
        if (status.StatusCode != 0) {
            return status.StatusCode == NoSuchAddress ? StatusInfo{} : status;
        }
        table.push_back({name, bits.to_string()});
    }
    return {};
}

} // namespace

void ReadSignals(Source& source, Snapshot& snapshot) {
    Entries& table = snapshot.tables["signals"];
    for (std::size_t i = 0; i + 1 < FirstGroups.size() && !source.IsGone(); ++i) {
        StatusInfo const status = ReadSignalRun(source, table, FirstGroups.at(i), FirstGroups.at(i + 1));
        if (status.StatusCode != 0) {
            snapshot.missing.push_back({fmt::format("signals/{}", FirstGroups.at(i) * 10), status});
        }
    }
}

void ReadRegisters(Source& source, Snapshot& snapshot) {
    Entries& table = snapshot.tables["registers"];
    for (unsigned index = 0; index <= RegisterLimit; ++index) {
        std::uint16_t value = 0;
        std::string const name = fmt::format("{}", index);
        StatusInfo const status = source.Ask("register " + name, [&] {
            return source.robot.IO->ReadRegister(static_cast<std::uint16_t>(index), value);
        });
        if (status.StatusCode == NoSuchRegister) {
            return;
        }
        if (status.StatusCode != 0) {
            snapshot.missing.push_back({"registers/" + name, status});
            return;
        }
        table.push_back({name, fmt::format("{}", value)});
    }
}

} // namespace harvlink::cli::snapshot
