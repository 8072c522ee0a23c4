#include "platform/data/waiting/WaitingDataAccess.h"

#include <utility>

namespace qel {

namespace {

using WaitingPointer = std::shared_ptr<const Waiting>;

/// The result of an operation that may take long.
template <class Operation>
auto Await(const WaitingPointer& waiting, const Operation& operation) {
    decltype(operation()) result{};
    waiting->run([&] { result = operation(); });
    return result;
}

/// The parents of a level's members. A provider reads all of them for the first one.
struct Parents {
    bool areRead = false;
    std::shared_ptr<Parents> own = nullptr; ///< of the parents; null until they are needed
};

class WaitingMember : public Member {
public:
    WaitingMember(WaitingPointer waiting, std::unique_ptr<Member> member, std::shared_ptr<Parents> parents)
        : waiting_(std::move(waiting)), member_(std::move(member)), parents_(std::move(parents)) {}

    std::string Name() const override { return member_->Name(); }
    std::string Caption() const override { return member_->Caption(); }
    std::string UniqueName() const override { return member_->UniqueName(); }
    std::unique_ptr<Member> Parent() const override {
        const auto read = [this] { return member_->Parent(); };
        auto parent = parents_->areRead ? read() : Await(waiting_, read);
        parents_->areRead = true;
        if (!parents_->own) {
            parents_->own = std::make_shared<Parents>();
        }
        return parent ? std::make_unique<WaitingMember>(waiting_, std::move(parent), parents_->own) : nullptr;
    }

private:
    WaitingPointer waiting_;
    std::unique_ptr<Member> member_;
    std::shared_ptr<Parents> parents_; ///< of this level's members
};

class WaitingLevel : public Level {
public:
    WaitingLevel(WaitingPointer waiting, std::unique_ptr<Level> level)
        : waiting_(std::move(waiting)), level_(std::move(level)) {}

    std::string Name() const override { return level_->Name(); }
    std::string Caption() const override { return level_->Caption(); }

    std::int32_t MemberCount() const override {
        const std::int32_t count = Await(waiting_, [this] { return level_->MemberCount(); });
        isRead_ = true;
        return count;
    }

    std::unique_ptr<Member> MemberAt(std::int32_t index) const override {
        if (!isRead_) {
            static_cast<void>(WaitingLevel::MemberCount());
        }
        return std::make_unique<WaitingMember>(waiting_, level_->MemberAt(index), parents_);
    }

    std::vector<std::unique_ptr<Member>> MembersNamed(const std::string& name) const override {
        auto members = Await(waiting_, [&] { return level_->MembersNamed(name); });
        for (auto& member : members) {
            member = std::make_unique<WaitingMember>(waiting_, std::move(member), parents_);
        }
        return members;
    }

private:
    WaitingPointer waiting_;
    std::unique_ptr<Level> level_;
    std::shared_ptr<Parents> parents_ = std::make_shared<Parents>();
    mutable bool isRead_ = false; ///< its members need no request any more
};

class WaitingHierarchy : public Hierarchy {
public:
    WaitingHierarchy(WaitingPointer waiting, std::unique_ptr<Hierarchy> hierarchy)
        : waiting_(std::move(waiting)), hierarchy_(std::move(hierarchy)) {}

    std::string Name() const override { return hierarchy_->Name(); }
    std::string Caption() const override { return hierarchy_->Caption(); }
    std::string UniqueName() const override { return hierarchy_->UniqueName(); }
    std::int32_t LevelCount() const override { return hierarchy_->LevelCount(); }
    std::unique_ptr<Level> LevelAt(std::int32_t index) const override {
        return std::make_unique<WaitingLevel>(waiting_, hierarchy_->LevelAt(index));
    }
    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        return std::make_unique<WaitingLevel>(waiting_, hierarchy_->LevelNamed(name));
    }

private:
    WaitingPointer waiting_;
    std::unique_ptr<Hierarchy> hierarchy_;
};

class WaitingDimension : public Dimension {
public:
    WaitingDimension(WaitingPointer waiting, std::unique_ptr<Dimension> dimension)
        : waiting_(std::move(waiting)), dimension_(std::move(dimension)) {}

    std::string Name() const override { return dimension_->Name(); }
    std::string Caption() const override { return dimension_->Caption(); }
    std::int32_t HierarchyCount() const override { return dimension_->HierarchyCount(); }
    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        return std::make_unique<WaitingHierarchy>(waiting_, dimension_->HierarchyAt(index));
    }

private:
    WaitingPointer waiting_;
    std::unique_ptr<Dimension> dimension_;
};

class WaitingCube : public CubeDef {
public:
    WaitingCube(WaitingPointer waiting, std::unique_ptr<CubeDef> cube)
        : waiting_(std::move(waiting)), cube_(std::move(cube)) {}

    std::string Name() const override { return cube_->Name(); }
    std::int32_t DimensionCount() const override { return cube_->DimensionCount(); }
    std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const override {
        return std::make_unique<WaitingDimension>(waiting_, cube_->DimensionAt(index));
    }
    std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const override {
        return std::make_unique<WaitingDimension>(waiting_, cube_->DimensionNamed(name));
    }

private:
    WaitingPointer waiting_;
    std::unique_ptr<CubeDef> cube_;
};

