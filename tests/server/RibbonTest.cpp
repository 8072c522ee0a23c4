#include "platform/dialog/ReadingOrder.h"
#include "platform/windows/Bstr.h"
#include "server/OfficeInterfaces.h"
#include "tests/helpers/TemporaryFolder.h"
#include "tests/helpers/automation/RecordedObject.h"
#include "tests/helpers/automation/SheetObject.h"
#include "tests/platform/dialog/win32/BoxReader.h"
#include "tests/platform/dialog/win32/Person.h"
#include "tests/platform/settings/windows/SuiteKey.h"
#include "text/Utf8Path.h"
#include "why/WhyFormDesign.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/NameFormDesign.h"

#include <gmock/gmock.h>
#include <pugixml.hpp>

// The ribbon, loaded and used as Excel does.

namespace qel::test {
namespace {

constexpr const wchar_t* addIn = L"Software\\Microsoft\\Office\\Excel\\Addins\\OrmFunctionQel4.Ribbon";
constexpr const wchar_t* classes[] = {L"Software\\Classes\\OrmFunctionQel4.Ribbon",
                                      L"Software\\Classes\\CLSID\\{680CABBD-2BBB-462A-949C-274DC35122F2}"};

DWORD LoadBehavior() {
    DWORD number = 0, size = sizeof number;
    ::RegGetValueW(HKEY_CURRENT_USER, addIn, L"LoadBehavior", RRF_RT_DWORD, nullptr, &number, &size);
    return number;
}

class Ribbon : public testing::Test {
protected:
    void SetUp() override {
        EXPECT_EQ(std::system("regsvr32 /s /n /i:user " QEL_TEST_SERVER), 0);
        EXPECT_EQ(LoadBehavior(), 3U);
        for (const wchar_t* key : classes) { // Windows finds classes of the user like those of the machine
            HKEY merged = nullptr;
            ::RegCreateKeyW(HKEY_LOCAL_MACHINE, key, &merged);
            EXPECT_EQ(::RegCopyTreeW(HKEY_CURRENT_USER, key, merged), ERROR_SUCCESS);
            ::RegCloseKey(merged);
        }
        object_ = CreateByName(std::wstring(addIn).substr(std::wstring(addIn).rfind(L'\\') + 1).c_str());
        addIn_ = object_.As<server::AddIn>(server::addInInterface);
        key_.SetText(L"MDBPath", PathToUtf8(folder_.Path("")));
    }
    void TearDown() override {
        EXPECT_EQ(addIn_->OnDisconnection(0, nullptr), S_OK);
        EXPECT_EQ(std::system("regsvr32 /s /u /n /i:user " QEL_TEST_SERVER), 0);
        EXPECT_EQ(LoadBehavior(), 0U);
        for (const wchar_t* key : classes) {
            ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, key);
        }
    }

    HRESULT Press(const std::string& callback) const {
        Arguments control;
        control.push_back(
            ObjectValue(MakeObject([](DispatchDouble& used) { used.Value(L"Id", std::string("any")); })));
        return Invoke(object_.Get(), windows::ToWide(callback).c_str(), control, {}, DISPATCH_METHOD).status;
    }
    /// The box that a button ends with.
    std::string BoxAfter(const char* callback) const {
        const BoxReader box(IDOK);
        EXPECT_EQ(Press(callback), S_OK) << callback;
        return box.seen.text;
    }

