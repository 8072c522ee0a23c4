#include "wizard/MemberRows.h"

#include "lang/StringTable.h"
#include "platform/dialog/DesignedControl.h"
#include "tests/helpers/doubles/DialogDouble.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/NameFormDesign.h"

#include <gmock/gmock.h>

#include <set>

namespace qel {
namespace {

using Rows = std::vector<std::uint32_t>;

struct SearchCase {
    const char *what, *typed;
    Rows rows;
};

const SearchCase searchCases[] = {
    {"nothing shows all", "", {0, 1, 2, 3, 4}},
    {"blanks show all", "  ", {0, 1, 2, 3, 4}},
    {"codes that begin so come before codes and names that hold it", "41", {1, 3, 0, 4}},
    {"part of a name in another letter case", "WAGES", {2, 3}},
    {"an umlaut in another letter case", "ÜBER", {4}},
    {"Hebrew", "שכר", {2}},
    {"a quote", "\"ב", {0}},
    {"blanks at the ends are not searched for", " wages ", {2, 3}},
    {"nothing that is there", "x41", {}},
};

TEST(MemberRows, ArePartlyTypedCodesAndNames) {
    const MemberRows rows([] {
        return std::vector<MemberRow>{{"1410", "מע\"ב"},
                                      {"4100", "Sales"},
                                      {"5000", "Wages שכר"},
                                      {"41", "wages of old"},
                                      {"6", "über 41"}};
    });
    for (const auto& c : searchCases) {
        EXPECT_EQ(rows.Matching(c.typed), c.rows) << c.what;
    }
}

TEST(MemberRows, AreReadOnceAndOnlyWhenTheyAreNeeded) {
    int loads = 0;
    test::ToolkitDouble toolkit;
    struct NoEvents : DialogEvents {
        void OnLoad() override {}
        void OnClick(std::string_view) override {}
        void OnChange(std::string_view) override {}
        bool OnLeave(std::string_view) override { return true; }
        void OnQueryUnload() override {}
    } events;
    const auto dialog = toolkit.NewDialog(FunctionFormDesign(), false, events);
    MemberList list(*dialog, FunctionForm::ListAccount);
    list.Bind([&] {
        ++loads;
        return std::vector<MemberRow>{{"1", "one"}, {"2", "two"}};
    });
    EXPECT_FALSE(list.Chosen());
    EXPECT_EQ(loads, 0);
    EXPECT_TRUE(list.Choose("2"));
    EXPECT_EQ(list.Chosen()->name, "two");
    EXPECT_FALSE(list.Choose("3"));
    EXPECT_FALSE(list.Chosen());
    EXPECT_EQ(loads, 1);
}

/// The characters of a caption or mnemonic in lower case.
std::vector<std::string> LettersOf(std::string_view text) {
    std::vector<std::string> letters;
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0xC0U) == 0x80U) {
            letters.back() += c;
        } else {
            letters.emplace_back(1, static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
        }
    }
    return letters;
}

bool Overlap(const Place& a, const Place& b) {
    return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
           b.top < a.top + a.height;
}

/// Controls do not overlap or leave the form, and do not share access keys.
TEST(FormDesign, PlacesItsControlsApartAndGivesThemTheirOwnKeys) {
    for (const FormDesign* design : {&FunctionFormDesign(), &NameFormDesign()}) {
        std::set<std::string> names;
        std::set<std::string> keys;
        for (const ControlDesign& control : design->controls) {
            EXPECT_TRUE(names.insert(control.name).second) << control.name;
            for (const std::string& key : LettersOf(control.mnemonic)) {
                EXPECT_TRUE(keys.insert(key).second) << control.name << ": " << key << " is taken";
            }
            EXPECT_GE(control.place.left, 0) << control.name;
            EXPECT_LE(control.place.left + control.place.width, design->width) << control.name;
            EXPECT_LE(control.place.top + control.place.height, design->height) << control.name;
            for (const ControlDesign& other : design->controls) {
                EXPECT_TRUE(&control == &other || !Overlap(control.place, other.place))
                    << control.name << " and " << other.name;
            }
        }
        EXPECT_TRUE(names.contains(design->defaultButton) && names.contains(design->cancelButton));
    }
}

/// The character after the mark.
std::string KeyIn(const std::string& marked) {
    const auto mark = marked.find('~');
    return mark == std::string::npos ? "" : LettersOf(marked.substr(mark + 1)).front();
}

/// A control of a caption, without a window.
struct Captioned : DesignedControl {
    Captioned(const ControlDesign& design, std::string_view text) : DesignedControl(design, false) {
        SetText(TextProperty::Caption, std::string(text));
    }
    void ShowCaption() override {}
    void AlignToFarSide(bool /*isFar*/) override {}
    std::string Key() const { return KeyIn(MarkedCaption("~")); }
};

/// In each language, every control that takes the focus has a key of its own, in its caption or in its
/// label's. OK and Cancel have Enter and Esc; a path, a value and saved queries' member boxes come first or
/// last.
TEST(FormDesign, GivesEveryControlAnAccessKey) {
    for (const FormDesign* design : {&FunctionFormDesign(), &NameFormDesign()}) {
        for (const std::int16_t language : {Language::English, Language::Hebrew}) {
            std::set<std::string> keys;
            std::string labelKey;
            for (const ControlDesign& control : design->controls) {
                const std::int32_t number = control.tag != 0 ? control.tag : control.ownText;
                const std::string key =
                    number == 0 ? "" : Captioned(control, ResourceString(number, language)).Key();
                EXPECT_TRUE(key.empty() || keys.insert(key).second)
                    << control.name << ": " << key << " is taken";
                const bool takesFocus =
                    control.kind == ControlKind::ComboBox || control.kind == ControlKind::ListBox ||
                    control.kind == ControlKind::BoundList || control.kind == ControlKind::CheckBox;
                const bool isCommand = control.kind == ControlKind::Button &&
                                       control.name != std::string("CmdOK") &&
                                       control.name != std::string("CmdCancel");
                EXPECT_FALSE((takesFocus || isCommand) && key.empty() && labelKey.empty())
                    << control.name << " has no key in language " << language;
                labelKey = control.kind == ControlKind::Label ? key : "";
            }
        }
    }
}

} // namespace
} // namespace qel
