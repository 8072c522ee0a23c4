#include "tests/lang/LangBench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

namespace qel {
namespace {

using test::LangBench;

class FakeItem : public FormItem {
public:
    explicit FakeItem(std::map<TextProperty, std::string> initial) : texts(std::move(initial)) {}

    std::string GetText(TextProperty property) const override {
        const auto found = texts.find(property);
        return found == texts.end() ? "" : found->second;
    }
    void SetText(TextProperty property, const std::string& text) override { texts[property] = text; }

    std::map<TextProperty, std::string> texts;
};

template <class Item>
std::vector<Item*> PointersTo(auto& items) {
    std::vector<Item*> pointers;
    pointers.reserve(std::size(items));
    for (auto& item : items) {
        pointers.push_back(&item);
    }
    return pointers;
}

class FakeControl : public FormControl {
public:
    FakeControl(std::string type, std::map<TextProperty, std::string> texts,
                std::vector<FakeItem> children = {})
        : items(std::move(children)), type_(std::move(type)), own_(std::move(texts)) {}

    std::string GetText(TextProperty property) const override { return own_.GetText(property); }
    void SetText(TextProperty property, const std::string& text) override { own_.SetText(property, text); }
    std::string TypeName() const override { return type_; }
    void SetFont(const DialogFont& newFont) override { font = newFont; }
    void SetAligment(std::int32_t value) override { aligment = value; }
    std::vector<FormItem*> Items() const override { return PointersTo<FormItem>(items); }

    mutable std::vector<FakeItem> items;
    DialogFont font;
    std::optional<std::int32_t> aligment;

private:
    std::string type_;
    FakeItem own_;
};

class FakeForm : public TranslatableForm {
public:
    std::string Tag() const override { return tag; }
    void SetCaption(const std::string& text) override { caption = text; }
    void SetFont(const DialogFont& newFont) override { font = newFont; }
    bool IsRightToLeft() const override { return rightToLeft; }
    std::vector<FormControl*> Controls() const override { return PointersTo<FormControl>(controls); }

    std::string tag, caption = "designed";
    DialogFont font;
    bool rightToLeft = false;
    mutable std::deque<FakeControl> controls;
};

using enum TextProperty;

struct ControlCase {
    const char* what;
    FakeControl control;
    TextProperty read;
    std::string text;
};

/// In Hebrew; 1491 is "אישור", 1492 is "ביטול".
const ControlCase controlCases[] = {
    {"a label", {"Label", {{Tag, "1491"}, {Caption, "OK"}}}, Caption, "אישור"},
    {"a label without a number", {"Label", {{Tag, ""}, {Caption, "designed"}}}, Caption, "designed"},
    {"a menu's number stands in its caption", {"Menu", {{Caption, "1491"}}}, Caption, "אישור"},
    {"a menu's separator", {"Menu", {{Caption, "-"}, {Tag, "1491"}}}, Caption, "-"},
    {"a button", {"CommandButton", {{Tag, " 1491 "}, {Caption, "OK"}}}, Caption, "אישור"},
    {"a button whose tag is 0",
     {"CommandButton", {{Tag, "0"}, {Caption, "Select OBS"}}},
     Caption,
     "Select OBS"},
    {"a button whose tag is a word", {"CommandButton", {{Tag, "x1491"}, {Caption, "c"}}}, Caption, "c"},
    {"a negative tag", {"CheckBox", {{Tag, "-5"}, {Caption, "c"}}}, Caption, "c"},
    {"a tool tip", {"ComboBox", {{ToolTipText, "1492"}}}, ToolTipText, "ביטול"},
    {"a label's tool tip is left alone",
     {"Label", {{Tag, "1491"}, {ToolTipText, "1492"}}},
     ToolTipText,
     "1492"},
    {"a number without a text", {"CommandButton", {{Tag, "1300"}}}, Caption, "1300"},
};

TEST(TranslateForm, TranslatesEachKindOfControlInItsWay) {
    LangBench bench;
    bench.state.iLang = Language::Hebrew;
    FakeForm form;
    for (const auto& c : controlCases) {
        form.controls.push_back(c.control);
    }
    ModLangFrm::TranslateForm(bench.state, form);
    const DialogFont hebrewFont{"Tahoma", 9};
    for (std::size_t i = 0; i < std::size(controlCases); ++i) {
        EXPECT_EQ(form.controls[i].GetText(controlCases[i].read), controlCases[i].text)
            << controlCases[i].what;
        EXPECT_EQ(form.controls[i].font, hebrewFont) << controlCases[i].what;
        EXPECT_EQ(form.controls[i].aligment.has_value(), form.controls[i].TypeName() == "Label")
            << controlCases[i].what;
    }
}

TEST(TranslateForm, TranslatesItemsOfControls) {
    LangBench bench;
    FakeForm form;
    const FakeItem item({{Tag, "1491"}, {Caption, "c"}, {ToolTipText, "1492"}, {Text, "t"}});
    for (const char* type : {"TabStrip", "Toolbar", "ListView", "ComboBox"}) {
        form.controls.emplace_back(type, std::map<TextProperty, std::string>{}, std::vector<FakeItem>{item});
    }
    ModLangFrm::TranslateForm(bench.state, form);
    using Texts = std::map<TextProperty, std::string>;
    const auto textsOf = [&](std::size_t control) { return form.controls[control].items[0].texts; };
    EXPECT_EQ(textsOf(0), (Texts{{Tag, "1491"}, {Caption, "OK"}, {ToolTipText, "Cancel"}, {Text, "t"}}));
    EXPECT_EQ(textsOf(1), (Texts{{Tag, "1491"}, {Caption, "c"}, {ToolTipText, "Cancel"}, {Text, "t"}}));
    EXPECT_EQ(textsOf(2), (Texts{{Tag, "1491"}, {Caption, "c"}, {ToolTipText, "1492"}, {Text, "OK"}}));
    EXPECT_EQ(textsOf(3), item.texts) << "other controls have no items to translate";
}

TEST(TranslateForm, TakesTheFormsCaptionFromTheComponentAndItsLabelsSideFromTheForm) {
    LangBench bench;
    bench.PutLangFile();
    bench.tables.table = test::TableOf({{0, 1474, "from the table"}});
    ModLangFrm::InitLanguage(bench.state);
    FakeForm form;
    form.tag = "1474";
    form.rightToLeft = true;
    form.controls.emplace_back("Label", std::map<TextProperty, std::string>{{Tag, "1474"}});
    ModLangFrm::TranslateForm(bench.state, form);
    EXPECT_EQ(form.caption, "Cube Name");
    EXPECT_EQ(form.controls[0].GetText(Caption), "from the table");
    EXPECT_EQ(form.controls[0].aligment, 0);
    EXPECT_EQ(form.font, (DialogFont{"Tahoma", 8}));

    form.tag = "";
    form.caption = "Function QEL";
    form.rightToLeft = false;
    ModLangFrm::TranslateForm(bench.state, form);
    EXPECT_EQ(form.caption, "Function QEL");
    EXPECT_EQ(form.controls[0].aligment, 1);
}

} // namespace
} // namespace qel
