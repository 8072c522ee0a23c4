#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// Takes text as it is made.
using TextSink = std::function<void(std::string_view)>;

/// A name in double quotes, so that every database keeps its letters.
std::string SqlName(std::string_view name);
/// A text constant. A zero character, which databases refuse, is left out.
std::string SqlText(std::string_view text);
/// An integer of that many decimals, written with a point.
std::string SqlAmount(std::int64_t scaled, std::uint8_t decimals);

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
    /// Values as SQL writes them.
    void Add(const std::vector<std::string>& values);
    /// Ends the last statement.
    void Finish();

private:
    std::string opening_;
    const TextSink& sink_;
    std::string text_;
    std::size_t rows_ = 0; ///< of the statement that is being written
};

} // namespace qel::engine
