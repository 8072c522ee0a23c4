#include "cli/Completion.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace qel {

namespace {

// Both scripts walk over the words before the one to complete: which command they call, and whether the last
// one is an option that takes the word as its value.

constexpr const char* bashStart = R"(# Completes the commands and options of qel.
_qel() {
    local word=${COMP_WORDS[COMP_CWORD]} words= command= option= each
    local -i i
    [[ $word == "=" ]] && word=
    for ((i = 1; i < COMP_CWORD; ++i)); do
        each=${COMP_WORDS[i]}
        [[ $each == "=" ]] && continue
        if [[ -n $option ]]; then
            option=
            continue
        fi
        case "$command:$each" in
)";

constexpr const char* bashEnd = R"(    esac
    COMPREPLY=($(compgen -W "$words" -- "$word"))
}
complete -o default -F _qel qel
)";

constexpr const char* zshStart = R"(#compdef qel
# Completes the commands and options of qel.
_qel() {
    local command= option= each
    local -a entries
    integer i
    [[ $words[CURRENT] == --*=* ]] && compset -P '*=' && option=${words[CURRENT]%%=*}
    for ((i = 2; i < CURRENT; ++i)); do
        each=$words[i]
        if [[ -n $option && i -gt 2 ]]; then
            option=
            continue
        fi
        case "$command:$each" in
)";

constexpr const char* zshEnd = R"(    esac
    if (( $#entries )); then
        _describe 'qel' entries && return
    fi
    _files
}
_qel "$@"
)";

std::string InQuotes(const std::string& text) {
    return '\'' + CLI::detail::find_and_replace(text, "'", "'\\''") + '\'';
}

/// A command without the program's name.
std::string WordsAfterProgram(const NamedCommand& command) {
    const auto blank = command.words.find(' ');
    return blank == std::string::npos ? "" : command.words.substr(blank + 1);
}

/// The options that can stand after a command: its own and the program's.
std::vector<const CLI::Option*> OptionsIn(const NamedCommand& command, const NamedCommand& program) {
    auto options = OptionsOf(*command.app);
    for (const auto* option : OptionsOf(*program.app)) {
        if (command.app->get_option_no_throw(option->get_name()) == nullptr) {
            options.push_back(option);
        }
    }
    return options;
}

/// The lines of a "case" that note which command was called and which option waits for its value.
std::string WalkCases(const std::vector<NamedCommand>& commands) {
    std::string cases;
    for (const auto& command : commands) {
        const auto words = WordsAfterProgram(command);
        for (const auto* each : SubcommandsOf(*command.app)) {
            const auto longer =
                words.empty() ? each->get_name() : fmt::format("{} {}", words, each->get_name());
            cases += fmt::format("        {}) command={} ;;\n",
                                 InQuotes(fmt::format("{}:{}", words, each->get_name())), InQuotes(longer));
        }
        std::vector<std::string> patterns;
        for (const auto* option : OptionsIn(command, commands.front())) {
            for (const auto& spelling : SpellingsOf(*option)) {
                if (TakesValue(*option)) {
                    patterns.push_back(InQuotes(fmt::format("{}:{}", words, spelling)));
                }
            }
        }
        if (!patterns.empty()) {
            cases += fmt::format("        {}) option=$each ;;\n", fmt::join(patterns, "|"));
        }
    }
    return cases + "        esac\n    done\n    case \"$command:$option\" in\n";
}

/// What completes a word: the text, and for shells that show it, what it means.
struct Entry {
    std::string text, meaning;
};

std::vector<Entry> EntriesOf(const NamedCommand& command, const NamedCommand& program) {
    std::vector<Entry> entries;
    for (const auto* each : SubcommandsOf(*command.app)) {
        entries.push_back({each->get_name(), each->get_description()});
    }
    for (const auto* option : OptionsIn(command, program)) {
        for (const auto& spelling : SpellingsOf(*option)) {
            entries.push_back({spelling, option->get_description()});
        }
    }
    return entries;
}

/// The lines of a "case" that give the entries of each command and of each option with listed values.
template <class Write>
std::string EntryCases(const std::vector<NamedCommand>& commands, const Write& write) {
    std::string cases;
    for (const auto& command : commands) {
        const auto words = WordsAfterProgram(command);
        cases += fmt::format("    {}) {} ;;\n", InQuotes(words + ':'),
                             write(EntriesOf(command, commands.front())));
        for (const auto* option : OptionsIn(command, commands.front())) {
            std::vector<Entry> values;
            for (const auto& choice : ChoicesOf(*option)) {
                values.push_back({choice, ""});
            }
            for (const auto& spelling : values.empty() ? std::vector<std::string>{} : SpellingsOf(*option)) {
                cases += fmt::format("    {}) {} ;;\n", InQuotes(fmt::format("{}:{}", words, spelling)),
                                     write(values));
            }
        }
    }
    return cases;
}

} // namespace

std::string BashCompletion(const std::vector<NamedCommand>& commands) {
    const auto write = [](const std::vector<Entry>& entries) {
        std::vector<std::string> texts;
        texts.reserve(entries.size());
        for (const auto& entry : entries) {
            texts.push_back(entry.text);
        }
        return "words=" + InQuotes(fmt::format("{}", fmt::join(texts, " ")));
    };
    return bashStart + WalkCases(commands) + EntryCases(commands, write) + bashEnd;
}

std::string ZshCompletion(const std::vector<NamedCommand>& commands) {
    const auto write = [](const std::vector<Entry>& entries) {
        std::string list = "entries=(";
        for (const auto& entry : entries) {
            const auto text = CLI::detail::find_and_replace(entry.text, ":", "\\:");
            list += ' ' + InQuotes(entry.meaning.empty() ? text : text + ':' + entry.meaning);
        }
        return list + " )";
    };
    return zshStart + WalkCases(commands) + EntryCases(commands, write) + zshEnd;
}

} // namespace qel
