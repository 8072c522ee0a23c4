#include "function/formula/ParseFormula.h"
#include "tests/wizard/TestBench.h"
#include "text/Text.h"
#include "wizard/FormulaArgs.h"
#include "wizard/FunctionFormDesign.h"

#include <random>

// What the dialog shows is what Calculate computes, what the formula says, and what the cell shows: for
// random sequences of user actions.

namespace qel::test {
namespace {

using namespace FunctionForm;
using Keys = std::vector<std::string>;

/// The dialog's content as a user reads it: one entry per argument.
std::vector<Keys> ReadOff(const DialogDouble& dialog) {
    const auto row = [&](const char* box, const char* list) {
        return dialog.IsChecked(box) ? dialog.Rows(list).Text(dialog.Selected(list).value(), 0) : "All";
    };
    const std::string kind = dialog.Text(ComLevel), group = dialog.Text(ComAccX);
    Keys members = dialog.Items(ListObs);
    if (members.empty()) {
        members = {kind == "All" ? "" : dialog.Text(ComOBSData)};
    }
    return {{dialog.Text(txtCubeFile)},
            {dialog.Text(cboDatabaseList)},
            {dialog.Text(ComOBSNum)},
            {dialog.Text(ComObsX)},
            {kind == "OBS levels" ? dialog.Text(ComLevelObs) : kind},
            members,
            {row(ChekAct, ComActMember)},
            {group},
            {group == "All" ? "All" : dialog.Text(ComMember)},
            {row(CheckAcc, ListAccount)},
            {dialog.Text(ChcMeasure)},
            {dialog.Text(ComMoneySet)},
            {dialog.Text(ComPlbs)},
            {dialog.Text(ComRh)},
            {dialog.Text(ComFirma)},
            {dialog.Text(ComOB)},
            {dialog.Text(TxtDateFrom)},
            {dialog.Text(TxtDateTo)}};
}

Keys KeysIn(const Variant& argument) {
    if (!argument.IsArray()) {
        return {argument.As<std::string>()};
    }
    Keys keys;
    for (const Variant& key : argument.As<std::shared_ptr<const VariantArray>>()->elements) {
        keys.push_back(key.As<std::string>());
    }
    return keys;
}

bool IsSameDay(const std::string& a, const std::string& b) {
    return ParseDate(a, Locale()) == ParseDate(b, Locale());
}

/// "41" is shown as "41 - Sales"; a level has a name of its own.
bool Shows(const std::string& shown, const std::string& key) {
    return shown == key || shown.starts_with(key + " - ") ||
           (shown == "Cost centres" && key == "Cost_Centers");
}

void ExpectArguments(const std::string& formula, const std::vector<Keys>& shown) {
    const auto arguments = ParseFormula(formula).arguments;
    ASSERT_EQ(arguments.size(), shown.size()) << formula;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        Keys keys = KeysIn(arguments[i].value.value());
        if (keys.size() == shown[i].size() + 1 && keys.back().empty()) {
            keys.pop_back(); // only keeps the quotes of the key before it
        }
        ASSERT_EQ(keys.size(), shown[i].size()) << "argument " << i << " of " << formula;
        for (std::size_t j = 0; j < keys.size(); ++j) {
            const std::string key = ReplaceAll(
                i == FormulaArg::ObsMember ? ReplaceAll(keys[j], "\xC2\xA0", "\"") : keys[j], "]]", "]");
            const bool isDate = i >= FormulaArg::FromDate;
            EXPECT_TRUE(isDate ? IsSameDay(shown[i][j], key) : Shows(shown[i][j], key))
                << "argument " << i << " is " << key << ", the dialog shows " << shown[i][j] << ": "
                << formula;
        }
    }
}

class Sequence {
public:
    Sequence(TestBench& bench, std::mt19937& random) : bench_(bench), random_(random) {}

    /// Opens the dialog, acts, and ends it. The value shown when it wrote a formula, otherwise nothing.
    std::optional<std::string> Run() {
        std::string value;
        std::vector<Keys> shown;
        acts_ = " open";
        bench_.toolkit.chosenFile = Any(2) == 0 ? LedgerFile() : OddFile();
        const std::string text = bench_.ShowFormGetVal([&](DialogDouble& dialog) {
            for (std::size_t acts = Any(12); acts > 0; --acts) {
                Act(dialog);
            }
            if (!dialog.IsEnabled(Command1)) { // a cube that cannot be loaded
                dialog.Press(CmdOK);
                EXPECT_FALSE(bench_.TakeMessages().empty() || dialog.IsHidden()) << acts_;
                return;
            }
            dialog.Press(Command1);
            value = dialog.Text(TxtCalc);
            const Keys refused = bench_.TakeMessages();
            if (refused.empty()) {
                shown = ReadOff(dialog);
                dialog.Press(Any(8) == 0 ? CmdCancel : CmdOK);
            } else {
                dialog.Press(CmdOK);
                EXPECT_EQ(bench_.TakeMessages(), refused) << "OK and Calculate refuse alike" << acts_;
                EXPECT_FALSE(dialog.IsHidden()) << acts_;
            }
        });
        EXPECT_EQ(bench_.TakeMessages(), Keys()) << acts_;
        if (text == " ") {
            return std::nullopt;
        }
        const std::string formula = "=QelF1(" + text + ")";
        ExpectArguments(formula, shown);
        EXPECT_EQ(bench_.Evaluate(formula), value.starts_with("#") ? "0" : value) << formula;
        return value;
    }