class WaitingConnection : public Connection {
public:
    WaitingConnection(WaitingPointer waiting, std::shared_ptr<Connection> connection)
        : waiting_(std::move(waiting)), connection_(std::move(connection)) {}

    void Open(const std::string& connectionString, const std::string& user, const std::string& password,
              int options) override {
        waiting_->opening(connectionString);
        waiting_->run([&] { connection_->Open(connectionString, user, password, options); });
    }
    void Close() override { connection_->Close(); }
    int State() const override { return connection_->State(); }
    std::string ConnectionString() const override { return connection_->ConnectionString(); }
    std::string Provider() const override { return connection_->Provider(); }
    std::string DefaultDatabase() const override { return connection_->DefaultDatabase(); }
    bool Refresh() override {
        return Await(waiting_, [this] { return connection_->Refresh(); });
    }
    std::unique_ptr<Recordset> OpenSchema(int schema) override {
        return Await(waiting_, [&] { return connection_->OpenSchema(schema); });
    }

    /// What the other provider takes: its own connection.
    static std::shared_ptr<Connection> Within(const std::shared_ptr<Connection>& connection) {
        const auto* own = dynamic_cast<const WaitingConnection*>(connection.get());
        return own != nullptr ? own->connection_ : connection;
    }

private:
    WaitingPointer waiting_;
    std::shared_ptr<Connection> connection_;
};

class WaitingCatalog : public Catalog {
public:
    WaitingCatalog(WaitingPointer waiting, std::unique_ptr<Catalog> catalog)
        : waiting_(std::move(waiting)), catalog_(std::move(catalog)) {}

    void SetActiveConnection(const std::string& connectionString) override {
        waiting_->opening(connectionString);
        waiting_->run([&] { catalog_->SetActiveConnection(connectionString); });
    }
    void SetActiveConnection(const std::shared_ptr<Connection>& connection) override {
        catalog_->SetActiveConnection(WaitingConnection::Within(connection));
    }
    std::int32_t CubeCount() const override { return catalog_->CubeCount(); }
    std::unique_ptr<CubeDef> CubeAt(std::int32_t index) const override {
        return std::make_unique<WaitingCube>(waiting_,
                                             Await(waiting_, [&] { return catalog_->CubeAt(index); }));
    }

private:
    WaitingPointer waiting_;
    std::unique_ptr<Catalog> catalog_;
};

class WaitingCellset : public Cellset {
public:
    WaitingCellset(WaitingPointer waiting, std::unique_ptr<Cellset> cellset)
        : waiting_(std::move(waiting)), cellset_(std::move(cellset)) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
        waiting_->run([&] { cellset_->Open(source, WaitingConnection::Within(connection)); });
    }
    void Close() override { cellset_->Close(); }
    std::int32_t AxisCount() const override { return cellset_->AxisCount(); }
    std::int32_t PositionCount(std::int32_t axis) const override { return cellset_->PositionCount(axis); }
    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override {
        return cellset_->MemberCount(axis, position);
    }
    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
        return cellset_->MemberAt(axis, position, index);
    }
    Variant Value(const std::vector<std::int32_t>& positions) const override {
        return cellset_->Value(positions);
    }
    std::optional<std::string> ExactText(const std::vector<std::int32_t>& positions) const override {
        return cellset_->ExactText(positions);
    }

private:
    WaitingPointer waiting_;
    std::unique_ptr<Cellset> cellset_;
};

class WaitingRecordset : public Recordset {
public:
    WaitingRecordset(WaitingPointer waiting, std::unique_ptr<Recordset> rows)
        : waiting_(std::move(waiting)), rows_(std::move(rows)) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
              int lockType, int options) override {
        waiting_->run([&] {
            rows_->Open(source, WaitingConnection::Within(connection), cursorType, lockType, options);
        });
    }
    void Close() override { rows_->Close(); }
    std::int32_t FieldCount() const override { return rows_->FieldCount(); }
    std::string FieldName(std::int32_t index) const override { return rows_->FieldName(index); }
    Variant FieldValue(std::int32_t index) const override { return rows_->FieldValue(index); }
    bool AtEnd() const override { return rows_->AtEnd(); }
    void MoveFirst() override { rows_->MoveFirst(); }
    void MoveNext() override { rows_->MoveNext(); }
    std::optional<std::uint64_t> TotalRows() const override { return rows_->TotalRows(); }

private:
    WaitingPointer waiting_;
    std::unique_ptr<Recordset> rows_;
};

} // namespace

std::shared_ptr<Connection> WaitingDataAccess::CreateConnection() {
    return std::make_shared<WaitingConnection>(waiting_, provider_().CreateConnection());
}

std::unique_ptr<Catalog> WaitingDataAccess::CreateCatalog() {
    return std::make_unique<WaitingCatalog>(waiting_, provider_().CreateCatalog());
}

std::unique_ptr<Cellset> WaitingDataAccess::CreateCellset() {
    return std::make_unique<WaitingCellset>(waiting_, provider_().CreateCellset());
}

std::unique_ptr<Recordset> WaitingDataAccess::CreateRecordset() {
    return std::make_unique<WaitingRecordset>(waiting_, provider_().CreateRecordset());
}

} // namespace qel
