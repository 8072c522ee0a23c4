#include "platform/dialog/DesignedControl.h"

#include "platform/dialog/AccessKey.h"

namespace qel {

std::string DesignedControl::GetText(TextProperty property) const {
    switch (property) {
    case TextProperty::Tag:
        return design_.tag != 0 ? std::to_string(design_.tag) : std::string();
    case TextProperty::Caption:
        return caption_;
    default:
        return {};
    }
}

void DesignedControl::SetText(TextProperty property, const std::string& text) {
    if (property == TextProperty::Caption && HasCaption()) {
        caption_ = text;
        ShowCaption();
    }
}

void DesignedControl::SetAligment(std::int32_t aligment) {
    if (design_.kind == ControlKind::Label) {
        const bool isRight = aligment == 0;
        AlignToFarSide(isRight != isRightToLeft_);
    }
}

bool DesignedControl::HasCaption() const {
    return design_.kind == ControlKind::Label || design_.kind == ControlKind::Button ||
           design_.kind == ControlKind::CheckBox;
}

std::string DesignedControl::MarkedCaption(std::string_view mark) const {
    std::string marked = WithAccessKey(caption_, design_.mnemonic, mark);
    const bool hasKey = marked != WithAccessKey(caption_, "", mark);
    const std::string spare = design_.spareKey;
    return hasKey || spare.empty() ? marked : marked + " (" + std::string(mark) + spare + ")";
}

std::string RowText(const ListSource& rows, std::size_t row) {
    std::string text;
    for (std::size_t column = 0; column < rows.ColumnCount(); ++column) {
        const std::string part = rows.Text(row, column);
        if (!part.empty() && part != text) {
            text += text.empty() ? part : " - " + part;
        }
    }
    return text;
}

} // namespace qel
