#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// Receives text piece by piece.
using TextSink = std::function<void(std::string_view)>;

/// A name in double quotes, which keeps its letter case in every database.
std::string SqlName(std::string_view name);
/// A text literal. NUL characters, which databases reject, are left out.
std::string SqlText(std::string_view text);

struct SqlColumn {
    std::string name;
    std::string type;
};

/// "CREATE TABLE …;" and a line end.
std::string CreateTable(std::string_view table, const std::vector<SqlColumn>& columns);

/// INSERT statements of many rows each.
class RowWriter {
public:
    RowWriter(std::string_view table, const TextSink& sink);
    /// Adds a row of SQL literals.
    void Add(const std::vector<std::string>& values);
    /// Ends the last statement.
    void Finish();

private:
    std::string opening_;
    const TextSink& sink_;
    std::string text_;
    std::size_t rows_ = 0; ///< in the current statement
};

} // namespace qel::engine
