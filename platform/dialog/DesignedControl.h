#pragma once

#include "platform/dialog/DialogToolkit.h"

namespace qel {

/// What a control of every toolkit does alike: its design and its caption.
class DesignedControl : public FormControl {
public:
    DesignedControl(const ControlDesign& design, bool isRightToLeft)
        : design_(design), isRightToLeft_(isRightToLeft), caption_(design.caption) {}

    const ControlDesign& Design() const { return design_; }

    std::string GetText(TextProperty property) const override;
    void SetText(TextProperty property, const std::string& text) override;
    std::string TypeName() const override { return TypeNameOf(design_.kind); }
    /// All controls have the dialog's font.
    void SetFont(const DialogFont& /*font*/) override {}
    void SetAligment(std::int32_t aligment) override;
    std::vector<FormItem*> Items() const override { return {}; }

protected:
    bool HasCaption() const;
    const std::string& Caption() const { return caption_; }
    /// The caption with `mark` before its access key, or before the spare one that it ends in.
    std::string MarkedCaption(std::string_view mark) const;
    bool IsRightToLeft() const { return isRightToLeft_; }
    /// Called only for a control that has a caption.
    virtual void ShowCaption() = 0;
    /// Called only for a label. In a mirrored dialog the far side is what people see on the left.
    virtual void AlignToFarSide(bool isFar) = 0;

private:
    const ControlDesign& design_;
    bool isRightToLeft_;
    std::string caption_;
};

/// A row of a bound list as one text: its columns, joined by " - ".
[[nodiscard]] std::string RowText(const ListSource& rows, std::size_t row);

} // namespace qel
