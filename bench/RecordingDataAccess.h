#pragma once

#include "platform/data/DataAccess.h"

#include <memory>
#include <string>
#include <utility>

namespace qel::bench {

/// Hands everything on to another data access, which outlives it, and keeps the statement that a cellset was
/// opened on last.
class RecordingDataAccess : public DataAccess {
public:
    explicit RecordingDataAccess(DataAccess& inner) : inner_(inner) {}

    /// Empty when there was none since Forget.
    const std::string& LastStatement() const { return lastStatement_; }
    void Forget() { lastStatement_.clear(); }

    std::shared_ptr<Connection> CreateConnection() override { return inner_.CreateConnection(); }
    std::unique_ptr<Catalog> CreateCatalog() override { return inner_.CreateCatalog(); }
    std::unique_ptr<Recordset> CreateRecordset() override { return inner_.CreateRecordset(); }
    std::unique_ptr<Cellset> CreateCellset() override {
        return std::make_unique<RecordedCellset>(*this, inner_.CreateCellset());
    }

private:
    class RecordedCellset : public Cellset {
    public:
        RecordedCellset(RecordingDataAccess& owner, std::unique_ptr<Cellset> inner)
            : owner_(owner), inner_(std::move(inner)) {}

        void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
            owner_.lastStatement_ = source;
            inner_->Open(source, connection);
        }
        void Close() override { inner_->Close(); }
        std::int32_t AxisCount() const override { return inner_->AxisCount(); }
        std::int32_t PositionCount(std::int32_t axis) const override { return inner_->PositionCount(axis); }
        std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override {
            return inner_->MemberCount(axis, position);
        }
        CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
            return inner_->MemberAt(axis, position, index);
        }
        Variant Value(const std::vector<std::int32_t>& positions) const override {
            return inner_->Value(positions);
        }

    private:
        RecordingDataAccess& owner_;
        std::unique_ptr<Cellset> inner_;
    };

    DataAccess& inner_;
    std::string lastStatement_;
};

} // namespace qel::bench
