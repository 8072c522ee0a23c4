#include "lang/ModLangFrm.h"
#include "text/Text.h"

#include <charconv>

namespace qel::ModLangFrm {

namespace {

constexpr std::int32_t aligmentRightToLeft = 0;
constexpr std::int32_t aligmentLeftToRight = 1;

/// The number at the beginning of a text, or 0.
std::int32_t NumberOf(std::string_view text) {
    text = Trimmed(text);
    std::int32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// Translates one dialog.
class Translator {
public:
    Translator(const LanguageState& state, TranslatableForm& form) : state_(state), form_(form) {}

    void Run() {
        const auto caption = NumberOf(form_.Tag());
        if (caption > 0) {
            form_.SetCaption(ResourceString(caption, state_.iLang));
        }
        const DialogFont font = FontOf(state_.iLang);
        form_.SetFont(font);
        for (FormControl* control : form_.Controls()) {
            control->SetFont(font);
            Translate(*control);
        }
    }

private:
    static DialogFont FontOf(std::int16_t language) {
        const auto size = NumberOf(ResourceString(fontSizeString, language));
        return {ResourceString(fontNameString, language), static_cast<double>(size)};
    }

    void Translate(FormControl& control) {
        const std::string kind = control.TypeName();
        if (kind == "Label") {
            Replace(control, TextProperty::Tag, TextProperty::Caption);
            control.SetAligment(form_.IsRightToLeft() ? aligmentRightToLeft : aligmentLeftToRight);
        } else if (kind == "Menu") {
            Replace(control, TextProperty::Caption, TextProperty::Caption);
        } else if (kind == "TabStrip") {
            for (FormItem* tab : control.Items()) {
                Replace(*tab, TextProperty::Tag, TextProperty::Caption);
                Replace(*tab, TextProperty::ToolTipText, TextProperty::ToolTipText);
            }
        } else if (kind == "Toolbar") {
            for (FormItem* button : control.Items()) {
                Replace(*button, TextProperty::ToolTipText, TextProperty::ToolTipText);
            }
        } else if (kind == "ListView") {
            for (FormItem* header : control.Items()) {
                Replace(*header, TextProperty::Tag, TextProperty::Text);
            }
        } else {
            Replace(control, TextProperty::Tag, TextProperty::Caption);
            Replace(control, TextProperty::ToolTipText, TextProperty::ToolTipText);
        }
    }

    /// Sets `to` to the text whose number is in `from`. Without a number, `to` keeps its designed text.
    void Replace(FormItem& item, TextProperty from, TextProperty to) const {
        const auto number = NumberOf(item.GetText(from));
        if (number > 0) {
            item.SetText(to, GetLangString(state_, number));
        }
    }

    const LanguageState& state_;
    TranslatableForm& form_;
};

} // namespace

void TranslateForm(const LanguageState& state, TranslatableForm& form) { Translator(state, form).Run(); }

} // namespace qel::ModLangFrm
