#include "engine/build/OdbcConnectionText.h"

#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/Environment.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

constexpr std::string_view variableStart = "${";

/// Takes the next value: up to a semicolon, or from a brace to the one that ends it, without the two.
std::string TakeValue(std::string_view& text) {
    std::string value;
    if (!text.starts_with('{') || text.starts_with("{}")) {
        const std::size_t end = std::min(text.find(';'), text.size());
        value = Trimmed(text.substr(0, end));
        text.remove_prefix(end);
        return value;
    }
    text.remove_prefix(1);
    while (!text.empty()) {
        const bool isBrace = text.front() == '}';
        if (isBrace && !text.starts_with("}}")) {
            break;
        }
        value += text.front();
        text.remove_prefix(isBrace ? 2 : 1);
    }
    text.remove_prefix(std::min(text.find(';'), text.size()));
    return value;
}

std::vector<std::string> PasswordsOf(std::string_view text) {
    std::vector<std::string> passwords;
    while (!text.empty()) {
        const std::size_t nameEnd = std::min(text.find_first_of("=;"), text.size());
        const std::string_view name = Trimmed(text.substr(0, nameEnd));
        const bool hasValue = nameEnd < text.size() && text[nameEnd] == '=';
        text.remove_prefix(std::min(nameEnd + 1, text.size()));
        if (!hasValue) {
            continue;
        }
        while (text.starts_with(' ')) {
            text.remove_prefix(1);
        }
        std::string value = TakeValue(text);
        text.remove_prefix(text.empty() ? 0 : 1);
        if (!value.empty() && (EqualIgnoringCase(name, "PWD") || EqualIgnoringCase(name, "PASSWORD"))) {
            passwords.push_back(std::move(value));
        }
    }
    return passwords;
}

/// The value as it can stand after "=". A value of a whole connection text stays as it is.
std::string AsValue(const std::string& value, std::string_view before) {
    if (before.ends_with('{')) {
        return ReplaceAll(value, "}", "}}");
    }
    const bool isPlain = value.find_first_of("[]{}(),;?*=!@ ") == std::string::npos;
    return isPlain || !Trimmed(before).ends_with('=') ? value : "{" + ReplaceAll(value, "}", "}}") + "}";
}

std::string VariableValue(const std::string& name, const OdbcSource& source) {
    auto value = EnvironmentVariable(name);
    if (!value) {
        throw EngineError(ErrorKind::InvalidDefinition,
                          fmt::format("{}: the environment variable {} is not set", source.place, name));
    }
    return *std::move(value);
}

} // namespace

bool HoldsPassword(std::string_view connection) {
    for (const std::string& password : PasswordsOf(connection)) {
        if (!password.starts_with(variableStart)) {
            return true;
        }
    }
    return false;
}

OdbcConnectionText WithVariables(const OdbcSource& source) {
    OdbcConnectionText connection;
    std::string_view rest = source.connection;
    for (std::size_t start = 0; (start = rest.find(variableStart)) != std::string_view::npos;) {
        const std::size_t end = rest.find('}', start);
        if (end == std::string_view::npos) {
            throw EngineError(ErrorKind::InvalidDefinition,
                              fmt::format("{}: \"${{\" has no \"}}\"", source.place));
        }
        connection.text += rest.substr(0, start);
        const std::string name(rest.substr(start + variableStart.size(), end - start - variableStart.size()));
        connection.text += AsValue(VariableValue(name, source), connection.text);
        rest.remove_prefix(end + 1);
    }
    connection.text += rest;
    connection.passwords = PasswordsOf(connection.text);
    return connection;
}

} // namespace qel::engine
