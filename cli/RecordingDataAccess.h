#pragma once

#include "platform/data/DataAccess.h"
#include "platform/value/AutomationError.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// What went through the data-access objects, in order.
struct Recording {
    std::vector<std::string> connectionTexts; ///< of every opening, failed ones included
    std::vector<std::string> statements;      ///< exactly as they were sent
    std::optional<AutomationError> lastError; ///< the last failure, whoever trapped it afterwards
    std::chrono::nanoseconds openTime{};      ///< spent opening connections
};

/// Passes everything on to another provider and writes down the texts, the times and the failures.
class RecordingDataAccess : public DataAccess {
public:
    /// Both outlive every object that is made here.
    RecordingDataAccess(DataAccess& provider, Recording& recording)
        : provider_(provider), recording_(recording) {}

    std::shared_ptr<Connection> CreateConnection() override;
    std::unique_ptr<Catalog> CreateCatalog() override;
    std::unique_ptr<Cellset> CreateCellset() override;
    std::unique_ptr<Recordset> CreateRecordset() override;

private:
    DataAccess& provider_;
    Recording& recording_;
};

} // namespace qel
