#pragma once

#include "qel/engine/SourceProfile.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// What a column of a ledger is for. Those from Account to MoneySet stand on codes.
enum class ColumnRole : std::uint8_t {
    Date,
    Amount,
    Account,
    CostCentre,
    Activity,
    Firm,
    Obs,
    ObsNumber,
    Plbs,
    Rh,
    OpeningBalance,
    MoneySet,
    Credit ///< to be subtracted from the amount, which is the debit
};

/// The columns of one file by their role, as numbers of columns.
struct FoundRoles {
    struct Found {
        ColumnRole role;
        std::size_t column;
    };
    std::vector<Found> columns; ///< at most one per role but of Obs, in the file's order
    bool accountIsGuess = false;

    std::optional<std::size_t> Of(ColumnRole role) const;
    std::vector<std::size_t> AllOf(ColumnRole role) const;
};

/// Finds them by the words of the headers, English and Hebrew, and by what the values are.
FoundRoles FindRoles(const engine::SourceProfile& file);

/// True when the header says that the column holds names: "account_name", "Org Code Description", "שם חשבון".
bool IsNameHeader(std::string_view header);

/// The column with the names of a column of codes: of the same subject by its header, or next to it.
std::optional<std::size_t> FindNames(const engine::SourceProfile& file, std::size_t codes);

/// The words of a header that tell its subject, without "code", "name" and the like, plurals as singulars.
std::vector<std::string> SubjectOf(std::string_view header);

} // namespace qel
