#include "why/SheetCheck.h"

#include "lang/StringTable.h"
#include "lines/LinesOfCell.h"
#include "platform/value/AutomationError.h"
#include "wizard/OwnText.h"

#include <algorithm>
#include <utility>

namespace qel {

SheetCheck::SheetCheck(const Providers& providers, const Locale& locale, std::int16_t language,
                       CubePath fullPath)
    : locale_(locale), language_(language), fullPath_(std::move(fullPath)), batch_(providers),
      judge_(providers, locale, batch_) {}

void SheetCheck::Run(const WorkbookContent& content, const ReadCell& read,
                     const std::function<void(double share)>& progress) {
    auto calls = FindSheetCalls(content, locale_);
    formulas_ = calls.size();
    const auto isOfOtherCell = [](const SheetCall& left, const SheetCall& right) {
        return left.sheet != right.sheet || left.place.row != right.place.row ||
               left.place.column != right.place.column;
    };
    constexpr std::size_t step = 64;
    for (std::size_t begin = 0, told = 0; begin < calls.size();) {
        if (begin >= told) {
            progress(static_cast<double>(begin) / static_cast<double>(calls.size()));
            told = begin + step;
        }
        std::size_t end = begin + 1;
        while (end < calls.size() && !isOfOtherCell(calls[begin], calls[end])) {
            ++end;
        }
        CheckCell({content.sheets[calls[begin].sheet].name, calls[begin].place},
                  std::span(calls).subspan(begin, end - begin), read);
        begin = end;
    }
}

void SheetCheck::CheckCell(const Cell& cell, std::span<SheetCall> calls, const ReadCell& read) {
    const auto unread =
        std::find_if(calls.begin(), calls.end(), [](const SheetCall& call) { return call.isUnread; });
    if (unread != calls.end()) {
        return CheckByReading(cell, read, unread->fault);
    }
    for (SheetCall& call : calls) {
        if (!call.call) {
            Find(cell, call.fault);
            continue;
        }
        std::visit([&](auto& arguments) { arguments.cubeFile = FullPath(arguments.cubeFile); },
                   call.call->arguments);
        Judge(cell, *call.call);
    }
}

void SheetCheck::CheckByReading(const Cell& cell, const ReadCell& read, const std::string& unread) {
    try {
        const CellCalls calls = read(cell.sheet, cell.place);
        if (calls.values.empty() && calls.names.empty()) { // such as in an array formula
            Find(cell, unread);
        }
        for (const CellCall& value : calls.values) {
            if (value.faulty.empty()) {
                Judge(cell, {WorksheetFunction::QeLF1, value.call, value.given});
            } else {
                Find(cell, ResourceString(OwnTextNumber::FaultyArguments, language_) + ' ' +
                               FaultyNames(value, language_ == Language::Hebrew));
            }
        }
        for (const NameCall& name : calls.names) {
            Judge(cell, {WorksheetFunction::QelName, name});
        }
    } catch (const AutomationError& error) {
        Find(cell, error.Description());
    }
}

void SheetCheck::Judge(const Cell& cell, const FormulaCall& call) {
    const Judgement judgement = judge_.Of(call);
    if (judgement.verdict != Verdict::Sound) {
        Find(cell, JudgementText(judgement, language_));
    }
}

void SheetCheck::Find(const Cell& cell, std::string reason) {
    findings_.push_back({cell.sheet, cell.place, std::move(reason)});
}

const std::string& SheetCheck::FullPath(const std::string& cubeFile) {
    const auto [path, isNew] = paths_.try_emplace(cubeFile);
    if (isNew) {
        path->second = fullPath_(cubeFile);
    }
    return path->second;
}

} // namespace qel
