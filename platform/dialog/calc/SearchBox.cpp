#include "platform/dialog/calc/SearchBox.h"

#include "platform/dialog/DesignedControl.h"
#include "platform/dialog/ReadingOrder.h"
#include "platform/office/OfficeText.h"
#include "platform/value/AutomationError.h"

#include <algorithm>
#include <com/sun/star/uno/Sequence.hxx>

namespace qel::office {

namespace uno = com::sun::star::uno;

void SearchBox::Bind(std::shared_ptr<const ListSource> rows) {
    rows_ = std::move(rows);
    isFilled_ = false;
    matches_.clear();
    shown_.clear();
    model_->setPropertyValue("StringItemList", uno::Any(uno::Sequence<rtl::OUString>()));
    Choose(std::nullopt);
}

void SearchBox::Select(std::optional<std::size_t> row) {
    if (row && (!rows_ || *row >= rows_->RowCount())) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    Choose(row);
}

void SearchBox::Prepare() {
    if (isFilled_ || !rows_) {
        return;
    }
    isFilled_ = true;
    Show(rows_->Matching(""));
}

bool SearchBox::OnText() {
    if (!rows_) {
        return false;
    }
    if (!isTyped_) {
        before_ = chosen_;
    }
    const std::string typed = TypedText();
    // A text equal to a listed one was picked with the mouse or the arrow keys, or typed completely.
    if (const auto found = std::find(shown_.begin(), shown_.end(), typed); found != shown_.end()) {
        const auto row = matches_[static_cast<std::size_t>(found - shown_.begin())];
        const bool isOther = chosen_ != row;
        chosen_ = row;
        isTyped_ = false;
        return isOther;
    }
    isTyped_ = true;
    Show(rows_->Matching(typed));
    return false;
}

bool SearchBox::Commit() {
    if (!isTyped_) {
        return false;
    }
    const auto before = before_;
    std::optional<std::size_t> row;
    if (!TypedText().empty() && !matches_.empty()) {
        row = matches_.front();
    }
    Choose(row);
    return row != before;
}

void SearchBox::TakeBack() {
    if (isTyped_) {
        Choose(before_);
    }
}

void SearchBox::ShowAll() {
    if (rows_ && isFilled_ && !isTyped_ && matches_.size() != rows_->RowCount()) {
        Show(rows_->Matching(""));
    }
}

std::string SearchBox::TypedText() const {
    rtl::OUString text;
    model_->getPropertyValue("Text") >>= text;
    return WithoutDirection(FromOffice(text));
}

rtl::OUString SearchBox::Shown(const std::string& text) const {
    return ToOffice(isRightToLeft_ ? InOwnDirection(text) : text);
}

void SearchBox::Show(const std::vector<std::uint32_t>& matches) {
    matches_ = matches;
    shown_.clear();
    uno::Sequence<rtl::OUString> items(static_cast<sal_Int32>(matches.size()));
    for (std::size_t i = 0; i < matches.size(); ++i) {
        shown_.push_back(RowText(*rows_, matches[i]));
        items.getArray()[i] = Shown(shown_.back());
    }
    model_->setPropertyValue("StringItemList", uno::Any(items));
}

void SearchBox::Choose(std::optional<std::size_t> row) {
    chosen_ = row;
    isTyped_ = false;
    const std::string text = row ? RowText(*rows_, *row) : std::string();
    model_->setPropertyValue("Text", uno::Any(Shown(text)));
}

} // namespace qel::office
