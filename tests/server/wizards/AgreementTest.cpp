#include "tests/wizard/Agreement.h"

#include "function/OrmQelFunction.h"
#include "function/formula/ParseFormula.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/Win32DialogToolkit.h"
#include "platform/settings/windows/WindowsProfiles.h"
#include "platform/tables/msxml/MsxmlTableReader.h"
#include "platform/value/ValueText.h"
#include "reason/RunFormula.h"
#include "store/ModAPI.h"
#include "store/ModPublics.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/doubles/SheetDouble.h"
#include "tests/helpers/doubles/StoreDoubles.h"
#include "tests/platform/dialog/win32/Person.h"
#include "text/Text.h"
#include "wizard/FunctionFormDesign.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <random>

// What the dialog of the system's own controls shows is what Calculate computes, what the formula says, and
// what the engine answers: for random sequences of keys and clicks. QEL_AGREEMENT_SEQUENCES says how many,
// QEL_AGREEMENT_SEED which.

namespace qel::test {
namespace {

using namespace FunctionForm;

std::uint32_t NumberOf(const char* variable, std::uint32_t otherwise) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? static_cast<std::uint32_t>(std::stoul(text)) : otherwise;
}

/// The dialogs of every second toolkit are mirrored, with the same texts.
class Toolkit : public DialogToolkit {
public:
    std::unique_ptr<Dialog> NewDialog(const FormDesign& design, bool /*isRightToLeft*/,
                                      DialogEvents& events) override {
        return toolkit_.NewDialog(design, isMirrored, events);
    }
    bool isMirrored = false;

private:
    windows::Win32DialogToolkit toolkit_;
};

/// The queue of the dialog's thread, seen from the person's.
class MessageQueue {
public:
    MessageQueue() {
        ::SetWindowSubclass(window_, &MessageQueue::Procedure, 1, reinterpret_cast<DWORD_PTR>(this));
    }
    ~MessageQueue() { ::DestroyWindow(window_); }
    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;

    /// Waits until everything that was posted is done, and what that posted.
    void WaitUntilDone() {
        for (int round = 0; round < 3; ++round) {
            const int before = passed_;
            ::PostMessageW(window_, WM_APP, 0, 0);
            Person::WaitUntil("the dialog's thread", [&] { return passed_ != before; });
        }
    }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM word, LPARAM value, UINT_PTR,
                                      DWORD_PTR self) {
        if (message == WM_APP) {
            ++windows::CarriedPointer<MessageQueue>(self)->passed_;
        }
        return ::DefSubclassProc(window, message, word, value);
    }

    HWND window_ =
        ::CreateWindowExW(0, WC_STATICW, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    std::atomic<int> passed_ = 0;
};

/// A new user's machine. Dialogs are real; message boxes are recorded, and answered at once.
class Machine {
public:
    Machine(bool isMirrored, const std::string& rememberedFile) {
        toolkit.isMirrored = isMirrored;
        registry.keys[{RootKey::CurrentUser, ModAPI::suiteKey}][ModAPI::mdbPathValue] = {
            registryString, folder.Path("suite").string()};
        std::filesystem::create_directory(folder.Path("suite"));
        ModPublics::WriteCubIni(store, ModPublics::cubeFileSection, ModPublics::cubeFileKey, rememberedFile);
    }

    Keys TakeMessages() {
        Keys texts;
        for (const ShownMessage& message : std::exchange(messages.shown, {})) {
            if (message.text.find("QelFunction17.mdb' already exists") == std::string::npos) {
                texts.push_back(message.text);
            }
        }
        return texts;
    }

    std::string Evaluate(const std::string& formula) {
        ModSetCube::ThreadState own;
        OrmQelFunction function({own, dataAccess, locale});
        return ValueText(RunFormula(function, BindFormula(ParseFormula(formula), locale)).value);
    }

    TemporaryFolder folder;
    ScriptedRegistry registry;
    windows::WindowsProfiles profiles;
    SqliteDatabase database;
    RecordedMessages messages;
    StoreEnvironment store{registry, profiles, database, messages, folder.Path("").string(), '\\'};
    windows::MsxmlTableReader tables;
    ModLangFrm::LanguageState language{store, tables};
    Toolkit toolkit;
    WizardServices services{toolkit, language};
    EmbeddedDataAccess dataAccess;
    Locale locale;
    ModSetCube::ThreadState thread;
    OrmQelFunction object{{thread, dataAccess, locale, &services}};
    SheetDouble sheet;
    MessageQueue queue;
};

/// A person who opens the dialog, acts at random, and ends it.
class Visit {
public:
    Visit(Machine& machine, std::mt19937& random) : machine_(machine), random_(random) {}

