#include "platform/dialog/win32/Win32DialogToolkit.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/WideText.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/platform/dialog/win32/Picture.h"
#include "tests/platform/dialog/win32/ShownDialog.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <numeric>

namespace qel::test {
namespace {

using ::testing::ElementsAre;
using Texts = std::vector<std::string>;

constexpr ControlDesign controls[] = {
    {.name = "LabelCity",
     .kind = ControlKind::Label,
     .place = {8, 8, 50, 8},
     .caption = "City",
     .mnemonic = "C"},
    {.name = "TxtCity", .kind = ControlKind::TextBox, .place = {60, 6, 100, 12}},
    {.name = "CboKind", .kind = ControlKind::ComboBox, .place = {60, 22, 100, 12}},
    {.name = "BndAccount", .kind = ControlKind::BoundList, .place = {60, 38, 100, 12}},
    {.name = "ChkAll", .kind = ControlKind::CheckBox, .place = {60, 54, 100, 10}, .caption = "All"},
    {.name = "LstTaken", .kind = ControlKind::ListBox, .place = {60, 68, 100, 30}},
    {.name = "Line1", .kind = ControlKind::Line, .place = {8, 102, 152, 1}},
    {.name = "CmdAdd",
     .kind = ControlKind::Button,
     .place = {8, 108, 48, 14},
     .caption = "R&D",
     .mnemonic = "D"},
    {.name = "CmdDial", .kind = ControlKind::FileDialog},
    {.name = "CmdOK", .kind = ControlKind::Button, .place = {60, 108, 48, 14}, .caption = "OK"},
    {.name = "CmdCancel", .kind = ControlKind::Button, .place = {112, 108, 48, 14}, .caption = "Cancel"},
};
constexpr FormDesign design = {.name = "frmTest",
                               .caption = "Test",
                               .width = 168,
                               .height = 130,
                               .controls = controls,
                               .defaultButton = "CmdOK",
                               .cancelButton = "CmdCancel"};

/// Accounts 10000, 10001, ... with names; counts how many rows it was asked for.
class Accounts : public ListSource {
public:
    explicit Accounts(std::size_t count) : count_(count) {}
    std::size_t RowCount() const override { return count_; }
    std::size_t ColumnCount() const override { return 2; }
    std::string Text(std::size_t row, std::size_t column) const override {
        ++asked;
        return column == 0 ? std::to_string(10000 + row)
                           : (row % 2 == 0 ? "Sales " : "מכירות ") + std::to_string(row);
    }
    std::vector<std::uint32_t> Matching(std::string_view typed) const override {
        ++searches;
        std::vector<std::uint32_t> rows;
        for (std::uint32_t row = 0; row < count_; ++row) {
            if (typed.empty() || Text(row, 0).find(typed) != std::string::npos ||
                Text(row, 1).find(typed) != std::string::npos) {
                rows.push_back(row);
            }
        }
        asked = 0;
        return rows;
    }

    mutable int asked = 0, searches = 0;

private:
    std::size_t count_;
};

/// The form, filled, and what it told.
struct Bench {
    explicit Bench(bool isRightToLeft = false) : dialog(toolkit.NewDialog(design, isRightToLeft, log)) {
        log.dialog = dialog.get();
        dialog->SetItems("CboKind", {"north", "south", "מזרח"});
        dialog->Select("CboKind", 0);
        dialog->SetItems("LstTaken", {"first", "second"});
        dialog->Select("LstTaken", 0);
        dialog->Bind("BndAccount", accounts);
    }
    void Show(const std::function<void(const Person&)>& person) { ShowTo(*dialog, design, person); }

