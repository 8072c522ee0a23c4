#include "engine/export/SqlWriter.h"

#include <fmt/format.h>

namespace qel::engine {

namespace {

std::string Quoted(std::string_view text, char quote) {
    std::string quoted(1, quote);
    for (const char character : text) {
        if (character == quote) {
            quoted += quote;
        }
        if (character != '\0') {
            quoted += character;
        }
    }
    return quoted + quote;
}

} // namespace

std::string SqlName(std::string_view name) { return Quoted(name, '"'); }

std::string SqlText(std::string_view text) { return Quoted(text, '\''); }

std::string CreateTable(std::string_view table, const std::vector<SqlColumn>& columns) {
    std::string list;
    for (const auto& column : columns) {
        list += fmt::format("{}\n  {} {}", list.empty() ? "" : ",", SqlName(column.name), column.type);
    }
    return fmt::format("CREATE TABLE {} ({});\n", SqlName(table), list);
}

RowWriter::RowWriter(std::string_view table, const TextSink& sink)
    : opening_(fmt::format("INSERT INTO {} VALUES\n", SqlName(table))), sink_(sink) {}

void RowWriter::Add(const std::vector<std::string>& values) {
    constexpr std::size_t rowsOfAStatement = 500;
    text_ += rows_ == 0 ? opening_ : ",\n";
    text_ += fmt::format("({})", fmt::join(values, ","));
    if (++rows_ == rowsOfAStatement) {
        Finish();
    }
}

void RowWriter::Finish() {
    if (rows_ == 0) {
        return;
    }
    text_ += ";\n";
    sink_(text_);
    text_.clear();
    rows_ = 0;
}

} // namespace qel::engine
