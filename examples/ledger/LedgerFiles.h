#pragma once

#include "examples/ledger/LedgerLine.h"

#include <filesystem>
#include <fstream>

namespace qel::ledger {

/// Writes ledger.csv line by line. UTF-8, commas, decimal points, ISO dates.
class LedgerCsv {
public:
    /// Raises std::runtime_error when the file cannot be created.
    explicit LedgerCsv(const std::filesystem::path& file);

    void Write(const LedgerLine& line);
    /// Raises std::runtime_error when not everything could be written.
    void Close();

private:
    std::filesystem::path path_;
    std::ofstream file_;
};

/// Writes a dimension table into the folder. Raises std::runtime_error when it cannot be written.
void WriteTable(const std::filesystem::path& folder, const DimensionTable& table);

/// Writes ledger.json, the cube definition: LedgerFNC by months with English names and LedgerHebrewFNC by
/// days with Hebrew names. `obsLevels` is the depth of the tree in obs.csv. Raises std::runtime_error when it
/// cannot be written.
void WriteDefinition(const std::filesystem::path& folder, std::size_t obsLevels);

} // namespace qel::ledger
