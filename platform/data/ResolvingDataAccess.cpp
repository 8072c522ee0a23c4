#include "platform/data/ResolvingDataAccess.h"

#include "platform/value/AutomationError.h"

namespace qel {

namespace {

// ADO's numbers and words for objects that are used before they are opened.
AutomationError ObjectClosed() { return {3704, "Operation is not allowed when the object is closed."}; }
AutomationError InvalidConnection() {
    return {3709,
            "The connection cannot be used to perform this operation. It is either closed or invalid in "
            "this context."};
}

class ResolvingConnection : public Connection {
public:
    explicit ResolvingConnection(ProviderChoice choose) : choose_(std::move(choose)) {}

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override {
        if (State() != stateClosed) { // the provider refuses a second opening in its own words
            opened_->Open(connectionString, user, password, options);
            return;
        }
        opened_.reset();
        DataAccess& provider = choose_(connectionString);
        auto connection = provider.CreateConnection();
        connection->Open(connectionString, user, password, options);
        // Only now: an object that could not open its source may not even tell its state.
        provider_ = &provider;
        opened_ = std::move(connection);
    }

    void Close() override { Opened()->Close(); }
    int State() const override { return opened_ ? opened_->State() : stateClosed; }
    std::string ConnectionString() const override { return opened_ ? opened_->ConnectionString() : ""; }

    std::string Provider() const override { return opened_ ? opened_->Provider() : ""; }
    std::string DefaultDatabase() const override { return opened_ ? opened_->DefaultDatabase() : ""; }
    std::unique_ptr<Recordset> OpenSchema(int schema) override { return Opened()->OpenSchema(schema); }

    DataAccess& Objects() const { return *provider_; }
    const std::shared_ptr<Connection>& Opened() const {
        if (!opened_) {
            throw ObjectClosed();
        }
        return opened_;
    }

private:
    ProviderChoice choose_;
    DataAccess* provider_ = nullptr;
    std::shared_ptr<Connection> opened_; ///< the provider's own; none before the first opening
};

/// The connection that a client handed in. Raises 3709 when it was never opened or was made elsewhere.
const ResolvingConnection& Resolved(const std::shared_ptr<Connection>& connection) {
    const auto* own = dynamic_cast<const ResolvingConnection*>(connection.get());
    if (!own || own->State() == stateClosed) {
        throw InvalidConnection();
    }
    return *own;
}

class ResolvingCatalog : public Catalog {
public:
    explicit ResolvingCatalog(ProviderChoice choose) : choose_(std::move(choose)) {}

    void SetActiveConnection(const std::string& connectionString) override {
        auto catalog = choose_(connectionString).CreateCatalog();
        catalog->SetActiveConnection(connectionString);
        catalog_ = std::move(catalog);
    }

    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override {
        const ResolvingConnection& resolved = Resolved(connection);
        auto catalog = resolved.Objects().CreateCatalog();
        catalog->SetActiveConnection(resolved.Opened());
        catalog_ = std::move(catalog);
    }

    std::int32_t CubeCount() const override { return Connected().CubeCount(); }
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override { return Connected().CubeAt(index); }

private:
    const Catalog& Connected() const {
        if (!catalog_) {
            throw InvalidConnection();
        }
        return *catalog_;
    }

    ProviderChoice choose_;
    std::unique_ptr<Catalog> catalog_;
};

class ResolvingCellset : public Cellset {
public:
    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
        const ResolvingConnection& resolved = Resolved(connection);
        auto cellset = resolved.Objects().CreateCellset();
        cellset->Open(source, resolved.Opened());
        cellset_ = std::move(cellset);
    }

    void Close() override {
        Opened().Close();
        cellset_.reset();
    }

    std::int32_t AxisCount() const override { return Opened().AxisCount(); }
    std::int32_t PositionCount(std::int32_t axis) const override { return Opened().PositionCount(axis); }
    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override {
        return Opened().MemberCount(axis, position);
    }
    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
        return Opened().MemberAt(axis, position, index);
    }
    Variant Value(const std::vector<std::int32_t>& positions) const override {
        return Opened().Value(positions);
    }

private:
    Cellset& Opened() const {
        if (!cellset_) {
            throw ObjectClosed();
        }
        return *cellset_;
    }

    std::unique_ptr<Cellset> cellset_;
};

class ResolvingRecordset : public Recordset {
public:
    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override {
        const ResolvingConnection& resolved = Resolved(connection);
        auto recordset = resolved.Objects().CreateRecordset();
        recordset->Open(source, resolved.Opened(), cursorType, lockType, options);
        recordset_ = std::move(recordset);
    }

    void Close() override {
        Opened().Close();
        recordset_.reset();
    }

    std::int32_t FieldCount() const override { return Opened().FieldCount(); }
    std::string FieldName(std::int32_t index) const override { return Opened().FieldName(index); }
    Variant FieldValue(std::int32_t index) const override { return Opened().FieldValue(index); }
    Variant FieldValueNamed(const std::string& name) const override { return Opened().FieldValueNamed(name); }
    bool AtEnd() const override { return Opened().AtEnd(); }
    void MoveFirst() override { Opened().MoveFirst(); }
    void MoveNext() override { Opened().MoveNext(); }

private:
    Recordset& Opened() const {
        if (!recordset_) {
            throw ObjectClosed();
        }
        return *recordset_;
    }

    std::unique_ptr<Recordset> recordset_;
};

} // namespace

std::shared_ptr<Connection> ResolvingDataAccess::CreateConnection() {
    return std::make_shared<ResolvingConnection>(choose_);
}

std::unique_ptr<Catalog> ResolvingDataAccess::CreateCatalog() {
    return std::make_unique<ResolvingCatalog>(choose_);
}

std::unique_ptr<Cellset> ResolvingDataAccess::CreateCellset() { return std::make_unique<ResolvingCellset>(); }

std::unique_ptr<Recordset> ResolvingDataAccess::CreateRecordset() {
    return std::make_unique<ResolvingRecordset>();
}

} // namespace qel
