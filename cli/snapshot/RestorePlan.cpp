#include "cli/snapshot/RestorePlan.h"

#include <algorithm>

#include "cli/output/Words.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/VariableAccess.h"
#include "harvlink/ControllerVersion.h"
#include "harvlink/FileInterface.h"
#include "harvlink/IOInterface.h"
#include "words/text/Text.h"
#include "words/values/FileNames.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::snapshot {

namespace {

struct AddressRange {
    unsigned first = 0;
    unsigned last = 0;
};

/// The addresses of a class. Nothing is sent for them: the library knows them.
AddressRange RangeOf(IOInterface& io, IOType type) {
    constexpr unsigned char LastBit = 7;
    StatusInfo status;
    AddressRange range;
    range.first = io.ConvertIOGroupToBitAddress(type, 1, 0, status);
    for (std::uint16_t group = 1; status.StatusCode == 0; ++group) {
        unsigned const last = io.ConvertIOGroupToBitAddress(type, group, LastBit, status);
        range.last = status.StatusCode == 0 ? last : range.last;
    }
    return range;
}

bool IsOlder(Snapshot const& live) {
    auto const generation = std::find_if(live.controller.begin(), live.controller.end(),
                                         [](Entry const& entry) { return entry.name == "generation"; });
    return generation != live.controller.end() &&
           std::any_of(ControllerGenerations.begin(), ControllerGenerations.end(),
                       [&](ControllerGeneration const& known) {
                           return known.version < ControllerVersion::VersionYA && known.letters == generation->value;
                       });
}

/// The signals that a client may write.
std::vector<AddressRange> WritableSignals(IOInterface& io, bool isOlder) {
    std::vector<AddressRange> ranges{RangeOf(io, IOType::NetworkInput)};
    if (!isOlder) {
        ranges.push_back(RangeOf(io, IOType::GeneralOutput));
        ranges.push_back(RangeOf(io, IOType::InterfacePanelInput));
    }
    return ranges;
}

bool IsWritableFile(std::string const& name) {
    std::vector<FileType> const kinds = KindsOf(name);
    return kinds.size() == 1 && FileKinds.at(static_cast<std::size_t>(kinds.front())).writable;
}

bool CanBeWritten(ChangedEntry const& change, std::vector<AddressRange> const& signals) {
    if (change.section == FilesSection) {
        return IsWritableFile(change.name);
    }
    return change.before &&
           (change.section != "signals" || std::any_of(signals.begin(), signals.end(), [&](AddressRange range) {
                auto const address = ParseNumber<unsigned>(change.name, "address of a signal");
                return address >= range.first && address <= range.last;
            }));
}

PendingWrite WriteOfFile(std::string const& name, std::string const& contents, FileInterface& files) {
    return {name, [&files, name, &contents] { return files.LoadToControllerFromString(name, contents); },
            [&files, name, &contents](bool& isHeld) {
                std::string present;
                StatusInfo status = files.SaveFromControllerToString(name, present);
                isHeld = status.StatusCode == 0 && present == contents;
                bool const isRefused = status.StatusCode != 0 && !LostAnswer(status) && !IsSilence(status);
                return isRefused ? StatusInfo{} : status; // there is no such file yet
            },
            AfterLoss::WriteAgain};
}

PendingWrite WriteOfRegister(std::string const& name, std::string const& text, IOInterface& io) {
    auto const index = ParseNumber<std::uint16_t>(name, "register number");
    auto const value = ParseNumber<std::uint16_t>(text, "register value");
    return {"register " + name, [&io, index, value] { return io.WriteRegister(index, value); },
            [&io, index, value](bool& isHeld) {
                std::uint16_t present = 0;
                StatusInfo status = io.ReadRegister(index, present);
                isHeld = present == value;
                return status;
            },
            AfterLoss::WriteAgain};
}

/// What is wired to a signal might act twice.
PendingWrite WriteOfSignal(std::string const& name, bool isOn, IOInterface& io) {
    auto const address = ParseNumber<unsigned>(name, "address of a signal");
    return {"signal " + name, [&io, address, isOn] { return io.WriteBit(address, isOn); },
            [&io, address, isOn](bool& isHeld) {
                bool present = !isOn;
                StatusInfo status = io.ReadBit(address, present);
                isHeld = present == isOn;
                return status;
            },
            AfterLoss::ReadBack};
}

PendingWrite WriteOf(ChangedEntry const& change, Snapshot const& saved, QuorvanController& robot) {
    std::string const& name = change.name;
    std::string const value = change.after.value_or("");
    if (change.section == FilesSection) {
        return WriteOfFile(name, saved.files.find(name)->second, *robot.Files);
    }
    if (change.section == "variables") {
        VariableAddress const address = ParseVariable(name);
        return PendingVariable(*robot.Variables, {address, ParseVariableValue(address.kind, value)},
                               AfterLoss::WriteAgain);
    }
    return change.section == "registers" ? WriteOfRegister(name, value, *robot.IO)
                                         : WriteOfSignal(name, value == "on", *robot.IO);
}

} // namespace

RestorePlan MakePlan(Snapshot const& live, Snapshot const& saved, std::vector<std::string_view> const& sections,
                     IOInterface& io) {
    RestorePlan plan;
    std::vector<ChangedEntry> const changes = Compare(live, saved).changes;
    std::vector<AddressRange> const signals = WritableSignals(io, IsOlder(live));
    for (std::string_view const section : sections) {
        for (ChangedEntry const& change : changes) {
            if (change.section == section && change.after) {
                (CanBeWritten(change, signals) ? plan.changes : plan.impossible).push_back(change);
            }
        }
    }
    return plan;
}

std::vector<PendingWrite> WritesOf(RestorePlan const& plan, Snapshot const& saved, QuorvanController& robot) {
    std::vector<PendingWrite> writes;
    for (ChangedEntry const& change : plan.changes) {
        writes.push_back(WriteOf(change, saved, robot));
    }
    return writes;
}

} // namespace harvlink::cli::snapshot