    const std::string& Acts() const { return acts_; }

private:
    std::size_t Any(std::size_t count) { return random_() % count; }

    void Act(DialogDouble& dialog) {
        static constexpr const char* boxes[] = {
            ComOBSNum,       ComObsX,    ComLevel,    ComLevelObs, ComOBSData, ListObs,  ComAccX,
            ComMember,       ChcMeasure, ComMoneySet, ComPlbs,     ComRh,      ComFirma, ComOB,
            cboDatabaseList, ComLevel,   ComOBSData,  ComLevelObs, ComOBSData, ComObsX};
        const std::size_t act = Any(30);
        if (act < std::size(boxes)) {
            Choose(dialog, boxes[act]);
        } else if (act < 23) {
            Press(dialog, act == 20 ? ComRemoveObs : ComAddOBS);
        } else if (act < 25) {
            Find(dialog, CheckAcc, ListAccount);
        } else if (act < 27) {
            Find(dialog, ChekAct, ComActMember);
        } else if (act == 27) {
            static constexpr const char* dates[] = {"01/01/2024", "30.6.24", "31/12/2024", "1/1/1999",
                                                    "soon"};
            Type(dialog, Any(2) == 0 ? TxtDateFrom : TxtDateTo, dates[Any(std::size(dates))]);
        } else if (act == 28) {
            Press(dialog, CmdCubeFile);
        } else {
            Type(dialog, txtCubeFile, Any(2) == 0 ? LedgerFile() : " " + OddFile());
        }
        bench_.TakeMessages(); // about refused and missing choices
    }

    void Note(const std::string& act) { acts_ += ", " + act; }

    void Choose(DialogDouble& dialog, const char* control) {
        const auto& items = dialog.Items(control);
        if (!items.empty() && dialog.IsEnabled(control)) {
            const std::string item = items[Any(items.size())];
            Note(std::string("choose ") + control + " " + item);
            dialog.Choose(control, item);
        }
    }

    void Press(DialogDouble& dialog, const char* control) {
        if (dialog.IsEnabled(control)) {
            Note(std::string("press ") + control);
            dialog.Press(control);
        }
    }

    void Find(DialogDouble& dialog, const char* box, const char* list) {
        if (!dialog.IsEnabled(box)) {
            return;
        }
        Note(std::string("tick ") + box);
        dialog.Tick(box, Any(4) != 0);
        if (dialog.IsEnabled(list) && dialog.Rows(list).RowCount() > 0) {
            const ListSource& rows = dialog.Rows(list);
            const std::string typed = Any(8) == 0 ? "no such row" : rows.Text(Any(rows.RowCount()), Any(2));
            Note(std::string("find ") + list + " " + typed);
            dialog.Find(list, typed);
        }
    }

    void Type(DialogDouble& dialog, const char* control, const std::string& text) {
        if (dialog.IsEnabled(control)) {
            Note(std::string("type ") + control + " " + text);
            dialog.Type(control, text);
        }
    }

    TestBench& bench_;
    std::mt19937& random_;
    std::string acts_;
};

TEST(FunctionWizard, ShowsComputesAndWritesTheSame) {
    const std::uint32_t seed = 20261122;
    std::mt19937 random(seed);
    constexpr int benches = 25, openings = 20;
    int values = 0, zeros = 0;
    for (int bench = 0; bench < benches; ++bench) {
        TestBench own(bench % 2 == 0 ? LedgerFile() : OddFile());
        for (int opening = 0; opening < openings; ++opening) {
            Sequence sequence(own, random);
            if (const auto value = sequence.Run()) {
                ++(*value == "0" ? zeros : values);
            }
            ASSERT_FALSE(HasFailure()) << "seed " << seed << ", bench " << bench << ":" << sequence.Acts();
        }
    }
    EXPECT_GT(values, zeros / 3) << "too few formulas have values to tell right from wrong";
    EXPECT_GT(values, benches * openings / 10);
}

} // namespace
} // namespace qel::test
