#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <glob.h>

#include "cli/output/Progress.h"
#include "cli/output/Rows.h"
#include "cli/program/Help.h"
#include "cli/program/RepeatedRead.h"
#include "cli/program/Session.h"
#include "cli/verbs/Commands.h"
#include "harvlink/FileInterface.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"
#include "words/values/FileNames.h"

namespace harvlink::cli {

namespace {

/// The files of this computer that fit a glob, sorted. A name without wildcards is returned as it is.
std::vector<std::string> LocalFiles(std::string const& glob) {
    glob_t found{};
    std::vector<std::string> files;
    if (::glob(glob.c_str(), GLOB_NOCHECK, nullptr, &found) == 0) {
        files.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    }
    globfree(&found);
    return files;
}

namespace filesystem = std::filesystem;
using TextList = std::vector<std::string>;

/// The files of the controller. Each kind is listed at most once.
class RemoteFiles {
public:
    RemoteFiles(FileInterface& files, Output& output) : files_(files), output_(output) {}

    StatusInfo List(FileType type, TextList& names) {
        StatusInfo status;
        auto const known = lists_.find(type);
        if (known == lists_.end()) {
            std::string const what = fmt::format("Listing {} files", ExtensionOf(type));
            Progress progress(output_, what);
            status = ReadRepeatedly(progress, what, [&] { return files_.ListFiles(type, names, true); });
            if (status.StatusCode == 0) {
                lists_.emplace(type, names);
            }
        } else {
            names = known->second;
        }
        return status;
    }

    /// Whether there is such a file; upper and lower case are the same.
    StatusInfo Contains(FileType type, std::string const& name, bool& contains) {
        TextList names;
        StatusInfo status = List(type, names);
        contains = std::any_of(names.begin(), names.end(),
                               [&](std::string const& other) { return LowerCase(other) == LowerCase(name); });
        return status;
    }

    /// A file was stored since it was listed.
    void Note(FileType type, std::string const& name) { lists_[type].push_back(name); }

    /// The names that fit any of the globs, each once. A name without wildcards needs no listing.
    StatusInfo Find(TextList const& globs, TextList& found) {
        for (std::string const& glob : globs) {
            StatusInfo status = IsGlob(glob) ? FindGlob(glob, found) : Add(glob, found);
            if (status.StatusCode != 0) {
                return status;
            }
        }
        return {};
    }

private:
    static StatusInfo Add(std::string const& name, TextList& found) {
        if (std::find(found.begin(), found.end(), name) == found.end()) {
            found.push_back(name);
        }
        return {};
    }

    StatusInfo FindGlob(std::string const& glob, TextList& found) {
        std::size_t const before = found.size();
        for (FileType const type : KindsOf(glob)) {
            TextList names;
            StatusInfo status = List(type, names);
            if (status.StatusCode != 0) {
                return status;
            }
            for (std::string const& name : names) {
                if (FitsGlob(glob, name)) {
                    Add(name, found);
                }
            }
        }
        return found.size() > before ? StatusInfo{} : StatusInformation(ErrorStatusCodes::NoFilesWithExtension);
    }

    FileInterface& files_;
    Output& output_;
    std::map<FileType, TextList> lists_;
};

/// Reports each file of one command, and the sum at its end.
class TransferReport {
public:
    TransferReport(Output& output, std::string verb) : output_(output), verb_(std::move(verb)) {}

    /// Returns false after a time-out: the other files would only wait for one each.
    bool Add(std::string const& name, StatusInfo const& status, std::uintmax_t bytes) {
        bool const succeeded = status.StatusCode == 0;
        if (!succeeded || (status.Message != "OK" && !output_.json)) {
            ShowStatus(name, status);
        } else if (!output_.json) {
            output_.console().out << fmt::format("{}  {} bytes\n", Printable(name), bytes);
        }
        rows_.push_back({{"name", name},
                         {"bytes", succeeded ? Json(bytes) : Json()},
                         {"code", status.StatusCode},
                         {"message", status.Message}});
        done_ += succeeded ? 1 : 0;
        bytes_ += succeeded ? bytes : 0;
        return !IsSilence(status);
    }

    void Finish(std::size_t wanted) {
        std::chrono::duration<double> const elapsed = std::chrono::steady_clock::now() - start_;
        std::size_t const failed = wanted - done_;
        if (output_.json) {
            output_.Show(Json{{"files", rows_},
                              {verb_, done_},
                              {"failed", failed},
                              {"bytes", bytes_},
                              {"seconds", RoundToMilli(elapsed.count())}});
        } else {
            output_.console().out << fmt::format("{} of {} files {}, {} bytes in {:.1f} s\n", done_, wanted, verb_,
                                                 bytes_, elapsed.count());
        }
    }

private:
    void ShowStatus(std::string const& name, StatusInfo const& status) {
        if (status.StatusCode != 0) {
            output_.Failure(status, name);
        } else {
            output_.console().err << fmt::format("{}: {}\n", Printable(name), status.Message);
        }
    }

