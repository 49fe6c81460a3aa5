#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/program/CommandLine.h"
#include "cli/program/Deadline.h"
#include "cli/program/Help.h"
#include "cli/program/Session.h"
#include "cli/trajectory/TrajectoryFile.h"
#include "cli/verbs/Commands.h"
#include "harvlink/FileInterface.h"
#include "words/text/Csv.h"
#include "words/text/Encoding.h"
#include "words/text/Path.h"
#include "words/text/Printable.h"
#include "words/text/Text.h"

namespace harvlink::cli {

namespace {

namespace filesystem = std::filesystem;
using Names = std::vector<std::string>;

/// Somebody who presses a key must not wait for a controller that is off.
constexpr std::chrono::milliseconds LongestWait{200};

Names Cells(Session& session) {
    Names names;
    for (Cell const& cell : session.Cells()) {
        names.push_back(cell.name);
    }
    return names;
}

Names Jobs(Session& session) {
    Deadline const deadline(LongestWait);
    StatusInfo status;
    Names names;
    Connection const connection = session.Open(Access::Observe, status);
    if (connection) {
        connection->Files->ListFiles(FileType::JobFile, names, true);
    }
    for (std::string& name : names) {
        name = ControllerText(name.substr(0, name.rfind('.')));
    }
    return names;
}

bool IsTrajectory(filesystem::path const& path) {
    constexpr std::uintmax_t LargestLooked = 1U << 20U;
    std::error_code error;
    if (!filesystem::is_regular_file(path, error) || filesystem::file_size(path, error) > LargestLooked) {
        return path.extension() == ".csv";
    }
    try {
        return HasTrajectoryHeader(ReadTextFile(TextOf(path)));
    } catch (std::exception const&) {
        return false; // a file that can't be read is not offered
    }
}

/// The trajectories, and the folders in which there may be some, in the folder that the word names.
Names Trajectories(std::string const& word) {
    std::string const folder = word.substr(0, word.rfind('/') + 1);
    Names names;
    std::error_code error;
    for (filesystem::directory_iterator each(PathOf(folder.empty() ? "." : folder), error);
         !error && each != filesystem::directory_iterator(); each.increment(error)) {
        std::error_code ignored;
        bool const isFolder = each->is_directory(ignored);
        if (isFolder || IsTrajectory(each->path())) {
            names.push_back(folder + TextOf(each->path().filename()) + (isFolder ? "/" : ""));
        }
    }
    return names;
}

} // namespace

void AddCompleteWords(CLI::App& app, Session& session) {
    struct Arguments {
        std::string kind;
        std::string word;
    };
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const verb =
        app.add_subcommand("complete-words", "Print words for the completion of a shell, one a line");
    verb->group(""); // not for people
    verb->add_option("KIND", arguments->kind, "Kind of words")->type_name("CELL|JOB|TRAJECTORY")->required();
    verb->add_option("WORD", arguments->word, "The start of the word");
    SetExamples(*verb, {"complete-words CELL pr"});
    verb->callback([arguments, &session] {
        session.Locally([arguments, &session](Output& output) {
            Names names = arguments->kind == "CELL"         ? Cells(session)
                          : arguments->kind == "TRAJECTORY" ? Trajectories(arguments->word)
                                                            : Jobs(session);
            std::sort(names.begin(), names.end());
            for (std::string const& name : names) {
                if (name.starts_with(arguments->word) && Printable(name) == name) {
                    output.console().out << name << '\n';
                }
            }
            return ExitStatus::Success;
        });
    });
}

} // namespace harvlink::cli