    void Act() {
        const Person person(FunctionFormDesign());
        machine_.queue.WaitUntilDone();
        for (std::size_t left = Any(8); left > 0; --left) {
            ActOnce(person);
            machine_.queue.WaitUntilDone();
            LeaveDates(person);
        }
        machine_.TakeMessages(); // about refused and missing choices
        if (!person.IsEnabled(Command1)) {
            return End(person, CmdCancel); // a cube that cannot be loaded
        }
        PressButton(person, Command1);
        const Keys refused = machine_.TakeMessages();
        value = person.Read(TxtCalc);
        if (!refused.empty()) {
            PressButton(person, CmdOK);
            EXPECT_EQ(machine_.TakeMessages(), refused) << "OK and Calculate refuse alike";
            EXPECT_TRUE(::IsWindowVisible(person.Dialog()));
            return End(person, CmdCancel);
        }
        shown = ReadOff({[&](const char* control) { return person.Read(control); },
                         [&](const char* control) { return person.IsTicked(control); },
                         [&](const char* control) { return ItemsOf(person, control); }});
        End(person, Any(8) == 0 ? CmdCancel : CmdOK);
    }

    std::string value, acts = "open";
    std::vector<Keys> shown;

private:
    std::size_t Any(std::size_t count) { return random_() % count; }
    void Note(const std::string& act) { acts += ", " + act; }

    static Keys ItemsOf(const Person& person, const char* list) {
        Keys items;
        std::string text = person.Read(list);
        for (std::size_t bar = 0; !text.empty(); text = bar < text.size() ? text.substr(bar + 1) : "") {
            bar = std::min(text.find('|'), text.size());
            items.push_back(text.substr(0, bar));
        }
        return items;
    }

    void PressButton(const Person& person, const char* button) {
        person.Click(button);
        machine_.queue.WaitUntilDone();
    }

    void End(const Person& person, const char* button) {
        Note(std::string("press ") + button);
        person.Click(button);
        person.ExpectGone();
    }

    void ActOnce(const Person& person) {
        static constexpr const char* boxes[] = {
            ComOBSNum,       ComObsX,    ComLevel,    ComLevelObs, ComOBSData, ListObs,   ComAccX,
            ComMember,       ChcMeasure, ComMoneySet, ComPlbs,     ComRh,      ComFirma,  ComOB,
            cboDatabaseList, ComLevel,   ComLevel,    ComLevelObs, ComOBSData, ComOBSData};
        const std::size_t act = Any(32);
        if (act < std::size(boxes)) {
            Choose(person, boxes[act]);
        } else if (act < 23) {
            Press(person, act == 20 ? ComRemoveObs : ComAddOBS);
        } else if (act < 26) {
            Find(person, CheckAcc, ListAccount);
        } else if (act < 28) {
            Find(person, ChekAct, ComActMember);
        } else if (act < 30) {
            static constexpr const char* dates[] = {"1/1/2024", "30.6.24", "31/12/2024", "1/1/1999", "soon"};
            TypeAndLeave(person, Any(2) == 0 ? TxtDateFrom : TxtDateTo, dates[Any(std::size(dates))]);
        } else {
            ChooseFile(person, Any(2) == 0 ? QEL_LEDGER_CUBE : QEL_ODD_CUBE);
        }
    }

    void ChooseFile(const Person& person, const std::string& file) {
        if (Any(2) == 0) {
            return TypeAndLeave(person, txtCubeFile, file);
        }
        Note("choose the file " + file);
        person.Click(CmdCubeFile);
        person.ChooseFile(ReplaceAll(file, "/", "\\"));
    }

