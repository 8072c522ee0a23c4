#pragma once

#include "platform/data/DataAccess.h"

#include <functional>
#include <memory>
#include <string>

namespace qel::batch {

/// A connection through which formulas are evaluated from a batch's answers. When the server is lost it stays
/// open as long as there are answers: what has come can be told without the server.
class BatchedConnection : public Connection {
public:
    /// True when the batch has answers to statements over that connection text.
    using HasAnswers = std::function<bool(const std::string& connectionText)>;

    BatchedConnection(std::shared_ptr<Connection> real, HasAnswers hasAnswers)
        : real_(std::move(real)), hasAnswers_(std::move(hasAnswers)) {}

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override;
    void Close() override;
    int State() const override;
    std::string ConnectionString() const override { return real_->ConnectionString(); }
    std::string Provider() const override { return real_->Provider(); }
    std::string DefaultDatabase() const override { return real_->DefaultDatabase(); }
    std::unique_ptr<Recordset> OpenSchema(int schema) override { return RealOpened()->OpenSchema(schema); }

    /// The provider's connection, opened afresh when it was lost. Raises what the provider raises.
    const std::shared_ptr<Connection>& RealOpened();

private:
    std::shared_ptr<Connection> real_;
    HasAnswers hasAnswers_;
    std::string connectionText_;
    bool isOpened_ = false; ///< by a client, who did not close it
};

/// What the provider knows the connection by: its own one, when it is a batched one.
std::shared_ptr<Connection> RealConnection(const std::shared_ptr<Connection>& connection);

/// The provider's objects, which can be opened on batched connections.
std::unique_ptr<Catalog> OverBatchedConnections(std::unique_ptr<Catalog> catalog);
std::unique_ptr<Recordset> OverBatchedConnections(std::unique_ptr<Recordset> recordset);

} // namespace qel::batch
