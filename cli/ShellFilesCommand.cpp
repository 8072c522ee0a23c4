#include "cli/ShellFilesCommand.h"

#include "cli/Completion.h"
#include "cli/ManPage.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <fstream>

namespace qel {

namespace {

constexpr const char* shellFilesDescription = "Write man pages and the completions of shells";

void Write(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream output(file, std::ios::binary);
    output << text;
    if (!output.flush()) {
        throw std::runtime_error(fmt::format("{} cannot be written", PathToUtf8(file)));
    }
}

void WriteShellFiles(const CLI::App& program, const std::string& version,
                     const std::filesystem::path& folder) {
    const auto commands = CommandsOf(program);
    std::vector<std::string> pages;
    pages.reserve(commands.size());
    for (const auto& command : commands) {
        pages.push_back(PageName(command));
    }
    for (const auto& command : commands) {
        Write(folder / "man1" / (PageName(command) + ".1"), ManPage(command, version, pages));
    }
    Write(folder / "bash" / "qel", BashCompletion(commands));
    Write(folder / "zsh" / "_qel", ZshCompletion(commands));
}

} // namespace

void AddShellFilesCommand(CLI::App& app, const std::string& version) {
    auto* command = app.add_subcommand("shell-files", shellFilesDescription);
    command->group("");
    auto folder = std::make_shared<std::string>();
    command->add_option("FOLDER", *folder, "The folder to write into")->required();
    command->callback([folder, version, &app] { WriteShellFiles(app, version, PathFromUtf8(*folder)); });
}

} // namespace qel
