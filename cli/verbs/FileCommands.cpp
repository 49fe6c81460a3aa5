#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/output/Progress.h"
#include "cli/output/Rows.h"
#include "cli/program/Help.h"
#include "cli/program/LocalFiles.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/ScratchSpace.h"
#include "cli/program/Session.h"
#include "cli/program/WholeFile.h"
#include "cli/verbs/Commands.h"
#include "cli/verbs/RemoteFiles.h"
#include "cli/verbs/TransferReport.h"
#include "harvlink/ConnectionStatistics.h"
#include "harvlink/FileInterface.h"
#include "words/text/Encoding.h"
#include "words/text/Path.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/FileNames.h"

namespace harvlink::cli {

namespace {

namespace filesystem = std::filesystem;
using TextList = std::vector<std::string>;

std::uintmax_t SizeOf(filesystem::path const& path) {
    std::error_code error;
    std::uintmax_t const size = filesystem::file_size(path, error);
    return error ? 0 : size;
}

StatusInfo ShowList(QuorvanController& robot, Output& output, TextList const& globs) {
    RemoteFiles remote(*robot.Files, output);
    return ShowRows(output, globs, [&](std::string const& glob, Json& rows) {
        bool const isKind = glob.find('.') == std::string::npos && !IsGlob(glob);
        StatusInfo status;
        for (FileType const type : KindsOf(glob)) {
            TextList names;
            status = remote.List(type, names);
            if (status.StatusCode != 0) {
                return status;
            }
            for (std::string const& name : names) {
                if (isKind || FitsGlob(glob, ControllerText(name))) {
                    rows.push_back({{"name", ControllerText(name)}, {"kind", ExtensionOf(type)}});
                }
            }
        }
        return status;
    });
}

void AddList(CLI::App& family, Session& session) {
    auto globs = std::make_shared<TextList>();
    CLI::App* const verb = family.add_subcommand("list", "List the files of the controller");
    verb->add_option("NAME", *globs, "Names, globs, or extensions such as JBI (default: all files)");
    SetExamples(*verb, {"files list", "files list JBI", "files list 'A*.JBI'"}, FileNamesHelp);
    verb->callback([globs, &session] {
        for (std::string& glob : *globs) {
            glob.erase(0, glob.starts_with('.') ? 1 : 0);
            if (KindsOf(glob).empty()) {
                throw InputError(
                    fmt::format("'{}' is not a kind of file; there are: JBI, DAT, CND, PRM, SYS, LST, LOG", glob));
            }
        }
        session.OnConnection(Access::Observe,
                             [names = globs->empty() ? TextList{"*.*"} : *globs](
                                 QuorvanController& robot, Output& output) { return ShowList(robot, output, names); });
    });
}

struct GetArguments {
    TextList globs;
    std::string folder = ".";
    bool force = false;
};

/// Fetches one file after the other into a folder of this computer.
class Fetcher {
public:
    Fetcher(QuorvanController& robot, Output& output, GetArguments const& arguments)
        : robot_(robot), output_(output), arguments_(arguments) {}

    StatusInfo Fetch(std::string const& name, filesystem::path const& path) {
        std::error_code error;
        if (!arguments_.force && filesystem::exists(path, error)) {
            return StatusInformation(ErrorStatusCodes::FileExistsNoOverwrite);
        }
        try {
            if (!scratch_) {
                scratch_.emplace(PathOf(arguments_.folder));
            }
            StatusInfo status = FetchInto(scratch_->File(), name);
            if (status.StatusCode == 0) {
                scratch_->MoveFileTo(path, arguments_.force);
            }
            return status;
        } catch (FileError const& failure) {
            return {LocalFileFailure + failure.Code(), failure.what()};
        }
    }

private:
    static constexpr int LocalFileFailure = 0x40000000; ///< and the error of the system: as the library has it

    StatusInfo FetchInto(filesystem::path const& file, std::string const& name) {
        std::string const what = "Fetching " + ControllerText(name);
        Progress progress(output_, what);
        progress.Follow([&, start = robot_.GetConnectionStatistics().bytesReceived] {
            return robot_.GetConnectionStatistics().bytesReceived - start;
        });
        return ReadRepeatedly(progress, what,
                              [&] { return robot_.Files->SaveFromControllerToFile(name, TextOf(file), true); });
    }