    windows::Win32DialogToolkit toolkit;
    EventLog log;
    std::shared_ptr<Accounts> accounts = std::make_shared<Accounts>(300);
    std::unique_ptr<Dialog> dialog;
};

TEST(Win32Dialog, TellsWhatAPersonDoesAndKeepsItAfterwards) {
    Bench bench;
    bench.Show([](const Person& person) {
        person.Type("TxtCity", "יפו");
        person.Key("TxtCity", VK_TAB);
        person.Choose("CboKind", "south");
        person.Click("ChkAll");
        person.Choose("LstTaken", "second");
        person.Click("CmdAdd");
        person.Key("CmdAdd", VK_TAB);
        person.Click("CmdOK");
    });
    Texts told = bench.log.told;
    const auto isTyping = [](const std::string& event) { return event == "change TxtCity"; };
    EXPECT_GE(std::count_if(told.begin(), told.end(), isTyping), 3); // a letter each
    told.erase(std::remove_if(told.begin(), told.end(), isTyping), told.end());
    EXPECT_THAT(told, ElementsAre("load", "leave TxtCity", "change CboKind", "leave CboKind", "click ChkAll",
                                  "change LstTaken", "click CmdAdd", "click CmdOK"));
    EXPECT_EQ(bench.dialog->Text("TxtCity"), "יפו");
    EXPECT_EQ(bench.dialog->Text("CboKind"), "south");
    EXPECT_EQ(bench.dialog->Text("LstTaken"), "second");
    EXPECT_TRUE(bench.dialog->IsChecked("ChkAll"));
}

TEST(Win32Dialog, TellsNothingOfWhatTheProgramChanges) {
    Bench bench;
    bench.log.onLoad = [&] {
        bench.dialog->SetText("TxtCity", "Haifa");
        bench.dialog->Select("CboKind", 1);
        bench.dialog->Select("LstTaken", 0);
        bench.dialog->Select("BndAccount", 4);
        bench.dialog->SetChecked("ChkAll", true);
        bench.dialog->SetItems("CboKind", {"west"});
        bench.dialog->SetEnabled("TxtCity", false);
    };
    bench.Show([](const Person& person) {
        person.Expect("TxtCity", "Haifa");
        EXPECT_FALSE(person.IsEnabled("TxtCity"));
        person.Click("CmdCancel");
    });
    EXPECT_THAT(bench.log.told, ElementsAre("load", "click CmdCancel"));
    EXPECT_EQ(bench.dialog->Selected("CboKind"), std::nullopt);
    EXPECT_EQ(bench.dialog->Text("BndAccount"), "10004 - Sales 4");
}

struct EndCase {
    const char* what;
    std::function<void(const Person&)> act;
    std::vector<std::string> told;
};

TEST(Win32Dialog, EndsByItsKeysAndItsCloseBox) {
    const EndCase cases[] = {
        {"Enter presses the default button",
         [](const auto& person) { person.Key("TxtCity", VK_RETURN); },
         {"load", "click CmdOK"}},
        {"Enter on another button presses that one",
         [](const auto& person) {
             person.Key("CmdAdd", VK_RETURN);
             person.Key("CmdAdd", VK_ESCAPE);
         },
         {"load", "leave TxtCity", "click CmdAdd", "click CmdCancel"}},
        {"Esc presses the cancel button, and the field is not left for it",
         [](const auto& person) { person.Key("TxtCity", VK_ESCAPE); },
         {"load", "click CmdCancel"}},
        {"the close box", [](const auto& person) { person.UseCloseBox(); }, {"load", "unload"}},
    };
    for (const EndCase& c : cases) {
        SCOPED_TRACE(c.what);
        Bench bench;
        bench.Show(c.act);
        EXPECT_EQ(bench.log.told, c.told);
    }
}

struct ListCase {
    const char* what;
    const char* typed;
    std::vector<WORD> keys;
    std::optional<std::size_t> selected;
    const char* text;
    bool isChange = true; ///< told as a change
};

TEST(Win32Dialog, FindsRowsOfABoundListByTyping) {
    const ListCase cases[] = {
        {"a part of a code, Enter", "0127", {VK_RETURN}, 127, "10127 - מכירות 127"},
        {"a part of a Hebrew name, further down by arrows, Enter",
         "ירות 29",
         {VK_DOWN, VK_DOWN, VK_UP, VK_RETURN},
         291,
         "10291 - מכירות 291"},
        {"leaving chooses the first that matches", "Sales 20", {VK_TAB}, 20, "10020 - Sales 20"},
        {"what matches nothing chooses nothing", "no such account", {VK_TAB}, std::nullopt, ""},
        {"Esc takes the typing back and closes only the list",
         "Sales 20",
         {VK_ESCAPE},
         7,
         "10007 - מכירות 7",
         false},
        {"an emptied field chooses nothing", "", {VK_TAB}, std::nullopt, ""},
    };
    for (const ListCase& c : cases) {
        SCOPED_TRACE(c.what);
        Bench bench;
        bench.dialog->Select("BndAccount", 7);
        bench.log.onLoad = [&] { bench.dialog->SetFocus("BndAccount"); };
        bench.Show([&](const Person& person) {
            person.Type("BndAccount", c.typed);
            for (const WORD key : c.keys) {
                person.Key("BndAccount", key);
            }
            person.Expect("BndAccount", c.text);
            person.Click("ChkAll");
            person.Click("ChkAll");
            person.Click("CmdOK");
        });
        Texts told = {"load", "leave BndAccount", "click ChkAll", "click ChkAll", "click CmdOK"};
        if (c.isChange) {
            told.insert(told.begin() + 1, "change BndAccount");
        }
        EXPECT_EQ(bench.log.told, told);
        EXPECT_EQ(bench.dialog->Selected("BndAccount"), c.selected);
        EXPECT_EQ(bench.dialog->Text("BndAccount"), c.text);
    }
}

TEST(Win32Dialog, OpensABoundListByItsArrowAtTheChosenRow) {
    Bench bench;
    bench.dialog->Select("BndAccount", 7);
    bench.log.onLoad = [&] { bench.dialog->SetFocus("BndAccount"); };
    bench.Show([&](const Person& person) {
        person.Click("BndAccount");
        const HWND list = person.Control("BndAccount");
        Person::WaitUntil("the open list",
                          [&] { return ::SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) != FALSE; });
        // The combo box itself gets the focus, which does not count as leaving it.
        ::PostMessageW(person.Dialog(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(list), TRUE);
        person.Key("BndAccount", VK_DOWN);
        person.Key("BndAccount", VK_RETURN);
        person.Expect("BndAccount", "10008 - Sales 8");
        person.Click("CmdOK");
    });
    EXPECT_THAT(bench.log.told, ElementsAre("load", "change BndAccount", "leave BndAccount", "click CmdOK"));
}

TEST(Win32Dialog, AsksAHugeListOnlyForTheRowsThatAreSeen) {
    Bench bench;
    const auto accounts = std::make_shared<Accounts>(50'000);
    bench.dialog->Bind("BndAccount", accounts);
    EXPECT_EQ(accounts->asked + accounts->searches, 0);
    bench.Show([&](const Person& person) {
        person.Click("BndAccount");
        Person::WaitUntil("rows", [&] { return accounts->searches == 1 && accounts->asked > 0; });
        person.Key("BndAccount", VK_DOWN);
        person.Key("BndAccount", VK_RETURN);
        person.Expect("BndAccount", "10000 - Sales 0");
        person.Click("CmdOK");
    });
    EXPECT_LT(accounts->asked,
              2000); // some for the widths of the columns, the seen ones each time they are drawn
}

TEST(Win32Dialog, RaisesWhatAHandlerRaised) {
    Bench bench;
    bench.log.onClick = [](std::string_view control) {
        if (control == "CmdAdd") {
            throw AutomationError(1004, "The sheet is protected");
        }
    };
    EXPECT_EQ(ErrorOf([&] { bench.Show([](const Person& person) { person.Click("CmdAdd"); }); }), 1004);
}

TEST(Win32Dialog, TakesAClickThoughLeavingTheFieldBeforeShowsABox) {
    for (const char* const pressed : {"CmdAdd", "ChkAll"}) {
        Bench bench;
        bench.log.onLeave = [](std::string_view) {
            ::MessageBoxW(::GetActiveWindow(), L"No such city", L"Test", MB_OK);
        };
        bench.Show([&](const Person& person) {
            person.Key("TxtCity", VK_HOME);
            person.Click(pressed);
            EXPECT_EQ(Person::Answer(IDOK), "No such city");
            person.Click("CmdOK");
        });
        EXPECT_THAT(bench.log.told,
                    ElementsAre("load", "leave TxtCity", std::string("click ") + pressed, "click CmdOK"));
    }
}

TEST(Win32Dialog, PressesNoButtonWhenLeavingTheFieldIsRefused) {
    const auto leadBack = [](Dialog& dialog) { dialog.SetFocus("TxtCity"); };
    const auto disable = [](Dialog& dialog) { dialog.SetEnabled("CmdAdd", false); };
    const struct {
        const char* what;
        void (*refuse)(Dialog& dialog);
        std::vector<const char*> pressed;
        Texts told;
        bool pressCounts = true;
    } cases[] = {
        {"leads back to the field",
         leadBack,
         {"CmdAdd", "CmdOK"},
         {"load", "leave TxtCity", "leave TxtCity", "click CmdOK"}},
        {"disables the button for a while",
         [](Dialog& dialog) {
             dialog.SetEnabled("CmdAdd", false);
             dialog.SetEnabled("CmdAdd", true);
         },
         {"CmdAdd", "CmdOK"},
         {"load", "leave TxtCity", "click CmdAdd", "click CmdOK"}},
        {"disables the button", disable, {"CmdAdd", "CmdOK"}, {"load", "leave TxtCity", "click CmdOK"}},
        {"shows something new",
         [](Dialog&) {},
         {"CmdAdd", "CmdOK"},
         {"load", "leave TxtCity", "click CmdOK"},
         false},
        {"cancelling is possible anyway", leadBack, {"CmdCancel"}, {"load", "click CmdCancel"}},
    };
    for (const auto& c : cases) {
        Bench bench;
        bench.log.pressCounts = c.pressCounts;
        int left = 0;
        bench.log.onLeave = [&](std::string_view) {
            if (left++ == 0) {
                c.refuse(*bench.dialog);
            }
        };
        bench.Show([&](const Person& person) {
            person.Key("TxtCity", VK_HOME);
            for (const char* const button : c.pressed) {
                person.Click(button);
            }
        });
        EXPECT_EQ(bench.log.told, c.told) << c.what;
    }
}

TEST(Win32Dialog, TellsNothingOfAFieldThatTheProgramLeaves) {
    Bench bench;
    std::atomic<int> left = 0;
    bench.log.onLeave = [&](std::string_view field) {
        if (++left < 3) { // or they would go on for ever
            bench.dialog->SetFocus(field);
        }
    };
    bench.Show([&](const Person& person) {
        person.Key("TxtCity", VK_TAB);
        Person::WaitUntil("the field is left", [&] { return left > 0; });
        person.Key("TxtCity", VK_END);
        person.Click("CmdCancel");
    });
    EXPECT_THAT(bench.log.told, ElementsAre("load", "leave TxtCity", "click CmdCancel"));
}

TEST(Win32Dialog, TellsThatAFieldIsLeftWhenAPressEndsBesideTheButton) {
    Bench bench;
    bench.Show([](const Person& person) {
        person.Key("TxtCity", VK_HOME);
        person.PressAndSlipOff("CmdAdd");
        person.Key("CmdAdd", VK_TAB);
        person.Click("CmdOK");
    });
    EXPECT_THAT(bench.log.told, ElementsAre("load", "leave TxtCity", "click CmdOK"));
}

TEST(Win32Dialog, RefusesControlsThatCannotDoWhatIsAsked) {
    Bench bench;
    const std::function<void()> calls[] = {
        [&] { bench.dialog->SetText("TxtTown", "x"); },
        [&] { bench.dialog->SetText("CboKind", "x"); },
        [&] { bench.dialog->SetChecked("CmdAdd", true); },
        [&] { bench.dialog->SetItems("BndAccount", {"x"}); },
        [&] { bench.dialog->Bind("CboKind", nullptr); },
        [&] { bench.dialog->SetFocus("LabelCity"); },
        [&] { bench.dialog->AskForFile("CmdAdd", {}); },
    };
    for (const auto& call : calls) {
        EXPECT_EQ(ErrorOf(call), 5);
    }
    EXPECT_EQ(ErrorOf([&] { bench.dialog->Select("CboKind", 3); }), 9);
    EXPECT_EQ(ErrorOf([&] { bench.dialog->Select("BndAccount", 300); }), 9);
}

TEST(Win32Dialog, AsksForAFile) {
    Bench bench;
    std::string chosen = "not asked";
    bench.log.onClick = [&](std::string_view control) {
        if (control == "CmdAdd") {
            chosen = bench.dialog->AskForFile("CmdDial", {"Open", "Cub files(*.cub)|*.cub"});
        }
    };
    bench.Show([](const Person& person) {
        person.Click("CmdAdd");
        person.ChooseFile(R"(C:\windows\win.ini)");
        person.Click("CmdOK");
    });
    EXPECT_EQ(chosen, R"(C:\windows\win.ini)");
}

RECT PlaceOf(const Person& person, const char* control) {
    RECT area = {};
    ::GetWindowRect(person.Control(control), &area);
    return area;
}

TEST(Win32Dialog, MirrorsARightToLeftFormAndGrowsWithItsFont) {
    LONG width = 0;
    for (const bool isRightToLeft : {false, true}) {
        Bench bench(isRightToLeft);
        bench.dialog->Texts().SetCaption("פונקציית QEL");
        if (isRightToLeft) {
            bench.dialog->Texts().SetFont({"Tahoma", 16});
        }
        bench.Show([&](const Person& person) {
            const RECT label = PlaceOf(person, "LabelCity");
            const RECT field = PlaceOf(person, "TxtCity");
            EXPECT_EQ(label.left > field.left, isRightToLeft);
            if (isRightToLeft) {
                EXPECT_GT(field.right - field.left, width * 3 / 2);
            }
            width = field.right - field.left;
            person.Click("CmdCancel");
        });
    }
}

HWND OpenListOf(const Person& person) {
    HWND list = nullptr;
    Person::WaitUntil("the open list", [&] {
        list = ::FindWindowW(WC_LISTVIEWW, nullptr);
        return list != nullptr && ::IsWindowVisible(list) != FALSE &&
               ::GetWindow(list, GW_OWNER) == person.Dialog();
    });
    return list;
}

TEST(Win32Dialog, DrawsAnOpenListWithItsScrollBarAndItsRowsFromEdgeToEdge) {
    for (const bool isRightToLeft : {false, true}) {
        SCOPED_TRACE(isRightToLeft);
        Bench bench(isRightToLeft);
        bench.dialog->Select("BndAccount", 0);
        bench.Show([&](const Person& person) {
            person.Click("BndAccount");
            const HWND list = OpenListOf(person);
            RECT whole = {};
            RECT inside = {};
            ::GetWindowRect(list, &whole);
            ::GetClientRect(list, &inside);
            POINT corner = {};
            ::ClientToScreen(list, &corner);
            ::OffsetRect(&inside, corner.x, corner.y);
            SCROLLBARINFO bar = {};
            bar.cbSize = sizeof(bar);
            EXPECT_TRUE(::GetScrollBarInfo(list, static_cast<LONG>(OBJID_VSCROLL), &bar));
            const RECT& at = bar.rcScrollBar;
            EXPECT_GT(at.right, at.left);
            const LONG border = ::GetSystemMetrics(SM_CXBORDER);
            EXPECT_EQ((isRightToLeft ? inside : at).right, whole.right - border);
            EXPECT_EQ((isRightToLeft ? at : inside).left, whole.left + border);
            EXPECT_EQ(isRightToLeft ? at.right : at.left, isRightToLeft ? inside.left : inside.right);

            RECT row = {LVIR_BOUNDS, 0, 0, 0};
            ::SendMessageW(list, LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&row));
            const Picture picture = Picture::OfWindow(list);
            EXPECT_EQ(picture.DarkInRow(0), picture.Width()) << "the marked row, above its letters";
            const auto code = picture.Find(Picture::OfText(list, L"10001"), row.top, row.bottom);
            const auto name = picture.Find(Picture::OfText(list, L"מכירות"), row.top, row.bottom);
            EXPECT_TRUE(code && name) << "letters that are not mirrored";
            EXPECT_EQ(code > name, isRightToLeft);
            person.Key("BndAccount", VK_ESCAPE);
            person.Click("CmdCancel");
        });
    }
}

TEST(Win32Dialog, ReadsEachItemOfAMirroredFormInItsOwnDirection) {
    Bench bench(true);
    bench.dialog->SetItems("CboKind", {"735 - south", "735 - מזרח"});
    bench.dialog->SetItems("LstTaken", {"735 - south", "735 - מזרח"});
    for (const bool isHebrew : {false, true}) {
        const std::wstring word = isHebrew ? L"מזרח" : L"south";
        bench.dialog->Select("CboKind", isHebrew ? 1 : 0);
        bench.dialog->Select("BndAccount", isHebrew ? 1 : 0);
        bench.Show([&](const Person& person) {
            const auto expectOrder = [&](HWND window, const std::wstring& first, const std::wstring& second) {
                const Picture picture = Picture::OfWindow(window);
                const auto code = picture.Find(Picture::OfText(window, first));
                const auto name = picture.Find(Picture::OfText(window, second));
                ASSERT_TRUE(code && name);
                EXPECT_EQ(code > name, isHebrew);
            };
            const HWND field = ::FindWindowExW(person.Control("BndAccount"), nullptr, L"Edit", nullptr);
            expectOrder(person.Control("CboKind"), L"735", word);
            expectOrder(field, isHebrew ? L"10001" : L"10000", isHebrew ? L"מכירות" : L"Sales");
            person.Expect("CboKind", isHebrew ? "735 - מזרח" : "735 - south");
            COMBOBOXINFO parts = {};
            parts.cbSize = sizeof(parts);
            ::GetComboBoxInfo(person.Control("CboKind"), &parts);
            for (const HWND list : {parts.hwndList, person.Control("LstTaken")}) {
                constexpr LONG sides = WS_EX_LAYOUTRTL | WS_EX_LEFTSCROLLBAR;
                EXPECT_EQ(::GetWindowLongW(list, GWL_EXSTYLE) & sides, WS_EX_LEFTSCROLLBAR);
            }
            person.Click("CmdCancel");
        });
    }
}

} // namespace
} // namespace qel::test
