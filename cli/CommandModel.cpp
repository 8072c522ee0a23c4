#include "cli/CommandModel.h"

#include <CLI/CLI.hpp>

namespace qel {

namespace {

void AddCommandsBelow(const CLI::App& command, const std::string& words, std::vector<NamedCommand>& all) {
    all.push_back({words, &command});
    for (const auto* each : SubcommandsOf(command)) {
        AddCommandsBelow(*each, words + ' ' + each->get_name(), all);
    }
}

} // namespace

std::vector<NamedCommand> CommandsOf(const CLI::App& program) {
    std::vector<NamedCommand> all;
    AddCommandsBelow(program, program.get_name(), all);
    return all;
}

std::vector<const CLI::App*> SubcommandsOf(const CLI::App& command) {
    return command.get_subcommands(
        [](const CLI::App* each) { return !each->get_name().empty() && !each->get_group().empty(); });
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& command) {
    return command.get_options(
        [](const CLI::Option* option) { return option->nonpositional() && !option->get_group().empty(); });
}

std::vector<const CLI::Option*> ArgumentsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<std::string> SpellingsOf(const CLI::Option& option) {
    std::vector<std::string> spellings;
    for (const auto& name : option.get_snames()) {
        spellings.push_back('-' + name);
    }
    for (const auto& name : option.get_lnames()) {
        spellings.push_back("--" + name);
    }
    return spellings;
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

std::vector<std::string> ChoicesOf(const CLI::Option& option) {
    const auto& text = option.get_option_text();
    const auto words = text.substr(0, text.find(' '));
    return words.find('|') == std::string::npos ? std::vector<std::string>{} : CLI::detail::split(words, '|');
}

} // namespace qel
