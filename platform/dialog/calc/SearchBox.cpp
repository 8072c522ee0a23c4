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

void SearchBox::ReadRows() const {
    if (const auto rows = rows_) {
        static_cast<void>(rows->RowCount());
    }
}

void SearchBox::Prepare() {
    if (AreRowsRead()) {
        return;
    }
    isFilled_ = true;
    Show(rows_->Matching(""));
}

bool SearchBox::OnText() {
    if (!rows_) {
        return false;
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
    opens_ = opens_ || !isTyped_ || typed != typed_; // a list that the user closed stays closed
    isTyped_ = true;
    typed_ = typed;
    Show(rows_->Matching(typed));
    return false;
}

bool SearchBox::Commit() {
    Close();
    if (!isTyped_) {
        return false;
    }
    std::optional<std::size_t> row;
    if (!TypedText().empty() && !matches_.empty()) {
        row = matches_.front();
    }
    const bool isOther = row != chosen_;
    Choose(row);
    return isOther;
}

bool SearchBox::TakeBack() {
    Close();
    const bool isOther = settled_ != chosen_;
    Choose(settled_);
    return isOther;
}

void SearchBox::Close() {
    if (list_) {
        list_->Close();
    }
}

void SearchBox::Settle(bool hasFocus) {
    if (!rows_ || !isFilled_) {
        return;
    }
    if (isTyped_) {
        if (!hasFocus || matches_.empty()) {
            Close();
        } else if (opens_ && list_) {
            list_->Open(std::min(matches_.size(), visibleRows));
        }
        opens_ = false;
    } else if (!IsOpen()) {
        settled_ = chosen_;
        if (matches_.size() != rows_->RowCount()) {
            Show(rows_->Matching(""));
        }
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
    chosen_ = settled_ = row;
    isTyped_ = false;
    const std::string text = row ? RowText(*rows_, *row) : std::string();
    model_->setPropertyValue("Text", uno::Any(Shown(text)));
}

} // namespace qel::office
