#include "text/CaseFold.h"
#include "workbook/ContentLimits.h"
#include "workbook/WorkbookError.h"
#include "workbook/WorkbookReaders.h"

#include <fmt/format.h>

// .xlsx and .xlsm, as ECMA-376 describes them.

namespace qel {

namespace {

/// Programs may write every element with a prefix.
bool IsNamed(const pugi::xml_node& node, std::string_view name) {
    const std::string_view full = node.name();
    const auto colon = full.find(':');
    return (colon == std::string_view::npos ? full : full.substr(colon + 1)) == name;
}

pugi::xml_node Child(const pugi::xml_node& node, std::string_view name) {
    return node.find_child([name](const pugi::xml_node& child) { return IsNamed(child, name); });
}

/// The text of a string: its runs below each other, without phonetic ones.
std::string TextOfRuns(const pugi::xml_node& node) {
    std::string text;
    for (const auto& child : node.children()) {
        if (IsNamed(child, "t")) {
            text += child.text().get();
        } else if (IsNamed(child, "r")) {
            text += Child(child, "t").text().get();
        }
    }
    return text;
}

/// A target as a part's name: it counts from the folder xl/, or with a slash from the top.
std::string PartOfTarget(std::string_view target) {
    return target.starts_with('/') ? std::string(target.substr(1)) : "xl/" + std::string(target);
}

class OpenXmlReader {
public:
    explicit OpenXmlReader(ZipFile& file) : file_(file) {}

    WorkbookContent Read() {
        ReadSharedTexts();
        pugi::xml_document document, relations;
        LoadPart(file_, "xl/workbook.xml", document);
        LoadPart(file_, "xl/_rels/workbook.xml.rels", relations);
        const auto root = document.document_element();
        if (Child(root, "workbookPr").attribute("date1904").as_bool()) {
            constexpr double from1899To1904 = 1462;
            workbook_.daysBefore = from1899To1904;
        }
        for (const auto& entry : Child(root, "sheets").children()) {
            ReadSheet(entry, relations.document_element());
        }
        for (const auto& entry : Child(root, "definedNames").children()) {
            const std::string sheet = entry.attribute("localSheetId").value();
            workbook_.names.emplace((sheet.empty() ? "" : sheet + '!') +
                                        FoldCase(entry.attribute("name").value()),
                                    entry.text().get());
        }
        return std::move(workbook_);
    }

private:
    void ReadSharedTexts() {
        const std::string part = "xl/sharedStrings.xml";
        if (!file_.Has(part)) {
            return;
        }
        pugi::xml_document document;
        LoadPart(file_, part, document);
        for (const auto& text : document.document_element().children()) {
            texts_.push_back(TextOfRuns(text));
        }
    }

    void ReadSheet(const pugi::xml_node& entry, const pugi::xml_node& relations) {
        SheetContent& sheet = limits_.AddSheet(workbook_, entry.attribute("name").value());
        std::string_view id;
        for (const auto& attribute : entry.attributes()) {
            id = std::string_view(attribute.name()).ends_with(":id") ? attribute.value() : id;
        }
        const auto relation = relations.find_child(
            [id](const pugi::xml_node& each) { return each.attribute("Id").value() == id; });
        if (!std::string_view(relation.attribute("Type").value()).ends_with("/worksheet")) {
            return; // a chart sheet or a sheet of Excel 4 macros
        }
        pugi::xml_document document;
        LoadPart(file_, PartOfTarget(relation.attribute("Target").value()), document);
        shared_.clear();
        CellPlace next;
        for (const auto& row : Child(document.document_element(), "sheetData").children()) {
            next = {row.attribute("r").as_uint(next.row + 1) - 1, 0};
            for (const auto& cell : row.children()) {
                std::string_view rest;
                next = ReadCellName(cell.attribute("r").value(), rest).value_or(next);
                ReadCell(sheet, cell, next);
                ++next.column;
            }
        }
    }

    void ReadCell(SheetContent& sheet, const pugi::xml_node& cell, CellPlace place) {
        const auto formula = Child(cell, "f");
        Variant value = ValueOf(cell, !formula.empty());
        if (!value.Is<Empty>()) {
            limits_.Keep(sheet, place, std::move(value));
        }
        if (formula.empty()) {
            return;
        }
        std::string text = formula.text().get();
        if (std::string_view(formula.attribute("t").value()) == "shared") {
            const auto [first, isFirst] = shared_.try_emplace(formula.attribute("si").value());
            if (isFirst || !text.empty()) {
                first->second = {place, text};
            } else if (MayCallOurs(first->second.text)) {
                const CellPlace from = first->second.place;
                text = MovedFormula(first->second.text, std::int64_t{place.row} - from.row,
                                    std::int64_t{place.column} - from.column);
            }
        }
        if (MayCallOurs(text)) {
            limits_.Keep(sheet, {place, std::move(text)});
        }
    }

    Variant ValueOf(const pugi::xml_node& cell, bool hasFormula) const {
        const std::string_view type = cell.attribute("t").value();
        const auto value = Child(cell, "v");
        if (type == "inlineStr") {
            return TextOfRuns(Child(cell, "is"));
        }
        if (!value) {
            return hasFormula ? Variant(Null{}) : Variant();
        }
        if (type == "s") {
            const auto number = value.text().as_ullong(texts_.size());
            if (number >= texts_.size()) {
                throw WorkbookError("a cell names a text that is not there");
            }
            return texts_[number];
        }
        if (type == "b") {
            return value.text().as_int() != 0;
        }
        if (type == "e") {
            return ErrorValue{};
        }
        if (type == "d") {
            return DateOfText(value.text().get(), workbook_.daysBefore);
        }
        return type == "str" ? Variant(std::string(value.text().get())) : Variant(value.text().as_double());
    }

    ZipFile& file_;
    ContentLimits limits_;
    WorkbookContent workbook_;
    std::vector<std::string> texts_;
    std::map<std::string, SheetFormula> shared_; ///< of the sheet that is read
};

} // namespace

WorkbookContent ReadOpenXml(ZipFile& file) { return OpenXmlReader(file).Read(); }

} // namespace qel
