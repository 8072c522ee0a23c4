#pragma once

#include "platform/data/DataAccess.h"
#include "platform/windows/DispatchObject.h"

#include <functional>
#include <utility>

namespace qel::windows {

/// Raises AutomationError for a connection text that must not be opened.
using OpeningCheck = std::function<void(const std::string& connectionText)>;

/// ADODB.Connection.
class AdoConnection : public Connection {
public:
    explicit AdoConnection(OpeningCheck check = {})
        : check_(std::move(check)), connection_(DispatchObject::Create(L"ADODB.Connection")) {}

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override {
        if (check_) {
            check_(connectionString);
        }
        connection_.Call(L"Open", ArgumentList(connectionString, user, password, std::int32_t{options}));
    }
    void Close() override { connection_.Call(L"Close"); }
    int State() const override { return connection_.Number(L"State"); }
    std::string ConnectionString() const override { return connection_.Text(L"ConnectionString"); }
    std::string Provider() const override { return connection_.Text(L"Provider"); }
    std::string DefaultDatabase() const override { return connection_.Text(L"DefaultDatabase"); }
    std::unique_ptr<Recordset> OpenSchema(int schema) override;

    /// The COM object of a connection that this provider made. Raises 3709 for any other connection.
    static const DispatchObject& ObjectOf(const std::shared_ptr<Connection>& connection);

private:
    OpeningCheck check_;
    DispatchObject connection_;
};

} // namespace qel::windows
