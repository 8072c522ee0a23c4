#include "cli/RecordingDataAccess.h"

namespace qel {

namespace {

template <class Work>
auto NotingErrors(Recording& recording, const Work& work) {
    try {
        return work();
    } catch (const AutomationError& error) {
        recording.lastError = error;
        throw;
    }
}

class RecordingConnection : public Connection {
public:
    RecordingConnection(std::shared_ptr<Connection> inner, Recording& recording)
        : inner_(std::move(inner)), recording_(recording) {}

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override {
        recording_.connectionTexts.push_back(connectionString);
        const auto start = std::chrono::steady_clock::now();
        NotingErrors(recording_, [&] { inner_->Open(connectionString, user, password, options); });
        recording_.openTime += std::chrono::steady_clock::now() - start;
    }
    void Close() override { inner_->Close(); }
    int State() const override { return inner_->State(); }
    std::string ConnectionString() const override { return inner_->ConnectionString(); }
    std::string Provider() const override { return inner_->Provider(); }
    std::string DefaultDatabase() const override { return inner_->DefaultDatabase(); }
    std::unique_ptr<Recordset> OpenSchema(int schema) override {
        return NotingErrors(recording_, [&] { return inner_->OpenSchema(schema); });
    }

    /// The provider's own connection behind one that a client handed in.
    static std::shared_ptr<Connection> Inner(const std::shared_ptr<Connection>& connection) {
        const auto* recording = dynamic_cast<const RecordingConnection*>(connection.get());
        return recording ? recording->inner_ : connection;
    }

private:
    std::shared_ptr<Connection> inner_;
    Recording& recording_;
};

// The objects between a catalog and its levels are wrapped for one reason: a level or dimension that does not
// exist is told by them, and the component makes a bare number of what they say.

class RecordingHierarchy : public Hierarchy {
public:
    RecordingHierarchy(std::unique_ptr<Hierarchy> inner, Recording& recording)
        : inner_(std::move(inner)), recording_(recording) {}

    std::string Name() const override { return inner_->Name(); }
    std::string Caption() const override { return inner_->Caption(); }
    std::string UniqueName() const override { return inner_->UniqueName(); }
    std::int32_t LevelCount() const override { return inner_->LevelCount(); }
    std::unique_ptr<Level> LevelAt(std::int32_t index) const override { return inner_->LevelAt(index); }
    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        return NotingErrors(recording_, [&] { return inner_->LevelNamed(name); });
    }

private:
    std::unique_ptr<Hierarchy> inner_;
    Recording& recording_;
};

class RecordingDimension : public Dimension {
public:
    RecordingDimension(std::unique_ptr<Dimension> inner, Recording& recording)
        : inner_(std::move(inner)), recording_(recording) {}

    std::string Name() const override { return inner_->Name(); }
    std::string Caption() const override { return inner_->Caption(); }
    std::int32_t HierarchyCount() const override { return inner_->HierarchyCount(); }
    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        return std::make_unique<RecordingHierarchy>(inner_->HierarchyAt(index), recording_);
    }

private:
    std::unique_ptr<Dimension> inner_;
    Recording& recording_;
};

class RecordingCubeDef : public CubeDef {
public:
    RecordingCubeDef(std::unique_ptr<CubeDef> inner, Recording& recording)
        : inner_(std::move(inner)), recording_(recording) {}

    std::string Name() const override { return inner_->Name(); }
    std::int32_t DimensionCount() const override { return inner_->DimensionCount(); }
    std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const override {
        return std::make_unique<RecordingDimension>(inner_->DimensionAt(index), recording_);
    }
    std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const override {
        return NotingErrors(recording_, [&] {
            return std::make_unique<RecordingDimension>(inner_->DimensionNamed(name), recording_);
        });
    }

private:
    std::unique_ptr<CubeDef> inner_;
    Recording& recording_;
};

class RecordingCatalog : public Catalog {
public:
    RecordingCatalog(std::unique_ptr<Catalog> inner, Recording& recording)
        : inner_(std::move(inner)), recording_(recording) {}

    void SetActiveConnection(const std::string& connectionString) override {
        NotingErrors(recording_, [&] { inner_->SetActiveConnection(connectionString); });
    }
    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override {
        NotingErrors(recording_,
                     [&] { inner_->SetActiveConnection(RecordingConnection::Inner(connection)); });
    }
    std::int32_t CubeCount() const override { return inner_->CubeCount(); }
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override {
        return std::make_unique<RecordingCubeDef>(inner_->CubeAt(index), recording_);
    }

private:
    std::unique_ptr<Catalog> inner_;
    Recording& recording_;
};

class RecordingCellset : public Cellset {
public:
    RecordingCellset(std::unique_ptr<Cellset> inner, Recording& recording)
        : inner_(std::move(inner)), recording_(recording) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
        recording_.statements.push_back(source);
        NotingErrors(recording_, [&] { inner_->Open(source, RecordingConnection::Inner(connection)); });
    }
    void Close() override { inner_->Close(); }
    std::int32_t AxisCount() const override { return inner_->AxisCount(); }
    std::int32_t PositionCount(std::int32_t axis) const override { return inner_->PositionCount(axis); }
    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override {
        return inner_->MemberCount(axis, position);
    }
    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
        return NotingErrors(recording_, [&] { return inner_->MemberAt(axis, position, index); });
    }
    Variant Value(const std::vector<std::int32_t>& positions) const override {
        return NotingErrors(recording_, [&] { return inner_->Value(positions); });
    }

private:
    std::unique_ptr<Cellset> inner_;
    Recording& recording_;
};

class RecordingRecordset : public Recordset {
public:
    RecordingRecordset(std::unique_ptr<Recordset> inner, Recording& recording)
        : inner_(std::move(inner)), recording_(recording) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override {
        recording_.statements.push_back(source);
        NotingErrors(recording_, [&] {
            inner_->Open(source, RecordingConnection::Inner(connection), cursorType, lockType, options);
        });
    }
    void Close() override { inner_->Close(); }
    std::int32_t FieldCount() const override { return inner_->FieldCount(); }
    std::string FieldName(std::int32_t index) const override { return inner_->FieldName(index); }
    Variant FieldValue(std::int32_t index) const override { return inner_->FieldValue(index); }
    Variant FieldValueNamed(const std::string& name) const override { return inner_->FieldValueNamed(name); }
    bool AtEnd() const override { return inner_->AtEnd(); }
    void MoveFirst() override { inner_->MoveFirst(); }
    void MoveNext() override { inner_->MoveNext(); }

private:
    std::unique_ptr<Recordset> inner_;
    Recording& recording_;
};

} // namespace

std::shared_ptr<Connection> RecordingDataAccess::CreateConnection() {
    return std::make_shared<RecordingConnection>(provider_.CreateConnection(), recording_);
}

std::unique_ptr<Catalog> RecordingDataAccess::CreateCatalog() {
    return std::make_unique<RecordingCatalog>(provider_.CreateCatalog(), recording_);
}

std::unique_ptr<Cellset> RecordingDataAccess::CreateCellset() {
    return std::make_unique<RecordingCellset>(provider_.CreateCellset(), recording_);
}

std::unique_ptr<Recordset> RecordingDataAccess::CreateRecordset() {
    return std::make_unique<RecordingRecordset>(provider_.CreateRecordset(), recording_);
}

} // namespace qel
