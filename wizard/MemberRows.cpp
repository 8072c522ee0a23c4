#include "wizard/MemberRows.h"

#include "text/CaseFold.h"
#include "text/Text.h"

#include <algorithm>
#include <numeric>

namespace qel {

const std::vector<MemberRow>& MemberRows::Rows() const {
    if (!rows_) {
        rows_ = load_();
    }
    return *rows_;
}

std::string MemberRows::Text(std::size_t row, std::size_t column) const {
    return column == 0 ? At(row).code : At(row).name;
}

std::vector<std::uint32_t> MemberRows::Matching(std::string_view typed) const {
    const auto& rows = Rows();
    const std::string wanted = FoldCase(Trimmed(typed));
    std::vector<std::uint32_t> matching;
    if (wanted.empty()) {
        matching.resize(rows.size());
        std::iota(matching.begin(), matching.end(), 0U);
        return matching;
    }
    if (folded_.size() != rows.size()) {
        for (const MemberRow& row : rows) {
            folded_.push_back({FoldCase(row.code), FoldCase(row.name)});
        }
    }
    std::vector<std::uint32_t> within;
    for (std::uint32_t i = 0; i < folded_.size(); ++i) {
        const auto place = folded_[i].code.find(wanted);
        if (place == 0) {
            matching.push_back(i);
        } else if (place != std::string::npos || folded_[i].name.find(wanted) != std::string::npos) {
            within.push_back(i);
        }
    }
    matching.insert(matching.end(), within.begin(), within.end());
    return matching;
}

std::optional<std::size_t> MemberRows::Find(const std::string& code) const {
    const auto& rows = Rows();
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const MemberRow& row) { return row.code == code; });
    return found == rows.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - rows.begin()));
}

void MemberList::Bind(MemberRows::Loader load) {
    rows_ = std::make_shared<const MemberRows>(std::move(load));
    dialog_.Bind(control_, rows_);
}

void MemberList::Clear() {
    rows_ = nullptr;
    dialog_.Bind(control_, nullptr);
}

std::optional<MemberRow> MemberList::Chosen() const {
    const auto row = dialog_.Selected(control_);
    return rows_ && row && *row < rows_->RowCount() ? std::optional(rows_->At(*row)) : std::nullopt;
}

bool MemberList::Choose(const std::string& code) {
    const auto row = rows_ ? rows_->Find(code) : std::nullopt;
    dialog_.Select(control_, row);
    return row.has_value();
}

} // namespace qel