    Output& output_;
    std::string verb_;
    Json rows_ = Json::array();
    std::size_t done_ = 0;
    std::uintmax_t bytes_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

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
                if (isKind || FitsGlob(glob, name)) {
                    rows.push_back({{"name", name}, {"kind", ExtensionOf(type)}});
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

StatusInfo Fetch(QuorvanController& robot, Output& output, std::string const& name, filesystem::path const& path,
                 bool force) {
    if (!IsSafeLocalName(name)) {
        return StatusInformation(ErrorStatusCodes::FileWriteOpenError);
    }
    Progress progress(output, "Fetching " + name);
    return ReadRepeatedly(progress, "Fetching " + name,
                          [&] { return robot.Files->SaveFromControllerToFile(name, path.string(), force); });
}

StatusInfo GetFiles(QuorvanController& robot, Output& output, GetArguments const& arguments) {
    TextList names;
    StatusInfo status = RemoteFiles(*robot.Files, output).Find(arguments.globs, names);
    if (status.StatusCode != 0) {
        return status;
    }
    TransferReport report(output, "fetched");
    for (std::string const& name : names) {
        filesystem::path const path = filesystem::path(arguments.folder) / name;
        StatusInfo const fetched = Fetch(robot, output, name, path, arguments.force);
        if (!report.Add(name, fetched, fetched.StatusCode == 0 ? SizeOf(path) : 0)) {
            break;
        }
    }
    report.Finish(names.size());
    return {};
}

void AddGet(CLI::App& family, Session& session) {
    auto arguments = std::make_shared<GetArguments>();
    CLI::App* const verb = family.add_subcommand("get", "Fetch files from the controller");
    verb->add_option("NAME", arguments->globs, "Names and globs")->required();
    verb->add_option("--to", arguments->folder, "Folder to write to")
        ->check(CLI::ExistingDirectory)
        ->type_name("FOLDER")
        ->capture_default_str();
    verb->add_flag("--force", arguments->force, "Overwrite existing files");
    SetExamples(*verb, {"files get MAIN.JBI", "files get '*.JBI' --to backup --force"}, FileNamesHelp);
    verb->callback([arguments, &session] {
        session.OnConnection(Access::Observe, [arguments](QuorvanController& robot, Output& output) {
            return GetFiles(robot, output, *arguments);
        });
    });
}

StatusInfo Load(QuorvanController& robot, Output& output, filesystem::path const& path) {
    Progress const progress(output, fmt::format("Storing {}, {} bytes", path.filename().string(), SizeOf(path)));
    return robot.Files->LoadToControllerFromPath(path.string());
}

// A load replaces a file of the same name, so the files of the controller are listed first. A name that the library refuses
// needs no list.
StatusInfo Store(QuorvanController& robot, Output& output, RemoteFiles& remote, filesystem::path const& path,
                 bool force) {
    std::string const name = path.filename().string();
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
        if (!report.Add(path, Store(robot, output, remote, path, force), SizeOf(path))) {
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
            output.Failure(result, name);
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
    verb->add_option("NAME", *globs, "Names and globs of jobs; .JBI may be left out")->required();
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

StatusInfo ShowContents(QuorvanController& robot, Output& output, std::string const& name) {
    std::string contents;
    StatusInfo status;
    {
        Progress progress(output, "Fetching " + name);
        status = ReadRepeatedly(progress, "Fetching " + name,
                                [&] { return robot.Files->SaveFromControllerToString(name, contents); });
    }
    if (status.StatusCode == 0 && output.json) {
        output.Show(Json{{"name", name}, {"contents", contents}});
    } else if (status.StatusCode == 0) {
        output.console().out << contents << std::flush;
    }
    return status;
}

void AddCat(CLI::App& family, Session& session) {
    auto name = std::make_shared<std::string>();
    CLI::App* const verb = family.add_subcommand("cat", "Print a file of the controller");
    verb->add_option("NAME", *name, "Name of the file")->required();
    SetExamples(*verb, {"files cat MAIN.JBI"});
    verb->callback([name, &session] {
        session.OnConnection(Access::Observe, [name](QuorvanController& robot, Output& output) {
            return ShowContents(robot, output, *name);
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