    QuorvanController& robot_;
    Output& output_;
    GetArguments const& arguments_;
    std::optional<ScratchSpace> scratch_; ///< made for the first file
};

StatusInfo GetFiles(QuorvanController& robot, Output& output, GetArguments const& arguments) {
    TextList names;
    StatusInfo status = RemoteFiles(*robot.Files, output).Find(arguments.globs, names);
    if (status.StatusCode != 0) {
        return status;
    }
    TransferReport report(output, "fetched");
    Fetcher fetcher(robot, output, arguments);
    for (std::string const& name : names) {
        filesystem::path const path = PathOf(arguments.folder) / PathOf(LocalName(ControllerText(name)));
        StatusInfo const fetched = fetcher.Fetch(name, path);
        if (!report.Add(name, fetched, fetched.StatusCode == 0 ? SizeOf(path) : 0, TextOf(path))) {
            break;
        }
    }
    report.Finish(names.size());
    return {};
}

/// CLI11 has one that takes a path for a text of the code page.
std::string ExistingFolder(std::string const& folder) {
    std::error_code error;
    auto const status = filesystem::status(PathOf(folder), error);
    if (!filesystem::exists(status)) {
        return "Directory does not exist: " + folder;
    }
    return filesystem::is_directory(status) ? "" : "Directory is actually a file: " + folder;
}

void AddGet(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<GetArguments>();
    CLI::App* const verb = family.add_subcommand("get", "Fetch files from the controller");
    verb->add_option("NAME", arguments->globs, "Names and globs")->required();
    verb->add_option("--to", arguments->folder, "Folder to write to")
        ->check(ExistingFolder)
        ->type_name("FOLDER")
        ->capture_default_str();
    verb->add_flag("--force", arguments->force, "Overwrite existing files");
    SetExamples(*verb, {"files get MAIN.JBI", "files get '*.JBI' --to backup --force"}, FileNamesHelp);
    verb->callback([arguments, &session] {
        arguments->folder = session.FolderFor(arguments->folder);
        session.OnConnection(Access::Observe, [arguments](QuorvanController& robot, Output& output) {
            filesystem::create_directory(PathOf(arguments->folder));
            return GetFiles(robot, output, *arguments);
        });
    });
}

StatusInfo Load(QuorvanController& robot, Output& output, filesystem::path const& path) {
    Progress progress(output, fmt::format("Storing {}", TextOf(path.filename())));
    progress.Follow(
        [&, start = robot.GetConnectionStatistics().bytesSent] {
            return robot.GetConnectionStatistics().bytesSent - start;
        },
        SizeOf(path));
    return robot.Files->LoadToControllerFromPath(TextOf(path));
}

// A load replaces a file of the same name, so the files of the controller are listed first. A name that the library refuses
// needs no list.
StatusInfo Store(QuorvanController& robot, Output& output, RemoteFiles& remote, filesystem::path const& path,
                 bool force) {
    std::string const name = TextOf(path.filename());
    std::vector<FileType> const kinds = path.has_extension() && !IsGlob(name) ? KindsOf(name) : std::vector<FileType>{};
    if (force || kinds.size() != 1) {
        return Load(robot, output, path);
    }
    bool exists = false;
    StatusInfo status = remote.Contains(kinds.front(), name, exists);
    if (status.StatusCode == 0) {
        status = exists ? StatusInformation(ErrorStatusCodes::FileExistsNoOverwrite) : Load(robot, output, path);
    }
    if (status.StatusCode == 0) {
        remote.Note(kinds.front(), name);
    }
    return status;
}

StatusInfo PutFiles(QuorvanController& robot, Output& output, TextList const& paths, bool force) {
    RemoteFiles remote(*robot.Files, output);
    TransferReport report(output, "stored");
    for (std::string const& path : paths) {
        if (!report.Add(path, Store(robot, output, remote, PathOf(path), force), SizeOf(PathOf(path)))) {
            break;
        }
    }
    report.Finish(paths.size());
    return {};
}

void AddPut(CLI::App& family, Session& session) {
    auto globs = std::make_shared<TextList>();
    auto force = std::make_shared<bool>(false);
    CLI::App* const verb = family.add_subcommand("put", "Store files on the controller");
    verb->add_option("PATH", *globs, "Paths and globs of this computer")->type_name("FILE")->required();
    verb->add_flag("--force", *force, "Overwrite files that the controller has");
    SetExamples(*verb, {"files put MAIN.JBI", "files put backup/*.JBI --force"});
    verb->callback([globs, force, &session] {
        TextList paths;
        for (std::string const& glob : *globs) {
            TextList const found = LocalFiles(glob);
            paths.insert(paths.end(), found.begin(), found.end());
        }
        session.OnConnection(Access::Operate, [paths, force](QuorvanController& robot, Output& output) {
            return PutFiles(robot, output, paths, *force);
        });
    });
}

StatusInfo DeleteFiles(QuorvanController& robot, Output& output, TextList const& globs) {
    TextList names;
    StatusInfo status = RemoteFiles(*robot.Files, output).Find(globs, names);
    std::size_t deleted = 0;
    for (std::string const& name : names) {
        StatusInfo const result = status.StatusCode == 0 ? robot.Files->DeleteJobFile(name) : status;
        if (result.StatusCode != 0) {
            output.Failure(result, ControllerText(name));
            break;
        }
        ++deleted;
    }
    if (status.StatusCode == 0) {
        output.Show(Json{{"deleted", deleted}, {"failed", names.size() - deleted}});
    }
    return status;
}

void AddDelete(CLI::App& family, Session& session) {
    auto globs = std::make_shared<TextList>();
    CLI::App* const verb = family.add_subcommand("delete", "Delete jobs from the controller");
    verb->add_option("NAME", *globs, "Names and globs of jobs; .JBI may be left out")->type_name("JOB")->required();
    SetExamples(*verb, {"files delete OLD", "files delete 'TEST*.JBI'"}, FileNamesHelp);
    verb->callback([globs, &session] {
        for (std::string& glob : *globs) {
            bool const hasExtension = LowerCase(glob).ends_with(".jbi");
            std::vector<FileType> const kinds =
                glob.find('.') == std::string::npos ? std::vector<FileType>{} : KindsOf(glob);
            if (!kinds.empty() && std::ranges::find(kinds, FileType::JobFile) == kinds.end()) {
                throw InputError(fmt::format("'{}' is not a job; only jobs can be deleted", glob));
            }
            glob += hasExtension ? "" : ".JBI";
        }
        session.OnConnection(Access::Operate, [globs](QuorvanController& robot, Output& output) {
            return DeleteFiles(robot, output, *globs);
        });
    });
}

StatusInfo FetchContents(QuorvanController& robot, Output& output, std::string const& name, std::string& contents) {
    std::string const what = "Fetching " + name;
    Progress progress(output, what);
    progress.Follow([&, start = robot.GetConnectionStatistics().bytesReceived] {
        return robot.GetConnectionStatistics().bytesReceived - start;
    });
    return ReadRepeatedly(progress, what,
                          [&] { return robot.Files->SaveFromControllerToString(ControllerBytes(name), contents); });
}

/// A terminal gets nothing that could control it; a file and a pipe get every byte.
void ShowContents(Output& output, std::string const& name, std::string const& contents, bool raw) {
    if (output.json) {
        output.Show(Json{{"name", name}, {"contents", ControllerEncoding().Decode(contents)}});
    } else if (raw || !output.console().outputIsTerminal) {
        output.console().out << contents << std::flush;
    } else {
        output.console().out << PrintableLines(ControllerEncoding().Decode(contents)) << std::flush;
    }
}

void AddCat(CLI::App& family, Session& session) {
    auto name = std::make_shared<std::string>();
    auto raw = std::make_shared<bool>(false);
    CLI::App* const verb = family.add_subcommand("cat", "Print a file of the controller");
    verb->add_option("NAME", *name, "Name of the file")->required();
    verb->add_flag("--raw", *raw, "Print every byte as it is on a terminal too, even what controls it");
    SetExamples(*verb, {"files cat MAIN.JBI", "files cat MAIN.JBI --raw > main.jbi"});
    verb->callback([name, raw, &session] {
        session.OnConnection(Access::Observe, [name, raw](QuorvanController& robot, Output& output) {
            std::string contents;
            StatusInfo status = FetchContents(robot, output, *name, contents);
            if (status.StatusCode == 0) {
                ShowContents(output, *name, contents, *raw);
            }
            return status;
        });
    });
}

} // namespace

void AddFileCommands(CLI::App& app, Session& session) {
    CLI::App* const family = app.add_subcommand("files", "List, fetch, store and delete files of the controller");
    family->require_subcommand(1);
    SetExamples(*family, {"files list JBI", "files get MAIN.JBI", "files put MAIN.JBI --force"}, FileNamesHelp);
    AddList(*family, session);
    AddGet(*family, session);
    AddPut(*family, session);
    AddDelete(*family, session);
    AddCat(*family, session);
}

} // namespace harvlink::cli
