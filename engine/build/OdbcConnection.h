#pragma once

#include "engine/build/OdbcConnectionText.h"
#include "engine/build/OdbcText.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qel::engine {

/// Is called several times a second while the database is waited for. May raise.
using WaitTick = std::function<void()>;

/// ODBC takes numbers in the place of pointers.
inline SQLPOINTER AsPointer(std::uintptr_t number) {
    return reinterpret_cast<SQLPOINTER>(number); // NOLINT(performance-no-int-to-ptr)
}

/// Owns a handle of ODBC.
class OdbcHandle {
public:
    OdbcHandle() = default;
    ~OdbcHandle() { Free(); }
    OdbcHandle(const OdbcHandle&) = delete;
    OdbcHandle& operator=(const OdbcHandle&) = delete;

    SQLHANDLE Get() const { return handle_; }
    /// Raises std::bad_alloc.
    void Allocate(SQLSMALLINT type, SQLHANDLE parent);
    void Free();

private:
    SQLSMALLINT type_ = 0;
    SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

/// A connection with one statement on it. Raises EngineError (InvalidData) "TABLE: what failed: why" in the
/// database's words, without passwords.
class OdbcConnection {
public:
    /// `tableName` is used in messages.
    OdbcConnection(std::string tableName, const OdbcSource& source, WaitTick tick);
    ~OdbcConnection();
    OdbcConnection(const OdbcConnection&) = delete;
    OdbcConnection& operator=(const OdbcConnection&) = delete;

    SQLHSTMT Statement() const { return statement_.Get(); }
    void Execute(const std::string& query);
    /// Reads the next rows into what is bound; false at the end. `rowsRead` is for the message of a failure.
    bool Fetch(std::uint64_t rowsRead);
    /// Raises when `result` is a failure of the statement.
    void Check(SQLRETURN result, const std::string& what) const;

private:
    [[noreturn]] void Fail(SQLSMALLINT type, SQLHANDLE handle, const std::string& what) const;
    void Connect();
    /// Calls on another thread, since a database may not answer for minutes.
    SQLRETURN Await(const std::function<SQLRETURN()>& call, const std::function<void()>& cancel) const;

    std::string tableName_;
    OdbcConnectionText text_;
    WaitTick tick_;
    OdbcHandle environment_, connection_, statement_;
    bool isConnected_ = false;
};

} // namespace qel::engine