    const Apartment apartment_;
    const TemporaryFolder folder_;
    const SuiteKey key_;
    ComPointer<IDispatch> object_;
    ComPointer<server::AddIn> addIn_;
};

/// What must not be there, by the published structure.
const char* const markupFaults[] = {
    "//*[not(contains(' /customUI customUI/ribbon ribbon/tabs tabs/tab tab/group group/button ', "
    "concat(' ', name(..), '/', name(), ' ')))]",
    "//@*[not(contains(' tab/id tab/label group/id group/label button/id button/label button/imageMso "
    "button/size "
    "button/screentip button/supertip button/onAction ', concat(' ', name(..), '/', name(), ' ')))]",
    "//@*[. = '']",
    "//@size[. != 'large']",
    "//*[@id = following::*/@id or @id = descendant::*/@id]",
    "//*[not(@id and @label) and (self::tab or self::group or self::button)]",
    "//button[not(@onAction) or @onAction = following::button/@onAction]",
    "/*[namespace-uri() != 'http://schemas.microsoft.com/office/2009/07/customui']",
};

TEST_F(Ribbon, HasThePublishedStructureInBothLanguages) {
    for (const auto& [language, group] : {std::pair{"0", "Formulas"}, std::pair{"1", "נוסחאות"}}) {
        folder_.Write("Qel.ini", std::string("[Qel]\r\nQelUILanguage=") + language + "\r\n");
        windows::Bstr xml;
        const windows::Bstr id(std::wstring_view(L"Microsoft.Excel.Workbook"));
        const auto source = object_.As<server::RibbonSource>(server::ribbonInterface);
        ASSERT_EQ(source->GetCustomUI(id.Get(), xml.Receive()), S_OK);
        pugi::xml_document document;
        ASSERT_TRUE(document.load_string(windows::TextOfBstr(xml.Get()).c_str()));
        for (const char* const fault : markupFaults) {
            EXPECT_TRUE(document.select_nodes(fault).empty()) << fault;
        }
        EXPECT_STREQ(document.select_node("//group/@label").attribute().value(), group);
        const pugi::xpath_node_set callbacks = document.select_nodes("//button/@onAction");
        EXPECT_EQ(callbacks.size(), 7U);
        for (const pugi::xpath_node& callback : callbacks) {
            EXPECT_NE(BoxAfter(callback.attribute().value()), "") << "without Excel, each says so";
        }
    }
}

TEST_F(Ribbon, TellsWhatAButtonFailsWithAndLetsExcelGo) {
    int calculated = 0;
    const auto application = MakeObject([&](DispatchDouble& excel) {
        excel.RequireLocale(1033);
        excel.Child(L"ActiveCell", [] { return ComPointer<IDispatch>(); });
        excel.Method(L"CalculateFull", [&](const Inputs&) {
            if (++calculated > 1) {
                throw ScriptedFailure{E_FAIL, "Excel is busy", "Excel"};
            }
        });
    });
    EXPECT_EQ(addIn_->OnConnection(application.Get(), 0, object_.Get(), nullptr), S_OK);
    EXPECT_EQ(addIn_->OnStartupComplete(nullptr), S_OK);
    EXPECT_EQ(BoxAfter("OnEditFormula"), "Open a workbook and choose a cell.");
    EXPECT_EQ(BoxAfter("OnRecalculate"), "");
    EXPECT_EQ(BoxAfter("onrecalculate"), "Excel is busy");
    Arguments none;
    EXPECT_EQ(Invoke(object_.Get(), L"OnHelp", none, {}, DISPATCH_METHOD).status, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(addIn_->OnBeginShutdown(nullptr), S_OK);
    application->AddRef();
    EXPECT_EQ(application->Release(), 1U) << "nothing but the test refers to it";
}

std::string TextOfClipboard() {
    ::OpenClipboard(nullptr);
    const HANDLE text = ::GetClipboardData(CF_UNICODETEXT);
    std::string copied = windows::ToUtf8(static_cast<const wchar_t*>(::GlobalLock(text)));
    ::GlobalUnlock(text);
    ::CloseClipboard();
    return copied;
}

/// A workbook whose active cell, of a protected sheet, adds up January 2024.
std::shared_ptr<ObjectRecord> WorkbookWithAFormula() {
    auto record = std::make_shared<ObjectRecord>();
    record->values = {
        {"ActiveCell.Row", std::int32_t{3}},
        {"ActiveCell.Column", std::int32_t{2}},
        {"ActiveCell.HasFormula", true},
        {"ActiveCell.HasArray", false},
        {"ActiveCell.Locked", true},
        {"ActiveCell.Worksheet.ProtectContents", true},
        {"ActiveCell.Formula2",
         std::string(
             "=1+OrmFunctionQel4.OrmQelFunction.QelF1(\"" QEL_TEST_CUBE
             "\",\"LedgerFNC\",{\"OBS\"},{\"1\"},{\"All\"},{\"All\"},{\"All\"},\"SuperSum1\",\"4\","
             "\"All\",\"Amount\",\"All\",\"All\",\"All\",\"All\",\"All\",DATE(2024,1,1),DATE(2024,1,31))")},
        {"ActiveWorkbook.ProtectStructure", false},
        {"ActiveWorkbook.Sheets.Count", std::int32_t{1}},
        {"ActiveWorkbook.Sheets.Item(1).Name", std::string("Report")},
        {"ActiveWorkbook.ActiveSheet.Name", std::string("Report")},
        {"ActiveWorkbook.Worksheets.Item(1).Rows.Count", std::int32_t{65536}},
    };
    return record;
}

TEST_F(Ribbon, PutsTheLinesBehindACellIntoASheet) {
    const auto record = WorkbookWithAFormula();
    EXPECT_EQ(addIn_->OnConnection(RecordedObject(record).Get(), 0, object_.Get(), nullptr), S_OK);
    EXPECT_EQ(BoxAfter("OnLines"), "");
    const std::string added = "ActiveWorkbook.Worksheets.Add(,ActiveWorkbook.ActiveSheet)";
    for (const char* end :
         {".Name = Report B3", ".Value = date 45292", ".Formula = =SUM(W7:W79)", ".Value = Lines: 73",
          ".Value = Lines behind Report.B3 – LedgerFNC, ledger.cub"}) {
        EXPECT_THAT(record->lines,
                    testing::Contains(testing::AllOf(testing::StartsWith(added), testing::EndsWith(end))));
    }
    EXPECT_THAT(record->lines, testing::Contains(testing::HasSubstr("[date 45292|OBS, Segments|1, 4, 2|")));
}

TEST_F(Ribbon, TellsWhyACellHasItsValue) {
    folder_.Write("Qel.ini", "[Qel]\r\nQelUILanguage=1\r\n"); // Hebrew, without the suite's texts
    const auto record = WorkbookWithAFormula();
    EXPECT_EQ(addIn_->OnConnection(RecordedObject(record).Get(), 0, object_.Get(), nullptr), S_OK);
    std::string heading;
    Person::ActDuring([&] { EXPECT_EQ(Press("OnWhy"), S_OK); },
                      [&] {
                          const Person person(WhyFormDesign());
                          EXPECT_TRUE(::GetWindowLongW(person.Dialog(), GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
                          heading = WithoutDirection(person.Read(WhyFormControl::Heading));
                          EXPECT_THAT(person.Read(WhyFormControl::Statement),
                                      testing::StartsWith("WITH MEMBER [Date].DateSel"));
                          person.Click(WhyFormControl::Copy);
                          person.Click(WhyFormControl::Lines);
                          person.Click(WhyFormControl::EditFormula); // of a protected sheet
                          EXPECT_THAT(Person::Answer(IDOK), testing::HasSubstr("The cell is protected."));
                          person.Click(WhyFormControl::Close);
                          person.ExpectGone();
                      },
                      "OnWhy");
    EXPECT_THAT(heading, testing::StartsWith("Report.B3: -7581273."));
    EXPECT_THAT(TextOfClipboard(), testing::StartsWith(heading + "\r\n"));
    EXPECT_THAT(record->lines, testing::Contains(testing::EndsWith(".Name = Report B3")));
}

TEST_F(Ribbon, ShowsTheWizardsOnTheActiveCell) {
    const std::string call =
        "OrmFunctionQel4.OrmQelFunction.QelName(\"" QEL_TEST_CUBE "\",\"LedgerFNC\",C5,\"";
    const auto cancel = [](const Person& person) { person.Click(NameForm::CmdCancel); };
    const auto chooseAnother = [](const Person& person) {
        person.Expect(NameForm::TxtName, "Fixed assets");
        person.Type(NameForm::cmbmember, "4");
        person.Key(NameForm::cmbmember, VK_RETURN);
        person.Click(NameForm::CmdOK);
        Person::Answer(IDOK); // the local database was made when the dialog opened
    };
    const struct {
        const char* callback;
        const FormDesign& design;
        std::function<void(const Person& person)> act;
        std::vector<std::string> written;
    } visits[] = {
        {"OnFunction", FunctionFormDesign(), cancel, {}},
        {"OnName", NameFormDesign(), cancel, {}},
        {"OnEditFormula", NameFormDesign(), chooseAnother, {"R3C2 formula2 =UPPER(" + call + "4\"))"}},
    };
    for (const auto& visit : visits) {
        const TemporaryFolder suite; // a wizard that finds its database there says so
        key_.SetText(L"MDBPath", PathToUtf8(suite.Path("")));
        SheetObject sheet;
        sheet.SpillArrays();
        sheet.Put(3, 2, "=UPPER(" + call + "1\"))");
        sheet.Put(5, 3, "SuperSum1");
        EXPECT_EQ(addIn_->OnConnection(sheet.Application().Get(), 0, object_.Get(), nullptr), S_OK);
        Person::ActDuring([&] { EXPECT_EQ(Press(visit.callback), S_OK); },
                          [&] {
                              const Person person(visit.design);
                              visit.act(person);
                              person.ExpectGone();
                          },
                          visit.callback);
        EXPECT_EQ(sheet.Log(), visit.written) << visit.callback;
    }
}

} // namespace
} // namespace qel::test
