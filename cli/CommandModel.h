#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace qel {

// What the option parser knows of the commands, for whatever is made of it besides --help.

/// A command with the words that call it, such as "qel cube build".
struct NamedCommand {
    std::string words;
    const CLI::App* app = nullptr;
};

/// The program, then all its commands, each before its subcommands; without hidden ones.
std::vector<NamedCommand> CommandsOf(const CLI::App& program);

/// The shown subcommands of one command.
std::vector<const CLI::App*> SubcommandsOf(const CLI::App& command);

/// Its options with names, in their order.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& command);

/// Its arguments without names, in their order.
std::vector<const CLI::Option*> ArgumentsOf(const CLI::App& command);

/// Every way to write an option: "-o", "--output".
std::vector<std::string> SpellingsOf(const CLI::Option& option);

bool TakesValue(const CLI::Option& option);

/// The values of an option whose help lists them: "dmy|mdy|ymd (default dmy)".
std::vector<std::string> ChoicesOf(const CLI::Option& option);

} // namespace qel
