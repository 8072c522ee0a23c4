#include "text/CaseFold.h"
#include "workbook/ContentLimits.h"
#include "workbook/WorkbookError.h"
#include "workbook/WorkbookReaders.h"

#include <algorithm>

// .ods, as OpenDocument describes it.

namespace qel {

namespace {

constexpr std::uint32_t mostRepeated = 1U << 20U;

std::uint32_t Repeated(const pugi::xml_node& node, const char* attribute) {
    return std::clamp(node.attribute(attribute).as_uint(1), 1U, mostRepeated);
}

/// "of:=…" and "=…" without what stands before the formula.
std::string_view WithoutOpening(std::string_view formula) {
    const auto equals = formula.find('=');
    return equals == std::string_view::npos ? formula : formula.substr(equals + 1);
}

/// The text of a paragraph. Several blanks count as one, and those at its ends do not count; an element of
/// its own stands for each that does.
class ParagraphText {
public:
    explicit ParagraphText(const pugi::xml_node& paragraph) { Append(paragraph, 0); }

    std::string Text() && {
        if (isBehindBlank_ && !text_.empty()) {
            text_.pop_back();
        }
        return std::move(text_);
    }

private:
    void Append(const pugi::xml_node& node, int depth) {
        constexpr int deepestSpan = 64;
        if (depth > deepestSpan) {
            throw WorkbookError("its texts are formatted too deeply");
        }
        for (const auto& child : node.children()) {
            const std::string_view name = child.name();
            if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
                AppendCharacters(child.value());
            } else if (name == "text:s") {
                Keep(std::min(child.attribute("text:c").as_uint(1), mostRepeated), ' ');
            } else if (name == "text:tab") {
                Keep(1, '\t');
            } else if (name == "text:span" || name == "text:a") {
                Append(child, depth + 1);
            }
        }
    }

    void AppendCharacters(std::string_view characters) {
        for (const char c : characters) {
            const bool isBlank = std::string_view(" \t\r\n").find(c) != std::string_view::npos;
            if (!isBlank || !isBehindBlank_) {
                text_ += isBlank ? ' ' : c;
            }
            isBehindBlank_ = isBlank;
        }
    }

    void Keep(std::size_t count, char blank) {
        constexpr std::size_t longest = std::size_t{1} << 24U;
        if (count > longest - std::min(longest, text_.size())) {
            throw WorkbookError("the text of one of its cells has more than 16 MiB");
        }
        text_.append(count, blank);
        isBehindBlank_ = false;
    }

    std::string text_;
    bool isBehindBlank_ = true; ///< or at the paragraph's beginning
};

std::string ParagraphsOf(const pugi::xml_node& cell) {
    std::string text;
    for (const auto& paragraph : cell.children("text:p")) {
        text += text.empty() ? "" : "\n";
        text += ParagraphText(paragraph).Text();
    }
    return text;
}

Variant ValueOf(const pugi::xml_node& cell, bool hasFormula, double daysBefore) {
    const std::string_view type = cell.attribute("office:value-type").value();
    if (std::string_view(cell.attribute("calcext:value-type").value()) == "error") {
        return ErrorValue{};
    }
    if (type == "string") {
        const auto value = cell.attribute("office:string-value");
        return value ? std::string(value.value()) : ParagraphsOf(cell);
    }
    if (type == "date") {
        return DateOfText(cell.attribute("office:date-value").value(), daysBefore);
    }
    if (type == "boolean") {
        return std::string_view(cell.attribute("office:boolean-value").value()) == "true";
    }
    if (type == "float" || type == "currency" || type == "percentage") {
        return cell.attribute("office:value").as_double();
    }
    return type.empty() && !hasFormula ? Variant() : Variant(Null{});
}

/// Reads the rows of one sheet.
class RowReader {
public:
    RowReader(ContentLimits& limits, SheetContent& sheet, double daysBefore)
        : limits_(limits), sheet_(sheet), daysBefore_(daysBefore) {}

