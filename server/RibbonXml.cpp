#include "server/RibbonXml.h"

#include <fmt/format.h>

#include <span>

namespace qel::server {

namespace {

/// A text in English and Hebrew, without characters that mean something in XML.
using Texts = const char* [2];

struct Button {
    const char *id, *callback;
    const char* image; ///< one of Excel's own; null for none
    Texts label, tip;
};

struct Group {
    const char* id;
    Texts label;
    std::span<const Button> buttons;
};

constexpr Button formulaButtons[] = {
    {"qelFunction",
     "OnFunction",
     "FunctionWizard",
     {"Function…", "פונקציה…"},
     {"Choose what a value adds up, and write its formula into the cell.",
      "בחירת מה שהערך מסכם, וכתיבת הנוסחה לתא."}},
    {"qelName",
     "OnName",
     "NameManager",
     {"Name…", "שם…"},
     {"Choose a summary group, and write the formula of its name into the cell.",
      "בחירת סעיף מרמה, וכתיבת נוסחת השם שלו לתא."}},
    {"qelEditFormula",
     "OnEditFormula",
     nullptr,
     {"Edit formula", "עריכת נוסחה"},
     {"Open the wizard that wrote the formula of the cell.", "פתיחת האשף שכתב את הנוסחה של התא."}},
};

constexpr Button cellButtons[] = {
    {"qelWhy",
     "OnWhy",
     "FormulaEvaluate",
     {"Why this value…", "מדוע הערך הזה…"},
     {"Tell how the cell's formula comes to its value, and what a 0 hides.",
      "הסבר כיצד הנוסחה של התא מגיעה לערכה, ומה מסתתר מאחורי 0."}},
    {"qelLines",
     "OnLines",
     "TracePrecedents",
     {"Lines behind it…", "השורות מאחוריו…"},
     {"Put the ledger lines that the cell's formula adds up into a new sheet.",
      "הצגת השורות שהנוסחה של התא מסכמת, בגיליון חדש."}},
};

constexpr Button workbookButtons[] = {
    {"qelRecalculate",
     "OnRecalculate",
     "CalculateNow",
     {"Recalculate", "חישוב מחדש"},
     {"Calculate all formulas of all open workbooks anew.",
      "חישוב מחדש של כל הנוסחאות בכל החוברות הפתוחות."}},
    {"qelHelp", "OnHelp", "Help", {"Help", "עזרה"}, {"Open the documentation.", "פתיחת התיעוד."}},
};

constexpr Group groups[] = {{"qelFormulas", {"Formulas", "נוסחאות"}, formulaButtons},
                            {"qelCell", {"Cell", "תא"}, cellButtons},
                            {"qelWorkbook", {"Workbook", "חוברת עבודה"}, workbookButtons}};

std::string Markup(const Button& button, bool isHebrew) {
    const std::string image =
        button.image != nullptr ? fmt::format(R"( imageMso="{}" size="large")", button.image) : std::string();
    return fmt::format(R"(<button id="{}" label="{}"{} screentip="{}" supertip="{}" onAction="{}"/>)",
                       button.id, button.label[isHebrew], image, button.label[isHebrew], button.tip[isHebrew],
                       button.callback);
}

std::string Markup(const Group& group, bool isHebrew) {
    std::string buttons;
    for (const Button& button : group.buttons) {
        buttons += Markup(button, isHebrew);
    }
    return fmt::format(R"(<group id="{}" label="{}">{}</group>)", group.id, group.label[isHebrew], buttons);
}

} // namespace

std::string RibbonXml(bool isHebrew) {
    std::string content;
    for (const Group& group : groups) {
        content += Markup(group, isHebrew);
    }
    return fmt::format(
        R"(<customUI xmlns="http://schemas.microsoft.com/office/2009/07/customui"><ribbon><tabs>)"
        R"(<tab id="qelTab" label="Qel">{}</tab></tabs></ribbon></customUI>)",
        content);
}

std::string NoCellText(bool isHebrew) {
    return isHebrew ? "יש לפתוח חוברת עבודה ולבחור תא." : "Open a workbook and choose a cell.";
}

std::string NoHelpText(bool isHebrew) {
    return isHebrew ? "התיעוד אינו מותקן. גרסה:" : "The documentation is not installed. This is:";
}

} // namespace qel::server
