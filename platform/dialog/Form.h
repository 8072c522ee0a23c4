#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A dialog as the language layer sees it: texts to replace.

namespace qel {

struct DialogFont {
    std::string name;
    double size = 0; ///< in points

    bool operator==(const DialogFont&) const = default;
};

/// The texts of a control or of one of its items. A text that it does not have is empty.
enum class TextProperty : std::uint8_t { Tag, Caption, ToolTipText, Text };

/// A tab, a toolbar's button, a list's column header.
class FormItem {
public:
    virtual ~FormItem() = default;
    virtual std::string GetText(TextProperty property) const = 0;
    virtual void SetText(TextProperty property, const std::string& text) = 0;
};

class FormControl : public FormItem {
public:
    /// "Label", "CommandButton", "TabStrip", ...
    virtual std::string TypeName() const = 0;
    virtual void SetFont(const DialogFont& font) = 0;
    /// Sets the property "aligment", which standard labels do not have. Here 0 is right-aligned, as Hebrew
    /// needs, and 1 left-aligned.
    virtual void SetAligment(std::int32_t aligment) = 0;
    /// A TabStrip's Tabs, a Toolbar's Buttons, a ListView's ColumnHeaders; the form owns them.
    virtual std::vector<FormItem*> Items() const = 0;
};

class TranslatableForm {
public:
    virtual ~TranslatableForm() = default;
    virtual std::string Tag() const = 0;
    virtual void SetCaption(const std::string& caption) = 0;
    virtual void SetFont(const DialogFont& font) = 0;
    virtual bool IsRightToLeft() const = 0;
    /// The form owns them.
    virtual std::vector<FormControl*> Controls() const = 0;
};

} // namespace qel
