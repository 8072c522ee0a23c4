#pragma once

#include "cli/DraftRoles.h"

namespace qel {

/// A file of a draft.
struct DraftTable {
    std::string name; ///< in the definition
    engine::SourceProfile profile;
    FoundRoles roles;
};

/// A column of a table, and the one with its names; empty when there is none.
struct CodesAndNames {
    std::string codes, names;
};

/// What a dimension of a draft stands on.
struct DraftAttribute {
    std::vector<std::string> columns;  ///< of the ledger, several for OBS; none when it has no such column
    std::vector<std::string> tables;   ///< with the members; none when the column's values are the members
    CodesAndNames key;                 ///< of the tables, or of the ledger
    std::vector<CodesAndNames> groups; ///< of the keys, from the coarsest, each key in one of them
    std::vector<CodesAndNames> others; ///< the table's further columns with one value per key
    bool lacksValues = false;          ///< the table has not every value of the ledger
    bool hasManyNames = false;         ///< a key has several names
};

/// The files of a draft: one ledger, in one file or more, and tables that belong to it.
class DraftSources {
public:
    /// Raises std::runtime_error when no file has dates and amounts.
    explicit DraftSources(std::vector<DraftTable> tables);

    const std::vector<DraftTable>& Tables() const { return tables_; }
    bool IsLedger(const DraftTable& table) const;
    /// The numbers of the ledger's files in Tables().
    const std::vector<std::size_t>& Ledgers() const { return ledgers_; }
    const DraftTable& FirstLedger() const { return tables_[ledgers_.front()]; }
    std::vector<std::string> LedgerNames() const;
    /// How the definition calls a column of the ledger: as the file does, or by its role when files differ.
    std::string ColumnName(ColumnRole role, std::size_t column) const;
    /// The names for the columns of a ledger's file that are called otherwise there.
    std::vector<std::pair<std::string, std::string>> Renamed(const DraftTable& ledger) const;
    bool HasRole(ColumnRole role) const;

    DraftAttribute AttributeOf(ColumnRole role) const;
    /// The columns of the ledger that say to which part of the organisation a line belongs; without any, its
    /// cost centres, if they have groups.
    DraftAttribute ObsAttribute() const;
    /// The first ledger's further columns with amounts.
    std::vector<std::size_t> FurtherAmounts() const;
    /// The first ledger's columns that the draft does not use.
    std::vector<std::string> Unused() const;

private:
    struct Joined {
        std::size_t table, key;
    };

    std::optional<Joined> FindTable(std::size_t column) const;
    std::vector<CodesAndNames> GroupsOf(const DraftTable& table, std::size_t key) const;
    DraftAttribute InTable(const std::string& column, std::size_t ledgerColumn, const Joined& joined) const;
    bool NamesAreInAll(ColumnRole role) const;

    std::vector<DraftTable> tables_;
    std::vector<std::size_t> ledgers_;
};

} // namespace qel
