#include "cli/snapshot/Capture.h"

#include <algorithm>
#include <ctime>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "cli/snapshot/FileReader.h"
#include "cli/snapshot/ParameterRange.h"
#include "cli/snapshot/Source.h"
#include "cli/snapshot/TableReaders.h"
#include "harvlink/ConnectionStatistics.h"
#include "harvlink/ControllerStateInterface.h"
#include "words/text/Encoding.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/FileNames.h"
#include "words/values/VariableText.h"

namespace harvlink::cli::snapshot {

namespace {

struct SectionReader {
    std::string_view section;
    void (*read)(Source&, Snapshot&);
};

// Groups come first: the parameters of groups are read for these.
constexpr std::array<SectionReader, 5> SectionReaders{{{"groups", ReadGroups},
                                                       {"variables", ReadVariables},
                                                       {"signals", ReadSignals},
                                                       {"registers", ReadRegisters},
                                                       {"parameters", ReadParameters}}};

void ReadController(Source& source, Snapshot& snapshot) {
    SystemInfoData data;
    StatusInfo const status = source.Ask(
        "model and software", [&] { return source.robot.Status->ReadSystemInformation(SystemInfoId::Robot1, data); });
    if (status.StatusCode != 0) {
        snapshot.missing.push_back({std::string(ControllerSection), status});
        return;
    }
    std::string const software = ControllerText(data.softwareVersion);
    snapshot.controller = {
        {"model", ControllerText(data.modelName)}, {"software", software}, {"generation", software.substr(0, 2)}};
}

// A section that was not reached is missing too.
void ReadSection(Source& source, Snapshot& snapshot, SectionReader const& reader) {
    if (!snapshot.selection.Has(reader.section)) {
        return;
    }
    if (source.IsGone()) {
        snapshot.missing.push_back({std::string(reader.section), source.Reason()});
        return;
    }
    reader.read(source, snapshot);
}

} // namespace

Snapshot Capture(QuorvanController& robot, std::string const& host, Selection const& selection, Output& output,
                 std::filesystem::path const& scratch) {
    Progress progress(output, "Reading " + host);
    Source source(robot, progress);
    progress.Follow([&robot, start = robot.GetConnectionStatistics().bytesReceived] {
        return robot.GetConnectionStatistics().bytesReceived - start;
    });
    Snapshot snapshot{.host = host,
                      .created = fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::time(nullptr))),
                      .selection = selection,
                      .encoding = std::string(ControllerEncoding().Name()),
                      .controller = {},
                      .tables = {},
                      .files = {},
                      .missing = {},
                      .longNames = {}};
    ReadController(source, snapshot);
    for (SectionReader const& reader : SectionReaders) {
        ReadSection(source, snapshot, reader);
    }
    if (selection.Has(FilesSection)) {
        ReadFiles(source, snapshot, scratch);
    }
    return snapshot;
}

void Check(Selection const& selection) {
    for (std::string const& section : selection.sections) {
        bool const isTable = std::any_of(TableKinds.begin(), TableKinds.end(),
                                         [&](TableKind const& kind) { return kind.section == section; });
        if (!isTable && section != FilesSection) {
            throw InputError(fmt::format("'{}' is not a section; there are: groups, variables, signals, registers, "
                                         "parameters, files",
                                         section));
        }
    }
    for (std::string const& range : selection.variables) {
        ParseVariableRange(range);
    }
    for (std::string const& range : selection.parameters) {
        ParseParameterRange(range);
    }
    for (std::string const& glob : selection.files) {
        if (KindsOf(glob).empty()) {
            throw InputError(
                fmt::format("'{}' is not a kind of file; there are JBI, DAT, CND, PRM, SYS, LST, LOG", glob));
        }
    }
}

} // namespace harvlink::cli::snapshot
