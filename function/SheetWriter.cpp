#include "function/SheetWriter.h"

#include "function/DetailTable.h"

namespace qel {

namespace {

constexpr std::int32_t checkedRows = 18, checkedColumns = 2;
/// The dates and the row to spare keep the format that the cells have.
constexpr std::int32_t rowsNotText = 3;
constexpr std::int16_t lastLanguageOfHebrewQuestion = 1;

/// The cell's place as the question shows it: the row's offset goes with the column, and the column's with
/// the row. The sheet's users know it so.
std::string PlaceText(const SheetRange& cell, std::int32_t rowOffset, std::int32_t columnOffset) {
    return std::to_string(cell.Column() + rowOffset) + "," + std::to_string(cell.Row() + columnOffset);
}

std::string OverwriteQuestion(const SheetRange& xlActiveCell, const SheetRange& activeCell,
                              std::int32_t rowOffset, std::int32_t columnOffset, std::int16_t iLang) {
    // The labels are Hebrew for language 1 alone, the question also for 0.
    if (iLang <= lastLanguageOfHebrewQuestion) {
        return " קיימים נתונים \r\n\r\n תא : " + PlaceText(activeCell, rowOffset, columnOffset) +
               "\r\n\r\nלהמשיך ? ";
    }
    return " There is data in \r\n\r\ncell : " + PlaceText(xlActiveCell, rowOffset, columnOffset) +
           "\r\n\r\nContinue ? ";
}

/// True when every cell that the table would overwrite is empty or given up.
bool MayOverwrite(const SheetRange& xlActiveCell, const SheetApplication& application, std::int16_t iLang,
                  MessageDisplay& messages) {
    const auto activeCell = application.ActiveCell();
    const std::int32_t row = activeCell->Row(), column = activeCell->Column();
    for (std::int32_t c = 0; c < checkedColumns; ++c) {
        for (std::int32_t r = 0; r < checkedRows; ++r) {
            if (application.Cells(row + r, column + c)->Value().Is<Empty>()) {
                continue;
            }
            const auto question = OverwriteQuestion(xlActiveCell, *activeCell, r, c, iLang);
            if (messages.Show(MessageBoxStyle::YesNoWithStop, "", question) != MessageBoxAnswer::Yes) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

void WriteFormula(const SheetApplication& application, const std::string& function,
                  const std::string& argumentText) {
    application.ActiveCell()->SetFormula("=OrmFunctionQel4.OrmQelFunction." + function + "(" + argumentText +
                                         ")");
}

void WriteDetailTable(const SheetRange& xlActiveCell, const std::string& argumentText, std::int16_t iLang,
                      MessageDisplay& messages) {
    const auto application = xlActiveCell.Application();
    const auto table = ComposeDetailTable(argumentText, iLang);
    if (!MayOverwrite(xlActiveCell, *application, iLang, messages)) {
        return;
    }
    const auto first = application->ActiveCell();
    const std::int32_t lastRow = table->bounds[0].upper;
    application->Range(*first, *first->Offset(lastRow - rowsNotText, 1))->SetNumberFormat("@");
    application->Range(*first, *first->Offset(lastRow, 1))->SetFormula(table);
}

} // namespace qel
