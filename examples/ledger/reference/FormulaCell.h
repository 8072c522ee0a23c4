#pragma once

#include "examples/ledger/Random.h"
#include "examples/ledger/reference/Selection.h"
#include "function/OrmQelFunction.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"

#include <memory>
#include <string>

namespace qel::ledger {

/// A worksheet cell over one cube file: takes arguments as a spreadsheet sends them and evaluates them
/// through the component over the embedded engine.
class FormulaCell {
public:
    /// `variety` selects one of the ways in which people write keys and "no restriction".
    FormulaCell(std::string cubeFile, std::uint64_t variety);
    /// The same over other providers.
    FormulaCell(std::string cubeFile, std::uint64_t variety, Providers providers);

    /// The value of QelF1. Raises std::runtime_error when it is not a number.
    double Value(const Selection& selection);

private:
    ValueCall CallOf(const Selection& selection);
    std::string Unrestricted();
    std::string Text(const std::string& member);
    Variant Key(const std::string& member);
    /// An empty number stands for all numbers of a name, as the wizard writes it.
    Variant NumberKey(const std::string& obsNumber);

    std::string cubeFile_;
    Random variety_;
    std::unique_ptr<EmbeddedDataAccess> embedded_; ///< none over other providers
    Locale locale_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction function_;
};

} // namespace qel::ledger
