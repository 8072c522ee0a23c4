#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "wizard/MemberChoice.h"

#include <functional>

namespace qel {

struct MemberRow {
    std::string code, name;
};

/// The rows of a searchable list, codes and names, read on first use.
class MemberRows : public ListSource {
public:
    /// `load` must not raise: it reports a failure itself and returns no rows.
    using Loader = std::function<std::vector<MemberRow>()>;
    explicit MemberRows(Loader load) : load_(std::move(load)) {}

    std::size_t RowCount() const override { return Rows().size(); }
    std::size_t ColumnCount() const override { return 2; }
    std::string Text(std::size_t row, std::size_t column) const override;
    /// Rows whose code begins with the typed text come first.
    std::vector<std::uint32_t> Matching(std::string_view typed) const override;

    const MemberRow& At(std::size_t row) const { return Rows().at(row); }
    std::optional<std::size_t> Find(const std::string& code) const;

private:
    /// Folded for searching.
    struct FoldedRow {
        std::string code, name;
    };

    const std::vector<MemberRow>& Rows() const;

    Loader load_;
    mutable std::optional<std::vector<MemberRow>> rows_;
    mutable std::vector<FoldedRow> folded_;
};

/// A searchable list box over such rows.
class MemberList {
public:
    MemberList(Dialog& dialog, const char* control) : dialog_(dialog), control_(control) {}

    void Bind(MemberRows::Loader load);
    void Clear();
    std::optional<MemberRow> Chosen() const;
    /// Returns false and clears the choice when no row has that code.
    bool Choose(const std::string& code);
    void Enable(bool isEnabled) { dialog_.SetEnabled(control_, isEnabled); }

private:
    Dialog& dialog_;
    const char* control_;
    std::shared_ptr<const MemberRows> rows_;
};

} // namespace qel
