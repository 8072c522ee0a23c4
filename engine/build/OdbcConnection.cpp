#include "engine/build/OdbcConnection.h"

#include "qel/engine/EngineError.h"
#include "text/ShownText.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <new>

namespace qel::engine {

namespace {

constexpr std::uintptr_t secondsToConnect = 30;
constexpr const char* namesOfDrivers =
    "; look at the names in \"odbc\": \"odbcinst -q -d\" lists the drivers, "
    "\"odbcinst -q -s\" the data sources (on Windows, \"odbcad32\" both)";

bool IsFailure(SQLRETURN result) { return !SQL_SUCCEEDED(result) && result != SQL_NO_DATA; }

std::string FirstMessage(SQLSMALLINT type, SQLHANDLE handle) {
    std::array<SQLTCHAR, 6> state = {};
    std::array<SQLTCHAR, 8192> text = {};
    SQLINTEGER code = 0;
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(::SQLGetDiagRec(type, handle, 1, state.data(), &code, text.data(),
                                       static_cast<SQLSMALLINT>(text.size()), &length))) {
        return "the driver gives no reason";
    }
    const auto end =
        std::min<std::size_t>(static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0)), text.size() - 1);
    return FromOdbc({text.data(), end});
}

} // namespace

void OdbcHandle::Allocate(SQLSMALLINT type, SQLHANDLE parent) {
    if (!SQL_SUCCEEDED(::SQLAllocHandle(type, parent, &handle_))) {
        throw std::bad_alloc();
    }
    type_ = type;
}

void OdbcHandle::Free() {
    if (handle_ != SQL_NULL_HANDLE) {
        ::SQLFreeHandle(type_, handle_);
        handle_ = SQL_NULL_HANDLE;
    }
}

OdbcConnection::OdbcConnection(std::string tableName, const OdbcSource& source, WaitTick tick)
    : tableName_(std::move(tableName)), text_(WithVariables(source)), tick_(std::move(tick)) {
    environment_.Allocate(SQL_HANDLE_ENV, SQL_NULL_HANDLE);
    ::SQLSetEnvAttr(environment_.Get(), SQL_ATTR_ODBC_VERSION, AsPointer(SQL_OV_ODBC3), 0);
    connection_.Allocate(SQL_HANDLE_DBC, environment_.Get());
    ::SQLSetConnectAttr(connection_.Get(), SQL_ATTR_LOGIN_TIMEOUT, AsPointer(secondsToConnect), 0);
    Connect();
    statement_.Allocate(SQL_HANDLE_STMT, connection_.Get());
}

OdbcConnection::~OdbcConnection() {
    statement_.Free();
    if (isConnected_) {
        ::SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), SQL_ROLLBACK);
        ::SQLDisconnect(connection_.Get());
    }
}

void OdbcConnection::Connect() {
    OdbcString text = ToOdbc(text_.text);
    const auto connect = [&] {
        return ::SQLDriverConnect(connection_.Get(), nullptr, text.data(), SQL_NTS, nullptr, 0, nullptr,
                                  SQL_DRIVER_NOPROMPT);
    };
    if (IsFailure(Await(connect, [] {}))) {
        Fail(SQL_HANDLE_DBC, connection_.Get(), "cannot connect");
    }
    isConnected_ = true;
    // A query that changes something by mistake has no effect.
    ::SQLSetConnectAttr(connection_.Get(), SQL_ATTR_AUTOCOMMIT, AsPointer(SQL_AUTOCOMMIT_OFF), 0);
}

void OdbcConnection::Execute(const std::string& query) {
    OdbcString text = ToOdbc(query);
    const auto execute = [&] {
        return ::SQLExecDirect(Statement(), text.data(), static_cast<SQLINTEGER>(text.size()));
    };
    Check(Await(execute, [this] { ::SQLCancel(Statement()); }), "the query fails");
}

bool OdbcConnection::Fetch(std::uint64_t rowsRead) {
    const SQLRETURN result =
        Await([this] { return ::SQLFetch(Statement()); }, [this] { ::SQLCancel(Statement()); });
    Check(result, fmt::format("after row {} of the answer", rowsRead));
    return result != SQL_NO_DATA;
}

SQLRETURN OdbcConnection::Await(const std::function<SQLRETURN()>& call,
                                const std::function<void()>& cancel) const {
    constexpr auto pause = std::chrono::milliseconds(100);
    std::future<SQLRETURN> result = std::async(std::launch::async, [&call] {
        const Utf8Locale locale;
        return call();
    });
    try {
        tick_();
        while (result.wait_for(pause) != std::future_status::ready) {
            tick_();
        }
    } catch (...) {
        do { // a call that has not begun yet takes no notice
            cancel();
        } while (result.wait_for(pause) != std::future_status::ready);
        throw;
    }
    return result.get();
}

void OdbcConnection::Check(SQLRETURN result, const std::string& what) const {
    if (IsFailure(result)) {
        Fail(SQL_HANDLE_STMT, Statement(), what);
    }
}

void OdbcConnection::Fail(SQLSMALLINT type, SQLHANDLE handle, const std::string& what) const {
    std::string message = FirstMessage(type, handle);
    for (const std::string& password : text_.passwords) {
        message = ReplaceAll(message, password, "***");
    }
    const bool isUnknownDriver =
        type == SQL_HANDLE_DBC && message.find("Driver Manager]") != std::string::npos;
    throw EngineError(ErrorKind::InvalidData,
                      fmt::format("{}: {}: {}{}", tableName_, what, OnOneShownLine(message),
                                  isUnknownDriver ? namesOfDrivers : ""));
}

} // namespace qel::engine
