#include "examples/ledger/reference/LedgerDatabase.h"

#include <csv.h>
#include <fmt/format.h>

#include <fstream>
#include <functional>
#include <optional>
#include <stdexcept>
#include <vector>

namespace qel::ledger {
namespace {

using Row = std::vector<std::string>;

void OnField(void* field, std::size_t length, void* row) {
    static_cast<Row*>(row)->emplace_back(static_cast<const char*>(field), length);
}

/// Calls visit(row) for every row, the header first.
void ReadCsv(const std::filesystem::path& path, const std::function<void(const Row&)>& visit) {
    struct State {
        Row row;
        const std::function<void(const Row&)>& visit;
    } state{{}, visit};
    csv_parser parser{};
    if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI) != 0) {
        throw std::runtime_error("The CSV reader cannot start.");
    }
    const std::unique_ptr<csv_parser, void (*)(csv_parser*)> owner(&parser, csv_free);
    const auto onField = [](void* field, std::size_t length, void* context) {
        OnField(field, length, &static_cast<State*>(context)->row);
    };
    const auto onRow = [](int, void* context) {
        auto* rows = static_cast<State*>(context);
        rows->visit(rows->row);
        rows->row.clear();
    };
    std::ifstream file(path, std::ios::binary);
    std::string block(1U << 16U, '\0');
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
        const auto length = static_cast<std::size_t>(file.gcount());
        if (csv_parse(&parser, block.data(), length, onField, onRow, &state) != length) {
            throw std::runtime_error(fmt::format("{}: not well-formed CSV", path.string()));
        }
    }
    if (!file.eof() || csv_fini(&parser, onField, onRow, &state) != 0) {
        throw std::runtime_error(fmt::format("{} cannot be read to its end.", path.string()));
    }
}

/// Converts "-12.5" with three decimals to -12500.
std::int64_t Scaled(const std::string& text, std::size_t decimals) {
    std::string digits;
    std::optional<std::size_t> point;
    for (const char character : text) {
        if (character == '.') {
            point = digits.size();
        } else if (character != '-') {
            digits += character;
        }
    }
    const std::size_t given = point ? digits.size() - *point : 0;
    digits.append(decimals - given, '0');
    const std::int64_t magnitude = std::stoll(digits);
    return text.starts_with('-') ? -magnitude : magnitude;
}

void LoadTable(const std::filesystem::path& path, SqlDatabase& database, std::uint64_t oneIn) {
    const std::string table = path.stem().string();
    std::optional<SqlStatement> insert;
    Row header;
    std::uint64_t number = 0;
    ReadCsv(path, [&](const Row& row) {
        if (!insert) {
            header = row;
            database.Run(fmt::format("CREATE TABLE {} ({})", table, fmt::join(header, ", ")));
            insert =
                database.Prepare(fmt::format("INSERT INTO {} VALUES ({})", table,
                                             fmt::join(std::vector<std::string>(header.size(), "?"), ", ")));
            return;
        }
        if (number++ % oneIn != 0) {
            return;
        }
        for (std::size_t i = 0; i < row.size(); ++i) {
            const int parameter = static_cast<int>(i) + 1;
            if (header[i] == "amount") {
                insert->Bind(parameter, Scaled(row[i], 2));
            } else if (header[i] == "quantity") {
                insert->Bind(parameter, Scaled(row[i], 3));
            } else {
                insert->Bind(parameter, row[i]);
            }
        }
        insert->Step();
        insert->Reset();
    });
    if (!insert) {
        throw std::runtime_error(fmt::format("{} is missing or empty.", path.string()));
    }
}

} // namespace

void LoadLedger(const std::filesystem::path& folder, SqlDatabase& database, std::uint64_t oneIn) {
    database.Run("BEGIN");
    LoadTable(folder / "ledger.csv", database, oneIn);
    for (const char* file : {"accounts", "activities", "cost_centres", "obs", "obs_numbers", "firms", "plbs",
                             "rh", "opening_balance", "money_sets"}) {
        LoadTable(folder / fmt::format("{}.csv", file), database, 1);
    }
    database.Run("COMMIT");
}

} // namespace qel::ledger
