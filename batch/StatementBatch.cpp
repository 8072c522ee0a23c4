#include "batch/StatementBatch.h"

#include "batch/BatchedConnection.h"
#include "batch/GridPlan.h"
#include "batch/GridRunner.h"
#include "batch/ValueStatementParts.h"

namespace qel::batch {

/// Answers a value statement's one cell from the batch. For anything else it opens the provider's cellset.
class BatchedCellset : public Cellset {
public:
    explicit BatchedCellset(StatementBatch& batch) : batch_(batch) {}

    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
        source_ = source;
        connection_ = connection;
        if (batch_.isCollecting_) {
            batch_.Collect(source, connection->ConnectionString());
            throw AutomationError(ErrorNumber::InvalidProcedureCall, "The statement is collected, not run.");
        }
        outcome_ = batch_.Find(source, connection->ConnectionString());
        if (!outcome_) {
            Real();
        } else if (const auto* error = std::get_if<AutomationError>(outcome_)) {
            throw AutomationError(*error);
        }
    }

    void Close() override {
        if (real_) {
            real_->Close();
        }
        real_.reset();
        outcome_ = nullptr;
    }

    std::int32_t AxisCount() const override { return Real().AxisCount(); }
    std::int32_t PositionCount(std::int32_t axis) const override { return Real().PositionCount(axis); }
    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override {
        return Real().MemberCount(axis, position);
    }
    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
        return Real().MemberAt(axis, position, index);
    }
    Variant Value(const std::vector<std::int32_t>& positions) const override {
        static const std::vector<std::int32_t> onlyCell = {0, 0};
        return outcome_ && positions == onlyCell ? std::get<Variant>(*outcome_) : Real().Value(positions);
    }

private:
    Cellset& Real() const {
        if (!real_) {
            real_ = batch_.provider_.CreateCellset();
            real_->Open(source_, RealConnection(connection_));
        }
        return *real_;
    }

    StatementBatch& batch_;
    std::string source_;
    std::shared_ptr<Connection> connection_;
    const Outcome* outcome_ = nullptr;
    mutable std::unique_ptr<Cellset> real_;
};

std::shared_ptr<Connection> StatementBatch::CreateConnection() {
    return std::make_shared<BatchedConnection>(provider_.CreateConnection(),
                                               [this](const std::string& text) { return HasAnswers(text); });
}

std::unique_ptr<Catalog> StatementBatch::CreateCatalog() {
    return OverBatchedConnections(provider_.CreateCatalog());
}

std::unique_ptr<Cellset> StatementBatch::CreateCellset() { return std::make_unique<BatchedCellset>(*this); }

std::unique_ptr<Recordset> StatementBatch::CreateRecordset() {
    return OverBatchedConnections(provider_.CreateRecordset());
}

bool StatementBatch::HasAnswers(const std::string& connectionText) const {
    const auto answers = byConnection_.find(connectionText);
    return !isCollecting_ && answers != byConnection_.end() && !answers->second.outcomes.empty();
}

void StatementBatch::Collect(const std::string& statement, const std::string& connectionText) {
    auto& answers = byConnection_[connectionText];
    if (ReadValueStatement(statement) && answers.collected.insert(statement).second) {
        answers.statements.push_back(statement);
    }
}

const Outcome* StatementBatch::Find(const std::string& statement, const std::string& connectionText) const {
    const auto answers = byConnection_.find(connectionText);
    if (answers == byConnection_.end()) {
        return nullptr;
    }
    const auto found = answers->second.outcomes.find(statement);
    return found == answers->second.outcomes.end() ? nullptr : &found->second;
}

BatchTotals StatementBatch::Run() {
    isCollecting_ = false;
    BatchTotals totals;
    for (auto& [connectionText, answers] : byConnection_) {
        const BatchTotals sent = Run(connectionText, answers);
        totals.cells += sent.cells;
        totals.grids += sent.grids;
        totals.alone += sent.alone;
    }
    return totals;
}

BatchTotals StatementBatch::Run(const std::string& connectionText, Answers& answers) {
    if (answers.statements.empty()) {
        return {};
    }
    GridPlan plan = PlanGrids(answers.statements);
    const BatchTotals totals{answers.statements.size(), plan.grids.size(), plan.alone.size()};
    try {
        if (!answers.connection || answers.connection->State() != stateOpen) {
            answers.connection = provider_.CreateConnection();
            answers.connection->Open(connectionText, "", "", optionsUnspecified);
        }
        answers.outcomes = GridRunner(provider_, answers.connection, answers.statements).Run(std::move(plan));
    } catch (const AutomationError&) {
        answers.connection
            .reset(); // each formula then finds the failure itself, and tells it as it would alone
    }
    return totals;
}

void StatementBatch::Forget() {
    for (auto& entry : byConnection_) {
        entry.second.statements.clear();
        entry.second.collected.clear();
        entry.second.outcomes.clear();
    }
}

} // namespace qel::batch
