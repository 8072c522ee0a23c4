#include "support/ModError.h"

#include "tests/helpers/doubles/StoreDoubles.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

struct LayoutCase {
    const char* what;
    PendingError error;
    std::string extraText, functionName, moduleName, text;
};

const LayoutCase layoutCases[] = {
    {"the error alone: one empty line before the source",
     {13, "Type mismatch", "OrmFuncQel4"},
     "",
     "",
     "",
     "Error : 13\r\n\r\nType mismatch\r\n\r\nSource : OrmFuncQel4"},
    {"names without a section: one empty line before them",
     {13, "Type mismatch", "OrmFuncQel4"},
     "",
     "OpenDb",
     "frmNameWizz",
     "Error : 13\r\n\r\nType mismatch\r\n\r\nFunction : OpenDb\r\nModule : frmNameWizz\r\nSource : "
     "OrmFuncQel4"},
    {"everything: two empty lines before the section",
     {9, "Subscript out of range", "OrmFuncQel4", 120},
     "Error with the date in the Cube\r\nContinue with another cube",
     "SetDate",
     "frmFuncQelWiz",
     "Error : 9\r\n\r\nSubscript out of range\r\n\r\nError with the date in the Cube\r\nContinue with "
     "another cube\r\n"
     "\r\n\r\nCode Section : 120\r\nFunction : SetDate\r\nModule : frmFuncQelWiz\r\nSource : OrmFuncQel4"},
    {"a provider's number is negative; nothing else is known",
     {-2147217900, "", ""},
     "",
     "",
     "ModSetCube",
     "Error : -2147217900\r\n\r\n\r\n\r\nModule : ModSetCube\r\nSource : "},
    {"a negative section is no section",
     {5, "x", "y", -1},
     "",
     "",
     "",
     "Error : 5\r\n\r\nx\r\n\r\nSource : y"},
};

TEST(ModError, LaysTheReportOut) {
    for (const auto& c : layoutCases) {
        EXPECT_EQ(ModError::ComposeErrorText(c.error, c.extraText, c.functionName, c.moduleName), c.text)
            << c.what;
    }
}

TEST(ModError, ShowsOneWarningBoxWhateverTheReservedArguments) {
    test::RecordedMessages messages;
    const PendingError error{5, "x", "y"};
    ModError::ReportError(messages, error, "", "F", "M");
    ModError::ReportError(messages, error, "", "F", "M", 7, 1);
    ASSERT_EQ(messages.shown.size(), 2U);
    EXPECT_EQ(messages.shown[0].style, 48);
    EXPECT_EQ(messages.shown[0].title, "OrmFuncQel4");
    EXPECT_EQ(messages.shown[1], messages.shown[0]);
    messages.broken = true;
    EXPECT_NO_THROW(ModError::ReportError(messages, error, "", "F", "M"));
}

template <class Raise>
PendingError TakenFrom(const Raise& raise) {
    try {
        raise();
        ADD_FAILURE() << "nothing was raised";
        return {};
    } catch (...) {
        return ModError::CurrentError(30);
    }
}

TEST(ModError, TakesTheErrorThatIsBeingHandled) {
    const auto automation = TakenFrom([] { throw AutomationError(-2147217865, "no cube", "MSOLAP"); });
    EXPECT_EQ(automation.number, -2147217865);
    EXPECT_EQ(automation.description, "no cube");
    EXPECT_EQ(automation.source, "MSOLAP");
    EXPECT_EQ(automation.codeSection, 30);
    EXPECT_EQ(TakenFrom([] { throw std::runtime_error("disk"); }).description, "disk");
    EXPECT_EQ(TakenFrom([] { throw 17; }).description, "An unknown error has occurred!");
}

} // namespace
} // namespace qel
