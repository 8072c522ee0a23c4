#include "batch/BatchedConnection.h"

#include <utility>

namespace qel::batch {

namespace {

class BatchedCatalog : public Catalog {
public:
    explicit BatchedCatalog(std::unique_ptr<Catalog> real) : real_(std::move(real)) {}

    void SetActiveConnection(const std::string& connectionString) override {
        real_->SetActiveConnection(connectionString);
    }
    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override {
        real_->SetActiveConnection(RealConnection(connection));
    }
    std::int32_t CubeCount() const override { return real_->CubeCount(); }
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override { return real_->CubeAt(index); }

private:
    std::unique_ptr<Catalog> real_;
};

class BatchedRecordset : public Recordset {
public:
    explicit BatchedRecordset(std::unique_ptr<Recordset> real) : real_(std::move(real)) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override {
        real_->Open(source, RealConnection(connection), cursorType, lockType, options);
    }
    void Close() override { real_->Close(); }
    std::int32_t FieldCount() const override { return real_->FieldCount(); }
    std::string FieldName(std::int32_t index) const override { return real_->FieldName(index); }
    Variant FieldValue(std::int32_t index) const override { return real_->FieldValue(index); }
    Variant FieldValueNamed(const std::string& name) const override { return real_->FieldValueNamed(name); }
    bool AtEnd() const override { return real_->AtEnd(); }
    void MoveFirst() override { real_->MoveFirst(); }
    void MoveNext() override { real_->MoveNext(); }

private:
    std::unique_ptr<Recordset> real_;
};

} // namespace

void BatchedConnection::Open(const std::string& connectionString, const std::string& user,
                             const std::string& password, int options) {
    isOpened_ = false;
    real_->Open(connectionString, user, password, options);
    connectionText_ = connectionString;
    isOpened_ = true;
}

void BatchedConnection::Close() {
    isOpened_ = false;
    real_->Close();
}

int BatchedConnection::State() const {
    return isOpened_ && hasAnswers_(connectionText_) ? stateOpen : real_->State();
}

const std::shared_ptr<Connection>& BatchedConnection::RealOpened() {
    if (isOpened_ && real_->State() != stateOpen) {
        real_->Open(connectionText_, "", "", optionsUnspecified);
    }
    return real_;
}

std::shared_ptr<Connection> RealConnection(const std::shared_ptr<Connection>& connection) {
    auto* batched = dynamic_cast<BatchedConnection*>(connection.get());
    return batched ? batched->RealOpened() : connection;
}

std::unique_ptr<Catalog> OverBatchedConnections(std::unique_ptr<Catalog> catalog) {
    return std::make_unique<BatchedCatalog>(std::move(catalog));
}

std::unique_ptr<Recordset> OverBatchedConnections(std::unique_ptr<Recordset> recordset) {
    return std::make_unique<BatchedRecordset>(std::move(recordset));
}

} // namespace qel::batch
