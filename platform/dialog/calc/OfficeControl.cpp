#include "platform/dialog/calc/OfficeControl.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/office/OfficeText.h"
#include "platform/value/AutomationError.h"

#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/text/WritingMode2.hpp>
#include <com/sun/star/uno/Sequence.hxx>

namespace qel::office {

namespace uno = com::sun::star::uno;

namespace {

constexpr sal_Int16 alignLeft = 0, alignRight = 2;
constexpr sal_Int16 visibleItems = SearchBox::visibleRows;

/// Null for a control that is not on the form.
const char* ModelOf(ControlKind kind) {
    switch (kind) {
    case ControlKind::Label:
        return "com.sun.star.awt.UnoControlFixedTextModel";
    case ControlKind::TextBox:
        return "com.sun.star.awt.UnoControlEditModel";
    case ControlKind::Button:
        return "com.sun.star.awt.UnoControlButtonModel";
    case ControlKind::CheckBox:
        return "com.sun.star.awt.UnoControlCheckBoxModel";
    case ControlKind::BoundList:
        return "com.sun.star.awt.UnoControlComboBoxModel";
    case ControlKind::ComboBox:
    case ControlKind::ListBox:
        return "com.sun.star.awt.UnoControlListBoxModel";
    case ControlKind::Line:
        return "com.sun.star.awt.UnoControlFixedLineModel";
    case ControlKind::FileDialog:
        break;
    }
    return nullptr;
}

} // namespace

OfficeControl::OfficeControl(const uno::Reference<com::sun::star::lang::XMultiServiceFactory>& dialog,
                             const FormDesign& form, std::size_t index, bool isRightToLeft)
    : DesignedControl(form.controls[index], isRightToLeft) {
    const char* const model = ModelOf(Design().kind);
    if (model == nullptr) {
        return;
    }
    model_.set(dialog->createInstance(rtl::OUString::createFromAscii(model)), uno::UNO_QUERY_THROW);
    PutInPlace(form, index);
    MakeAsDesigned(form);
    const uno::Reference<com::sun::star::container::XNameContainer> controls(dialog, uno::UNO_QUERY_THROW);
    controls->insertByName(rtl::OUString::createFromAscii(Design().name), uno::Any(model_));
    SetContent(Caption());
}

void OfficeControl::PutInPlace(const FormDesign& form, std::size_t index) {
    const Place& place = Design().place;
    const int left = IsRightToLeft() ? form.width - place.left - place.width : place.left;
    Set("PositionX", uno::Any(sal_Int32{left}));
    Set("PositionY", uno::Any(sal_Int32{place.top}));
    Set("Width", uno::Any(sal_Int32{place.width}));
    Set("Height", uno::Any(sal_Int32{place.height}));
    Set("Name", uno::Any(rtl::OUString::createFromAscii(Design().name)));
    Set("TabIndex", uno::Any(static_cast<sal_Int16>(index)));
    // Lines have no reading direction.
    if (IsRightToLeft() && model_->getPropertySetInfo()->hasPropertyByName("WritingMode")) {
        Set("WritingMode", uno::Any(com::sun::star::text::WritingMode2::RL_TB));
    }
}

void OfficeControl::MakeAsDesigned(const FormDesign& form) {
    switch (Design().kind) {
    case ControlKind::Label:
        Set("MultiLine", uno::Any(true));
        break;
    case ControlKind::TextBox:
        MakeTextBox();
        break;
    case ControlKind::Button:
        Set("DefaultButton", uno::Any(Design().name == std::string_view(form.defaultButton)));
        break;
    case ControlKind::ComboBox:
        Set("Dropdown", uno::Any(true));
        Set("LineCount", uno::Any(visibleItems));
        break;
    case ControlKind::BoundList:
        Set("Dropdown", uno::Any(true));
        Set("Autocomplete", uno::Any(false)); // it would complete the typed text with the first of all rows
        Set("LineCount", uno::Any(visibleItems));
        search_ = std::make_unique<SearchBox>(model_, IsRightToLeft());
        break;
    default:
        break;
    }
    AlignToReading();
}

void OfficeControl::MakeTextBox() {
    Set("ReadOnly", uno::Any(Design().isReadOnly));
    Set("MultiLine", uno::Any(Design().isMultiLine));
    Set("VScroll", uno::Any(Design().isMultiLine));
    // Paths, dates and numbers read from left to right in any language.
    Set("WritingMode", uno::Any(com::sun::star::text::WritingMode2::LR_TB));
    Set("Align", uno::Any(IsRightToLeft() && !Design().isMultiLine ? alignRight : alignLeft));
}

void OfficeControl::AlignToReading() {
    const bool isList = Design().kind == ControlKind::ComboBox || Design().kind == ControlKind::BoundList ||
                        Design().kind == ControlKind::ListBox;
    if (isList && IsRightToLeft() && model_->getPropertySetInfo()->hasPropertyByName("Align")) {
        Set("Align", uno::Any(alignRight));
    }
}

void OfficeControl::SetText(TextProperty property, const std::string& text) {
    if (property == TextProperty::ToolTipText && model_.is()) {
        Set("HelpText", uno::Any(ToOffice(text))); // its name, too, when no label stands before it
    } else {
        DesignedControl::SetText(property, text);
    }
}

void OfficeControl::Set(const char* property, const uno::Any& value) {
    model_->setPropertyValue(rtl::OUString::createFromAscii(property), value);
}

std::string OfficeControl::Content() const {
    if (HasCaption()) {
        return Caption();
    }
    if (Design().kind == ControlKind::ComboBox || Design().kind == ControlKind::ListBox) {
        const auto selected = Selected();
        return selected ? items_.at(*selected) : std::string();
    }
    rtl::OUString text;
    model_->getPropertyValue("Text") >>= text;
    return WithoutDirection(FromOffice(text));
}

void OfficeControl::SetContent(const std::string& text) {
    if (HasCaption()) {
        DesignedControl::SetText(TextProperty::Caption, text);
    } else if (Design().kind == ControlKind::TextBox) {
        Set("Text", uno::Any(ToOffice(text)));
    }
}

bool OfficeControl::IsChecked() const {
    sal_Int16 state = 0;
    model_->getPropertyValue("State") >>= state;
    return state == 1;
}

void OfficeControl::SetChecked(bool isChecked) { Set("State", uno::Any(sal_Int16{isChecked})); }

bool OfficeControl::IsEnabled() const {
    bool isEnabled = false;
    model_->getPropertyValue("Enabled") >>= isEnabled;
    return isEnabled;
}

void OfficeControl::SetEnabled(bool isEnabled) { Set("Enabled", uno::Any(isEnabled)); }

void OfficeControl::SetItems(const std::vector<std::string>& items) {
    items_ = items;
    uno::Sequence<rtl::OUString> texts(static_cast<sal_Int32>(items.size()));
    for (std::size_t i = 0; i < items.size(); ++i) {
        texts.getArray()[i] = ToOffice(IsRightToLeft() ? InOwnDirection(items[i]) : items[i]);
    }
    Set("StringItemList", uno::Any(texts));
    Set("SelectedItems", uno::Any(uno::Sequence<sal_Int16>()));
}

std::optional<std::size_t> OfficeControl::Selected() const {
    if (search_) {
        return search_->Selected();
    }
    uno::Sequence<sal_Int16> selected;
    model_->getPropertyValue("SelectedItems") >>= selected;
    if (!selected.hasElements()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(selected[0]);
}

void OfficeControl::Select(std::optional<std::size_t> index) {
    if (search_) {
        search_->Select(index);
        return;
    }
    if (index && *index >= items_.size()) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    uno::Sequence<sal_Int16> selected(index ? 1 : 0);
    if (index) {
        selected.getArray()[0] = static_cast<sal_Int16>(*index);
    }
    Set("SelectedItems", uno::Any(selected));
}

void OfficeControl::ShowCaption() { Set("Label", uno::Any(ToOffice(MarkedCaption("~")))); }

void OfficeControl::AlignToFarSide(bool isFar) { Set("Align", uno::Any(isFar ? alignRight : alignLeft)); }

} // namespace qel::office