    /// Dates that are refused get the focus back, once.
    void LeaveDates(const Person& person) {
        for (int tries = 0; tries < 4; ++tries) {
            GUITHREADINFO state = {};
            state.cbSize = sizeof(state);
            ::GetGUIThreadInfo(::GetWindowThreadProcessId(person.Dialog(), nullptr), &state);
            for (const char* const field : {TxtDateFrom, TxtDateTo}) {
                if (state.hwndFocus == person.Control(field)) {
                    ::PostMessageW(state.hwndFocus, WM_KEYDOWN, VK_TAB, 1);
                }
            }
            machine_.queue.WaitUntilDone();
        }
    }

    void TypeAndLeave(const Person& person, const char* control, const std::string& text) {
        if (person.IsEnabled(control)) {
            Note(std::string("type ") + control + " " + text);
            person.Type(control, text);
            person.Key(control, VK_TAB);
        }
    }

    /// Moves by some items with the arrow keys.
    void Choose(const Person& person, const char* control) {
        if (!person.IsEnabled(control)) {
            return;
        }
        const WORD key = Any(3) == 0 ? VK_UP : VK_DOWN;
        const std::size_t steps = 1 + Any(4);
        Note(std::string(key == VK_UP ? "up in " : "down in ") + control + " " + std::to_string(steps));
        for (std::size_t step = 0; step < steps; ++step) {
            person.Key(control, key);
        }
    }

    void Press(const Person& person, const char* button) {
        if (person.IsEnabled(button)) {
            Note(std::string("press ") + button);
            person.Click(button);
        }
    }

    void Find(const Person& person, const char* box, const char* list) {
        Press(person, box);
        machine_.queue.WaitUntilDone();
        if (!person.IsEnabled(list)) {
            return;
        }
        static constexpr const char* typed[] = {"4", "41", "1", "s", "no such row"};
        const char* const text = typed[Any(std::size(typed))];
        person.Type(list, text);
        machine_.queue.WaitUntilDone();
        static constexpr WORD ends[] = {VK_RETURN, VK_ESCAPE, VK_TAB, VK_DOWN};
        const bool isOpen = ::SendMessageW(person.Control(list), CB_GETDROPPEDSTATE, 0, 0) != 0;
        const WORD key = isOpen ? ends[Any(std::size(ends))] : WORD{VK_TAB}; // others would end the dialog
        Note(std::string("type ") + list + " " + text + " and key " + std::to_string(key));
        person.Key(list, key);
        if (key == VK_DOWN) {
            person.Key(list, VK_RETURN);
        }
    }

    Machine& machine_;
    std::mt19937& random_;
};

/// What the call returned while the person acted.
std::string Call(Machine& machine, Visit& visit) {
    std::string text;
    Person::ActDuring(
        [&] { text = machine.object.ShowFormGetVal(machine.sheet.Cell(machine.sheet.activeCell)); },
        [&] { visit.Act(); }, visit.acts);
    return text;
}

TEST(Win32Wizard, ShowsComputesAndWritesTheSame) {
    const std::uint32_t seed = NumberOf("QEL_AGREEMENT_SEED", 20261122);
    const std::uint32_t sequences = NumberOf("QEL_AGREEMENT_SEQUENCES", 12);
    std::mt19937 random(seed);
    std::optional<Machine> machine;
    std::uint32_t values = 0;
    std::uint32_t zeros = 0;
    for (std::uint32_t sequence = 0; sequence < sequences; ++sequence) {
        if (sequence % 6 == 0) { // reopened in between
            machine.emplace(sequence % 12 >= 6, sequence % 4 == 0 ? QEL_LEDGER_CUBE : QEL_ODD_CUBE);
        }
        Visit visit(*machine, random);
        const std::string text = Call(*machine, visit);
        if (text != " ") {
            const std::string formula = "=QelF1(" + text + ")";
            ExpectArguments(formula, visit.shown);
            EXPECT_EQ(machine->Evaluate(formula), visit.value.starts_with("#") ? "0" : visit.value)
                << formula;
            ++(visit.value == "0" ? zeros : values);
        }
        EXPECT_EQ(machine->TakeMessages(), Keys());
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ", sequence " << sequence << ": " << visit.acts;
    }
    std::cout << "seed " << seed << ": " << sequences << " sequences, " << values << " values, " << zeros
              << " zeros" << std::endl;
    EXPECT_GT(values + zeros, sequences / 4) << "too few formulas";
}

} // namespace
} // namespace qel::test
