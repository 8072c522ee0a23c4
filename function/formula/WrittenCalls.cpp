#include "function/formula/WrittenCalls.h"

#include "text/CaseFold.h"
#include "text/Text.h"

#include <algorithm>
#include <array>
#include <optional>

namespace qel {

namespace {

constexpr std::string_view className = "OrmFunctionQel4.OrmQelFunction.";
constexpr std::array<std::string_view, 4> editable = {"QelF1", "QeL1", "QelName", "RetQelName"};
constexpr std::array<std::string_view, 5> callable = {"QelF1", "QeL1", "QelName", "RetQelName",
                                                      "QelFuncDemo"};
constexpr std::string_view blanks = " \t\r\n";

bool IsNamePart(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '.' || static_cast<unsigned char>(c) >= 0x80;
}

std::string_view WithoutBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Behind the text, the sheet's name or the name that begins at `at`, or behind that one character. A quote
/// within quotes is doubled, which reads as two texts without anything between them.
std::size_t SkipWord(std::string_view formula, std::size_t at) {
    const char first = formula[at];
    if (first == '"' || first == '\'') {
        const auto quote = formula.find(first, at + 1);
        return quote == std::string_view::npos ? formula.size() : quote + 1;
    }
    std::size_t end = at + 1;
    while (IsNamePart(first) && end < formula.size() && IsNamePart(formula[end])) {
        ++end;
    }
    return end;
}

/// The call's arguments, from `begin` on; nullopt without a closing parenthesis.
std::optional<WrittenCall> ReadArguments(std::string_view formula, WrittenCall call) {
    int depth = 0;
    std::size_t start = call.begin;
    bool hasSeparator = false;
    const auto add = [&](std::size_t end) {
        const std::string_view argument = WithoutBlanks(formula.substr(start, end - start));
        call.arguments.emplace_back(argument);
        call.starts.push_back(argument.empty() ? end
                                               : static_cast<std::size_t>(argument.data() - formula.data()));
    };
    for (std::size_t at = call.begin; at < formula.size(); at = SkipWord(formula, at)) {
        const char c = formula[at];
        if (depth == 0 && c == ')') {
            add(at);
            call.end = at;
            if (call.arguments.size() == 1 && call.arguments.front().empty()) {
                call.arguments.clear();
            }
            return call;
        }
        depth += c == '(' || c == '{' ? 1 : c == ')' || c == '}' ? -1 : 0;
        if (depth == 0 && (hasSeparator ? c == call.separator : c == ';' || c == ',')) {
            add(at);
            call.separator = c;
            hasSeparator = true;
            start = at + 1;
        }
    }
    return std::nullopt;
}

/// The function that a name calls with the class before it, otherwise empty.
std::string_view FunctionOfClass(std::string_view word) {
    const bool isOurs =
        word.size() > className.size() && EqualIgnoringCase(word.substr(0, className.size()), className);
    return isOurs ? word.substr(className.size()) : std::string_view();
}

/// What stands behind the last dot of a name.
std::string_view LastPart(std::string_view word) { return word.substr(word.rfind('.') + 1); }

template <class Functions>
std::vector<WrittenCall> FindCallsOf(std::string_view formula, const Functions& functions,
                                     std::string_view (*functionOf)(std::string_view word)) {
    std::vector<WrittenCall> calls;
    for (std::size_t at = 0, next = 0; at < formula.size(); at = next) {
        next = SkipWord(formula, at);
        const std::string_view function = functionOf(formula.substr(at, next - at));
        const bool isOurs = std::any_of(functions.begin(), functions.end(), [&](std::string_view own) {
            return EqualIgnoringCase(own, function);
        });
        const auto open = formula.find_first_not_of(blanks, next);
        if (!isOurs || open == std::string_view::npos || formula[open] != '(') {
            continue;
        }
        if (auto call = ReadArguments(formula, {.function = std::string(function), .begin = open + 1})) {
            calls.push_back(std::move(*call));
        }
    }
    return calls;
}

} // namespace

bool IsNameCall(const WrittenCall& call) {
    return EqualIgnoringCase(call.function, "QelName") || EqualIgnoringCase(call.function, "RetQelName");
}

std::vector<WrittenCall> FindCalls(std::string_view formula) {
    return FindCallsOf(formula, editable, FunctionOfClass);
}

std::vector<WrittenCall> FindCallsOfAnyName(std::string_view formula) {
    return FindCallsOf(formula, callable, LastPart);
}

std::string WithArguments(std::string_view formula, const WrittenCall& call,
                          const std::vector<std::string>& arguments) {
    std::string text(formula.substr(0, call.begin));
    std::size_t copied = call.begin;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i < call.arguments.size()) {
            text += formula.substr(copied, call.starts[i] - copied);
            copied = call.starts[i] + call.arguments[i].size();
        } else if (i > 0) {
            text += call.separator;
        }
        text += arguments[i];
    }
    return text.append(formula.substr(arguments.size() < call.arguments.size() ? call.end : copied));
}

} // namespace qel
