#include "support/ModError.h"

#include "tests/helpers/doubles/StoreDoubles.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

TEST(ModError, LaysTheReportOut) {
    const auto text = ModError::ComposeErrorText;
    const PendingError mismatch{13, "Type mismatch", "OrmFuncQel4"};
    EXPECT_EQ(text(mismatch, "", "", ""), "Error : 13\r\n\r\nType mismatch\r\n\r\nSource : OrmFuncQel4")
        << "one empty line before the source";
    EXPECT_EQ(text(mismatch, "", "OpenDb", "frmNameWizz"),
              "Error : 13\r\n\r\nType mismatch\r\n\r\nFunction : OpenDb\r\nModule : frmNameWizz\r\n"
              "Source : OrmFuncQel4")
        << "one empty line before the names";
    EXPECT_EQ(text({9, "Subscript out of range", "OrmFuncQel4", 120}, "Error with the date\r\nContinue",
                   "SetDate", "frmFuncQelWiz"),
              "Error : 9\r\n\r\nSubscript out of range\r\n\r\nError with the date\r\nContinue\r\n\r\n\r\n"
              "Code Section : 120\r\nFunction : SetDate\r\nModule : frmFuncQelWiz\r\nSource : OrmFuncQel4")
        << "two empty lines before the section";
    EXPECT_EQ(text({-2147217900, "", ""}, "", "", "ModSetCube"),
              "Error : -2147217900\r\n\r\n\r\n\r\nModule : ModSetCube\r\nSource : ");
    EXPECT_EQ(text({5, "x", "y", -1}, "", "", ""), "Error : 5\r\n\r\nx\r\n\r\nSource : y")
        << "a negative section is no section";
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
