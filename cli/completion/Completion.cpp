#include "cli/completion/Completion.h"

#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/output/Words.h"
#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"

namespace harvlink::cli {

namespace {

/// In the shell harvlink_words holds the words that fit; harvlink_files is "file" or "folder" if their names fit too, or the kind
/// of words that the program itself has to find, for which harvlink_options holds what names the controller.
constexpr char const* Finder = R"(# Made by harvlink completion; do not edit.

# Takes the words before the one to complete.
_harvlink_find() {{
    local command=harvlink previous= word
    harvlink_words= harvlink_files= harvlink_options=()
    shift
    for word in "$@"; do
        case $previous in
        --host|--cell|--config|--encoding) harvlink_options+=("$previous" "$word") ;;
        esac
        case "$command $word" in
{}        esac
        previous=$word
    done
    case "$command $previous" in
{}    esac
    case $previous in
{}    esac
    case $command in
{}    esac
    harvlink_words="$harvlink_words {}"
}}
)";

constexpr char const* BashWrapper = R"(
_harvlink() {
    local current=${COMP_WORDS[COMP_CWORD]} harvlink_words harvlink_files harvlink_options word fitting=
    _harvlink_find "${COMP_WORDS[@]:0:COMP_CWORD}"
    for word in $harvlink_words; do
        [[ $word == -* && $current != -* ]] || fitting="$fitting $word"
    done
    COMPREPLY=($(compgen -W "$fitting" -- "$current"))
    case $harvlink_files in
    file) COMPREPLY+=($(compgen -f -- "$current")); compopt -o filenames ;;
    folder) COMPREPLY+=($(compgen -d -- "$current")); compopt -o filenames ;;
    ?*)
        while IFS= read -r word; do
            COMPREPLY+=("$word")
        done < <(command harvlink complete-words "$harvlink_files" "${harvlink_options[@]}" -- "$current" 2>/dev/null)
        compopt -o filenames
        ;;
    esac
    [[ ${COMPREPLY[0]} != *: ]] || compopt -o nospace
}
complete -F _harvlink harvlink
)";

constexpr char const* ZshWrapper = R"--(
_harvlink() {
    local harvlink_words harvlink_files harvlink_options
    _harvlink_find "${(@)words[1,CURRENT-1]}"
    local -a fitting=(${=harvlink_words})
    [[ ${words[CURRENT]} == -* ]] || fitting=(${fitting:#-*})
    compadd -- $fitting
    case $harvlink_files in
    file) _files ;;
    folder) _files -/ ;;
    ?*)
        fitting=(${(f)"$(command harvlink complete-words $harvlink_files $harvlink_options -- ${words[CURRENT]} 2>/dev/null)"})
        compadd -- $fitting
        ;;
    esac
}
if [[ ${zsh_eval_context[-1]} == loadautofunc ]]; then
    _harvlink "$@"
else
    compdef _harvlink harvlink
fi
)--";

/// What an argument may be.
struct Candidates {
    std::string words;
    std::string files;
};

std::string AllGroups() {
    std::string groups;
    for (char const letter : {'R', 'B', 'S'}) {
        for (int number = 1; number <= 24; ++number) {
            std::string const name = fmt::format("{}{}", letter, number);
            try {
                ParseGroup(name);
                groups += (groups.empty() ? "" : " ") + name;
            } catch (InputError const&) {
                break;
            }
        }
    }
    return groups;
}

Candidates CandidatesFor(CLI::Option const& option) {
    std::string const type = option.get_type_name();
    if (type.find('|') != std::string::npos) {
        std::string words;
        for (std::string_view word : Split(type, '|')) {
            // For "user:N" the user types the number.
            word.remove_suffix(word.ends_with(":N") ? 1 : 0);
            words += (words.empty() ? "" : " ") + std::string(word);
        }
        return {words, {}};
    }
    bool const isFound = type == "CELL" || type == "JOB" || type == "TRAJECTORY";
    return {type == "GROUP" ? AllGroups() : "", isFound                      ? type
                                                : type == "FILE"             ? "file"
                                                : type.starts_with("FOLDER") ? "folder"
                                                                             : ""};
}

std::vector<CLI::App const*> CommandsOf(CLI::App const& app) {
    return app.get_subcommands([](CLI::App const* command) { return !command->get_name().empty(); });
}

/// The options of a command, those of its option groups too.
std::vector<CLI::Option const*> OptionsOf(CLI::App const& app) {
    std::vector<CLI::Option const*> options = app.get_options();
    for (CLI::App const* const group :
         app.get_subcommands([](CLI::App const* each) { return each->get_name().empty(); })) {
        for (CLI::Option const* const option : OptionsOf(*group)) {
            options.push_back(option);
        }
    }
    return options;
}

std::string OptionNames(CLI::App const& app) {
    std::string names;
    for (CLI::Option const* const option : OptionsOf(app)) {
        for (std::string const& name : option->get_lnames()) {
            bool const isKnown = app.get_parent() != nullptr && name == "help";
            names += isKnown ? "" : (names.empty() ? "--" : " --") + name;
        }
    }
    return names;
}

class CompletionScript {
public:
    explicit CompletionScript(CLI::App const& program) { Add(program, program.get_name(), true); }

    std::string Text(CLI::App const& program) const {
        return fmt::format(Finder, commands_, values_, globals_, arguments_, OptionNames(program));
    }

private:
    void Add(CLI::App const& app, std::string const& path, bool isProgram) {
        Candidates here;
        for (CLI::App const* const command : CommandsOf(app)) {
            if (command->get_group().empty()) {
                continue; // for the completion itself
            }
            std::vector<std::string> names = command->get_aliases();
            names.insert(names.begin(), command->get_name());
            for (std::string const& name : names) {
                std::string const below = fmt::format("{} {}", path, name);
                commands_ += fmt::format("        \"{0}\") command=\"{0}\" ;;\n", below);
                here.words += (here.words.empty() ? "" : " ") + name;
                Add(*command, below, false);
            }
        }
        for (CLI::Option const* const option : OptionsOf(app)) {
            Candidates const words = CandidatesFor(*option);
            if (option->get_positional()) {
                here.words += (here.words.empty() || words.words.empty() ? "" : " ") + words.words;
                here.files = words.files.empty() ? here.files : words.files;
            }
            AddValues(*option, words, path, isProgram);
        }
        // The options of the program fit after every command.
        here.words += isProgram ? "" : " " + OptionNames(app);
        arguments_ += fmt::format("    \"{}\") {} ;;\n", path, Assignments(here));
    }

    void AddValues(CLI::Option const& option, Candidates const& words, std::string const& path, bool isProgram) {
        for (std::string const& name : option.get_lnames()) {
            if (option.get_type_size() > 0 && isProgram) {
                globals_ += fmt::format("    --{}) {} return ;;\n", name, Assignments(words));
            } else if (option.get_type_size() > 0) {
                values_ += fmt::format("    \"{} --{}\") {} return ;;\n", path, name, Assignments(words));
            }
        }
    }

    static std::string Assignments(Candidates const& words) {
        return fmt::format("harvlink_words='{}' harvlink_files={};", words.words, words.files);
    }

    std::string commands_;
    std::string values_;
    std::string globals_;
    std::string arguments_;
};

std::string FinderFor(CLI::App const& program) {
    return CompletionScript(program).Text(program);
}

} // namespace

std::string BashCompletion(CLI::App const& program) {
    return FinderFor(program) + BashWrapper;
}

std::string ZshCompletion(CLI::App const& program) {
    return "#compdef harvlink\n" + FinderFor(program) + ZshWrapper;
}

} // namespace harvlink::cli
