#include "bench/DuckDbPeer.h"

#include <fmt/format.h>

#include <cstdint>
#include <dlfcn.h>
#include <stdexcept>

namespace qel::bench {
namespace {

// The part of DuckDB's documented C interface that is used.
using Handle = void*;
constexpr int success = 0;

struct Result {
    std::uint64_t deprecated[3];
    void* deprecatedData;
    char* deprecatedMessage;
    void* internal;
};

template <class Function>
Function Load(void* library, const char* name) {
    void* const found = dlsym(library, name);
    if (found == nullptr) {
        throw std::runtime_error(fmt::format("DuckDB's library has no {}.", name));
    }
    return reinterpret_cast<Function>(found);
}

/// A statement with literal values.
std::string LiteralSql(const SqliteCell& cell) {
    std::string text;
    std::size_t value = 0;
    for (const char character : cell.sql) {
        if (character == '?') {
            text += std::to_string(cell.values.at(value++));
        } else {
            text += character;
        }
    }
    return text;
}

} // namespace

class DuckDbPeer::Library {
public:
    explicit Library(const std::filesystem::path& path)
        : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (library_ == nullptr) {
            throw std::runtime_error(fmt::format("DuckDB cannot be loaded: {}", dlerror()));
        }
        const auto open = Load<int (*)(const char*, Handle*)>(library_, "duckdb_open");
        const auto connect = Load<int (*)(Handle, Handle*)>(library_, "duckdb_connect");
        query_ = Load<int (*)(Handle, const char*, Result*)>(library_, "duckdb_query");
        destroy_ = Load<void (*)(Result*)>(library_, "duckdb_destroy_result");
        message_ = Load<const char* (*)(Result*)>(library_, "duckdb_result_error");
        number_ =
            Load<std::int64_t (*)(Result*, std::uint64_t, std::uint64_t)>(library_, "duckdb_value_int64");
        if (open(nullptr, &database_) != success || connect(database_, &connection_) != success) {
            throw std::runtime_error("DuckDB cannot make a database.");
        }
    }
    ~Library() {
        Load<void (*)(Handle*)>(library_, "duckdb_disconnect")(&connection_);
        Load<void (*)(Handle*)>(library_, "duckdb_close")(&database_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// The first column of the first row; 0 when null.
    std::int64_t Query(const std::string& sql) const {
        Result result{};
        if (query_(connection_, sql.c_str(), &result) != success) {
            const std::string fault = message_(&result);
            destroy_(&result);
            throw std::runtime_error("DuckDB: " + fault);
        }
        const std::int64_t number = number_(&result, 0, 0);
        destroy_(&result);
        return number;
    }

    void* Symbols() const { return library_; }
    Handle Connection() const { return connection_; }

private:
    void* library_; ///< never unloaded: its threads may outlive the database
    Handle database_ = nullptr, connection_ = nullptr;
    int (*query_)(Handle, const char*, Result*) = nullptr;
    void (*destroy_)(Result*) = nullptr;
    const char* (*message_)(Result*) = nullptr;
    std::int64_t (*number_)(Result*, std::uint64_t, std::uint64_t) = nullptr;
};

DuckDbPeer::DuckDbPeer(const std::filesystem::path& library, SqlitePeer& source)
    : library_(std::make_unique<Library>(library)) {
    library_->Query("SET threads = 1");
    library_->Query(
        "CREATE TABLE facts (day INTEGER, account USMALLINT, activity USMALLINT, cost_centre USMALLINT, "
        "obs USMALLINT, obs_number UTINYINT, plbs UTINYINT, rh UTINYINT, firm UTINYINT, "
        "opening_balance UTINYINT, money_set UTINYINT, amount BIGINT, quantity INTEGER)");
    Copy(source, "facts",
         "SELECT day, account, activity, cost_centre, obs, obs_number, plbs, rh, firm, opening_balance, "
         "money_set, "
         "amount, quantity FROM facts ORDER BY account, obs, day",
         13);
}

DuckDbPeer::~DuckDbPeer() = default;

void DuckDbPeer::Copy(SqlitePeer& source, const std::string& table, const std::string& query, int columns) {
    void* const symbols = library_->Symbols();
    const auto append = Load<int (*)(Handle, std::int64_t)>(symbols, "duckdb_append_int64");
    const auto endRow = Load<int (*)(Handle)>(symbols, "duckdb_appender_end_row");
    Handle appender = nullptr;
    Load<int (*)(Handle, const char*, const char*, Handle*)>(symbols, "duckdb_appender_create")(
        library_->Connection(), nullptr, table.c_str(), &appender);
    ledger::SqlStatement rows = source.Database().Prepare(query);
    bool isGood = true;
    while (rows.Step() && isGood) {
        for (int column = 0; column < columns; ++column) {
            isGood = append(appender, rows.Number(column)) == success && isGood;
        }
        isGood = endRow(appender) == success && isGood;
    }
    isGood = Load<int (*)(Handle*)>(symbols, "duckdb_appender_destroy")(&appender) == success && isGood;
    if (!isGood) {
        throw std::runtime_error("DuckDB does not take the facts.");
    }
}

double DuckDbPeer::Run(const SqliteCell& cell) {
    return cell.statement == nullptr ? 0
                                     : static_cast<double>(library_->Query(LiteralSql(cell))) / cell.scale;
}

std::string DuckDbPeer::Version() const {
    return Load<const char* (*)()>(library_->Symbols(), "duckdb_library_version")();
}

} // namespace qel::bench
