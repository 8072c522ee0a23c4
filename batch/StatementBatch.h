#pragma once

#include "platform/data/DataAccess.h"
#include "platform/value/AutomationError.h"

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

namespace qel::batch {

/// What a value statement gives: its cell, or why there is none.
using Outcome = std::variant<Variant, AutomationError>;

/// How many statements were sent for how many cells.
struct BatchTotals {
    std::size_t cells = 0, grids = 0, alone = 0;
};

/// Data-access objects through which formulas are evaluated twice: while collecting, every value statement is
/// noted and fails; then Run asks for all of their cells in few statements; and afterwards the same
/// statements are answered from what it got. A statement that it got no answer for is sent by itself, as any
/// other. The formulas are evaluated by one thread.
class StatementBatch : public DataAccess {
public:
    /// The provider outlives the batch, and its cellsets may be opened by several threads on one connection.
    explicit StatementBatch(DataAccess& provider) : provider_(provider) {}

    void StartCollecting() { isCollecting_ = true; }
    /// Ends the collecting. Returns what was sent.
    BatchTotals Run();
    /// Forgets the answers, so that the next evaluation asks anew.
    void Forget();

    /// The connections are used no longer than the batch. With answers over one it stays open, even when
    /// its server is lost.
    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

private:
    friend class BatchedCellset;
    /// Of one connection text.
    struct Answers {
        std::shared_ptr<Connection> connection; ///< keeps what is known of the cube
        std::vector<std::string> statements;    ///< collected, each once
        std::set<std::string> collected;
        std::unordered_map<std::string, Outcome> outcomes;
    };

    bool HasAnswers(const std::string& connectionText) const;
    void Collect(const std::string& statement, const std::string& connectionText);
    const Outcome* Find(const std::string& statement, const std::string& connectionText) const;
    BatchTotals Run(const std::string& connectionText, Answers& answers);

    DataAccess& provider_;
    bool isCollecting_ = false;
    std::map<std::string, Answers> byConnection_;
};

} // namespace qel::batch
