#include <filesystem>
#include <memory>
#include <ostream>
#include <sstream>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/program/CommandLine.h"
#include "cli/program/Help.h"
#include "cli/program/ScratchSpace.h"
#include "cli/program/Session.h"
#include "cli/program/WholeFile.h"
#include "cli/recording/Arguments.h"
#include "cli/recording/RecordingCommands.h"
#include "recording/model/TimeText.h"
#include "recording/read/CsvExport.h"
#include "recording/write/Cut.h"
#include "words/text/InputError.h"
#include "words/text/Path.h"

namespace harvlink::cli::recordings {

namespace {

struct ExportArguments : PartArguments {
    bool wide = false;
    std::string every;
    std::string decimal = "point";
    std::string out;
    bool force = false;
};

recording::CsvOptions CsvOptionsOf(ExportArguments const& arguments, recording::Recording& source) {
    recording::CsvOptions options;
    options.range = arguments.Range(source);
    options.wide = arguments.wide;
    options.decimalComma = arguments.decimal == "comma";
    if (!arguments.every.empty()) {
        options.every = recording::ParseDuration(arguments.every);
        if (options.every.count() == 0) {
            throw words::InputError("--every must be more than 0");
        }
    }
    if (!arguments.controllers.empty() || !arguments.items.empty()) {
        options.readings = arguments.Readings(source);
    }
    return options;
}

int ExportTo(Output& output, recording::Recording& source, ExportArguments const& arguments) {
    recording::CsvOptions const options = CsvOptionsOf(arguments, source);
    if (arguments.out.empty()) {
        if (output.json) {
            throw words::InputError("the export itself is not JSON; with --json give --out, and the result is shown");
        }
        if (output.console().outputIsTerminal) {
            std::ostringstream text;
            ExportCsv(source, options, text);
            output.ShowText(text.str());
        } else {
            ExportCsv(source, options, output.console().out);
            output.console().out << std::flush;
        }
        return ExitStatus::Success;
    }
    std::uint64_t rows = 0;
    try {
        WriteWholeFile(
            words::PathOf(arguments.out), [&](std::ostream& file) { rows = ExportCsv(source, options, file); },
            arguments.force);
    } catch (FileError const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
    output.Show({{"file", arguments.out}, {"rows", rows}});
    return ExitStatus::Success;
}

struct CutArguments : PartArguments {
    std::string out;
};

int CutTo(Output& output, recording::Recording& source, CutArguments const& arguments) {
    std::filesystem::path const out = words::PathOf(arguments.out);
    if (std::filesystem::exists(out)) {
        output.Problem(fmt::format("{}: there is a file of that name", arguments.out));
        return ExitStatus::Failure;
    }
    try {
        ScratchSpace const scratch(out.has_parent_path() ? out.parent_path() : ".");
        recording::Cut(source, arguments.Range(source), scratch.File());
        scratch.MoveFileTo(out, false);
    } catch (FileError const& error) {
        output.Problem(error.what());
        return ExitStatus::Failure;
    }
    recording::RecordingInfo const info = recording::Recording(out).Info();
    output.Show({{"file", arguments.out},
                 {"begin", recording::FormatTime(info.begin)},
                 {"end", recording::FormatTime(info.end)},
                 {"samples", info.samples},
                 {"events", info.events}});
    return ExitStatus::Success;
}

} // namespace

void AddExport(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<ExportArguments>();
    CLI::App* const verb = family.add_subcommand("export", "Write a recording as comma separated values");
    arguments->AddFile(*verb);
    arguments->AddTimes(*verb);
    arguments->AddChoice(*verb);
    verb->add_flag("--wide", arguments->wide, "A column for each item; otherwise a row for each value");
    verb->add_option("--every", arguments->every, "Rows at even times, with what was known then")
        ->type_name("DURATION");
    verb->add_option("--decimal", arguments->decimal, "How numbers are written; comma puts semicolons between cells")
        ->check(CLI::IsMember({"point", "comma"}).description(""))
        ->type_name("point|comma")
        ->capture_default_str();
    verb->add_option("--out", arguments->out, "File to write; standard output without it")->type_name("FILE");
    verb->add_flag("--force", arguments->force, "Replace the file if there is one");
    SetExamples(*verb,
                {"recording export night.harvlink --out night.csv",
                 "recording export night.harvlink --wide --every 100ms --item 'position R1 base' --decimal comma"},
                TimeHelp);
    verb->callback([arguments, &session] {
        session.Locally([arguments](Output& output) {
            return WithRecording(output, arguments->file,
                                 [&](recording::Recording& source) { return ExportTo(output, source, *arguments); });
        });
    });
}

void AddCut(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<CutArguments>();
    CLI::App* const verb = family.add_subcommand("cut", "Write a part of a recording as a recording of its own");
    arguments->AddFile(*verb);
    arguments->AddTimes(*verb);
    verb->add_option("--out", arguments->out, "Recording to write; there must be no such file yet")
        ->required()
        ->type_name("FILE");
    SetExamples(
        *verb,
        {"recording cut night.harvlink --from 2026-11-22T03:14:00Z --to 2026-11-22T03:16:00Z --out stop.harvlink"},
        TimeHelp);
    verb->callback([arguments, &session] {
        session.Locally([arguments](Output& output) {
            return WithRecording(output, arguments->file,
                                 [&](recording::Recording& source) { return CutTo(output, source, *arguments); });
        });
    });
}

} // namespace harvlink::cli::recordings