    /// Rows may stand in groups and headers.
    void ReadRows(const pugi::xml_node& parent, int depth) {
        constexpr int deepestGroup = 64;
        if (depth > deepestGroup) {
            throw WorkbookError("its rows are grouped too deeply");
        }
        for (const auto& node : parent.children()) {
            const std::string_view name = node.name();
            if (name == "table:table-row") {
                const std::uint32_t times = Repeated(node, "table:number-rows-repeated");
                ReadRow(node, times);
                next_ += times;
            } else if (name == "table:table-row-group" || name == "table:table-header-rows" ||
                       name == "table:table-rows") {
                ReadRows(node, depth + 1);
            }
        }
    }

private:
    void ReadRow(const pugi::xml_node& row, std::uint32_t times) {
        CellPlace place{next_, 0};
        for (const auto& cell : row.children()) {
            const std::string_view name = cell.name();
            if (name == "table:table-cell" || name == "table:covered-table-cell") {
                const std::uint32_t columns = Repeated(cell, "table:number-columns-repeated");
                ReadCell(cell, place, times, columns);
                place.column += columns;
            }
        }
    }

    void ReadCell(const pugi::xml_node& cell, CellPlace first, std::uint32_t rows, std::uint32_t columns) {
        const std::string_view formula = WithoutOpening(cell.attribute("table:formula").value());
        const Variant value = ValueOf(cell, !formula.empty(), daysBefore_);
        const bool isOurs = MayCallOurs(formula);
        if (value.Is<Empty>() && !isOurs) {
            return;
        }
        limits_.Repeat(sheet_, std::uint64_t{rows} * columns, isOurs);
        for (std::uint64_t i = 0; i < std::uint64_t{rows} * columns; ++i) {
            const CellPlace each{first.row + static_cast<std::uint32_t>(i / columns),
                                 first.column + static_cast<std::uint32_t>(i % columns)};
            limits_.Keep(sheet_, each, value);
            if (isOurs) {
                limits_.Keep(sheet_, {each, std::string(formula)});
            }
        }
    }

    ContentLimits& limits_;
    SheetContent& sheet_;
    double daysBefore_;
    std::uint32_t next_ = 0;
};

void ReadNames(WorkbookContent& workbook, const pugi::xml_node& parent, const std::string& prefix) {
    for (const auto& entry : parent.child("table:named-expressions").children()) {
        const std::string range = entry.attribute("table:cell-range-address").value();
        workbook.names.emplace(prefix + FoldCase(entry.attribute("table:name").value()),
                               range.empty()
                                   ? std::string(WithoutOpening(entry.attribute("table:expression").value()))
                                   : '[' + range + ']');
    }
}

} // namespace

WorkbookContent ReadOpenDocument(ZipFile& file) {
    const std::string manifest = "META-INF/manifest.xml";
    if (file.Has(manifest) && file.Read(manifest).find(":encryption-data") != std::string::npos) {
        throw WorkbookError("it needs a password; save it without one");
    }
    pugi::xml_document document;
    LoadPart(file, "content.xml", document, pugi::parse_default | pugi::parse_ws_pcdata);
    const auto content = document.document_element().child("office:body").child("office:spreadsheet");
    if (!content) {
        throw WorkbookError("it is no spreadsheet");
    }
    WorkbookContent workbook;
    workbook.isOpenDocument = true;
    const auto nullDate = content.child("table:calculation-settings").child("table:null-date");
    const Variant firstDay = DateOfText(nullDate.attribute("table:date-value").value(), 0);
    workbook.daysBefore = firstDay.Is<double>() ? firstDay.As<double>() : 0;
    ContentLimits limits;
    for (const auto& table : content.children("table:table")) {
        const std::string prefix = std::to_string(workbook.sheets.size()) + '!';
        SheetContent& sheet = limits.AddSheet(workbook, table.attribute("table:name").value());
        RowReader(limits, sheet, workbook.daysBefore).ReadRows(table, 0);
        ReadNames(workbook, table, prefix);
    }
    ReadNames(workbook, content, "");
    return workbook;
}

} // namespace qel
