#include "cli/ManPage.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <sstream>

namespace qel {

namespace {

struct RoffSign {
    char sign;
    const char* roff;
};

/// What a reader of the page could copy must stay plain ASCII; lists of values may break behind "|".
constexpr RoffSign signs[] = {{'\\', "\\e"},  {'-', "\\-"},   {'\'', "\\(aq"}, {'^', "\\(ha"},
                              {'~', "\\(ti"}, {'`', "\\(ga"}, {'|', "|\\:"}};

/// Text in roff: no character of it is markup, no line a request.
std::string Roff(const std::string& text) {
    std::string roff;
    bool isLineStart = true;
    for (const char c : text) {
        if (isLineStart && c == '.') {
            roff += "\\&";
        }
        isLineStart = c == '\n';
        const auto sign =
            std::find_if(std::begin(signs), std::end(signs), [&](auto& s) { return s.sign == c; });
        roff += sign == std::end(signs) ? std::string(1, c) : sign->roff;
    }
    return roff;
}

std::string InCapitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

/// The text that --help has below the options: paragraphs, those with indented lines as they stand.
class Footer {
public:
    explicit Footer(const std::string& text) : input_(text) {}

    std::string Page() {
        std::string line, paragraph;
        while (std::getline(input_, line)) {
            if (line.empty()) {
                Finish(paragraph);
            } else {
                paragraph += line + '\n';
            }
        }
        Finish(paragraph);
        return page_;
    }

private:
    void Finish(std::string& paragraph) {
        if (paragraph.starts_with("Example")) {
            const auto heading = paragraph.substr(0, paragraph.find('\n'));
            page_ += ".SH " + InCapitals(heading.substr(0, heading.find_first_of(" :"))) + '\n';
            paragraph.erase(0, heading.ends_with("s:") || heading.ends_with("e:") ? heading.size() + 1 : 0);
        } else if (!paragraph.empty()) {
            page_ += ".PP\n";
        }
        const bool standsAsItIs = paragraph.find("\n ") != std::string::npos || paragraph.starts_with(' ');
        page_ += standsAsItIs ? ".nf\n" + Roff(paragraph) + ".fi\n" : Roff(paragraph);
        paragraph.clear();
    }

    std::istringstream input_;
    std::string page_;
};

/// Writes a man page from what the parser's own help is written from.
class PageWriter : public CLI::Formatter {
public:
    std::string Options(const std::vector<const CLI::Option*>& options, bool arePositional) const {
        std::string page;
        for (const auto* option : options) {
            page += fmt::format(".TP\n\\fB{}\\fR{}\n{}\n", Roff(make_option_name(option, arePositional)),
                                Roff(make_option_opts(option)), Roff(make_option_desc(option)));
        }
        return page;
    }

    std::string Synopsis(const NamedCommand& command) const {
        std::string page;
        std::istringstream usage(make_usage(command.app, command.words));
        for (std::string line; std::getline(usage, line);) {
            constexpr std::string_view label = "Usage: ";
            page +=
                line.empty() ? "" : Roff(line.starts_with(label) ? line.substr(label.size()) : line) + '\n';
        }
        return page;
    }
};

std::string OneLine(const std::string& text) { return text.substr(0, text.find('\n')); }

} // namespace

std::string PageName(const NamedCommand& command) {
    auto name = command.words;
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

std::string ManPage(const NamedCommand& command, const std::string& version,
                    const std::vector<std::string>& pages) {
    const PageWriter writer;
    const auto name = PageName(command);
    auto page = fmt::format("'\\\" -*- coding: utf-8 -*-\n.TH {} 1 \"\" \"qel {}\" \"OrmFuncQel4\"\n.SH "
                            "NAME\n{} \\- {}\n.SH SYNOPSIS\n{}",
                            Roff(InCapitals(name)), version, Roff(name),
                            Roff(OneLine(command.app->get_description())), writer.Synopsis(command));
    if (const auto arguments = ArgumentsOf(*command.app); !arguments.empty()) {
        page += ".SH ARGUMENTS\n" + writer.Options(arguments, true);
    }
    page += ".SH OPTIONS\n" + writer.Options(OptionsOf(*command.app), false);
    if (const auto commands = SubcommandsOf(*command.app); !commands.empty()) {
        page += ".SH COMMANDS\n";
        for (const auto* each : commands) {
            page += fmt::format(".TP\n\\fB{}\\fR\n{}\n", Roff(each->get_name()),
                                Roff(OneLine(each->get_description())));
        }
    }
    if (const auto footer = command.app->get_footer(); !footer.empty()) {
        page += (footer.starts_with("Example") ? "" : ".SH DESCRIPTION\n") + Footer(footer).Page();
    }
    page += ".SH SEE ALSO\n";
    for (const auto& other : pages) {
        page += other == name ? "" : fmt::format(".BR {} (1)\n", Roff(other));
    }
    return page;
}

} // namespace qel
