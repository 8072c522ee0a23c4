#include "platform/tables/RecordsetXml.h"

#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>

namespace qel {

namespace {

constexpr auto providerError = static_cast<std::int32_t>(0x80004005);
constexpr const char* source = "OrmFuncQel4 recordset reader";

constexpr std::string_view schemaUri = "uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882";
constexpr std::string_view datatypeUri = "uuid:C2F41010-65B3-11d1-A29F-00AA00C14882";
constexpr std::string_view rowsetUri = "urn:schemas-microsoft-com:rowset";
constexpr std::string_view rowUri = "#RowsetSchema";

struct Column {
    std::string attribute; ///< of a row's element
    std::string name;
    int ordinal = 0;
    bool isInteger = false;
};

int IntegerIn(const std::string& text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// A document being read.
class Reading {
public:
    Reading(const XmlElement& root, const std::string& file) : root_(root), file_(file) {}

    PersistedTable Run() {
        if (root_.name != "xml") {
            throw Fault("is not a recordset: its outermost element is not <xml>");
        }
        ReadPrefixes();
        ReadColumns();
        ReadRows();
        for (const auto& column : columns_) {
            table_.columns.push_back(column.name);
        }
        return std::move(table_);
    }

private:
    AutomationError Fault(std::string_view fault) const { return RecordsetFault(file_, fault); }

    void ReadPrefixes() {
        for (const auto& [name, uri] : root_.attributes) {
            constexpr std::string_view declaration = "xmlns:";
            if (!name.starts_with(declaration)) {
                continue;
            }
            const std::string prefix = name.substr(declaration.size()) + ":";
            if (EqualIgnoringCase(uri, schemaUri)) {
                schema_ = prefix;
            } else if (EqualIgnoringCase(uri, datatypeUri)) {
                datatype_ = prefix;
            } else if (EqualIgnoringCase(uri, rowsetUri)) {
                rowset_ = prefix;
            } else if (EqualIgnoringCase(uri, rowUri)) {
                row_ = prefix;
            }
        }
        if (schema_.empty() || rowset_.empty()) { // the rows' prefix may be missing when there are no rows
            throw Fault("is not a recordset: its namespaces are missing");
        }
    }

    void ReadColumns() {
        for (const auto& element : root_.Child(schema_ + "Schema").Child(schema_ + "ElementType").children) {
            if (element.name == schema_ + "AttributeType") {
                columns_.push_back(ReadColumn(element));
            }
        }
        if (columns_.empty()) {
            throw Fault("is damaged: its schema names no column");
        }
        std::stable_sort(columns_.begin(), columns_.end(),
                         [](const Column& a, const Column& b) { return a.ordinal < b.ordinal; });
    }

    Column ReadColumn(const XmlElement& element) const {
        const auto valueOf = [](const std::string* value) { return value ? *value : std::string(); };
        Column column;
        column.attribute = valueOf(element.Attribute("name"));
        // A name that XML does not allow is stored in another attribute.
        const std::string* const name = element.Attribute(rowset_ + "name");
        column.name = name ? *name : column.attribute;
        column.ordinal = IntegerIn(valueOf(element.Attribute(rowset_ + "number")));
        const std::string* type = element.Child(schema_ + "datatype").Attribute(datatype_ + "type");
        if (!type) {
            type = element.Attribute(datatype_ + "type");
        }
        for (const char* integer : {"int", "i1", "i2", "i4", "ui1", "ui2"}) {
            column.isInteger = column.isInteger || valueOf(type) == integer;
        }
        return column;
    }

    void ReadRows() {
        const XmlElement& data = root_.Child(rowset_ + "data");
        if (data.name.empty()) {
            throw Fault("is damaged: it holds no data");
        }
        for (const auto& element : data.children) {
            if (element.name == row_ + "row") {
                AddRow(element);
            } else if (element.name == rowset_ + "insert" || element.name == rowset_ + "update") {
                AddPendingRows(element);
            }
        }
    }

    /// Inserted and changed rows; the original of a changed row has its own element.
    void AddPendingRows(const XmlElement& pending) {
        const XmlElement& original = pending.Child(rowset_ + "original").Child(row_ + "row");
        for (const auto& row : pending.children) {
            if (row.name == row_ + "row") {
                AddRow(row, original);
            }
        }
    }

    void AddRow(const XmlElement& row, const XmlElement& original = {}) {
        std::vector<Variant> values;
        for (const auto& column : columns_) {
            const std::string* text = row.Attribute(column.attribute);
            if (!text) {
                text = original.Attribute(column.attribute);
            }
            values.push_back(text ? ValueOf(column, *text) : Variant(Null{}));
        }
        table_.rows.push_back(std::move(values));
    }

    Variant ValueOf(const Column& column, const std::string& text) const {
        if (!column.isInteger) {
            return text;
        }
        std::int32_t number = 0;
        const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (failure != std::errc() || end != text.data() + text.size()) {
            throw Fault(fmt::format("is damaged: row {}, column '{}' holds '{}', not a whole number",
                                    table_.rows.size() + 1, column.name, text));
        }
        return number;
    }

    const XmlElement& root_;
    const std::string& file_;
    std::string schema_, datatype_, rowset_, row_; ///< prefixes with their colons
    std::vector<Column> columns_;
    PersistedTable table_;
};

} // namespace

AutomationError RecordsetFault(const std::string& file, std::string_view fault) {
    return {providerError, fmt::format("The file '{}' {}.", file, fault), source};
}

void RequireXmlForm(const std::string& bytes, const std::string& file) {
    if (bytes.empty()) {
        throw RecordsetFault(file, "is empty");
    }
    if (bytes.starts_with("TG!")) {
        throw RecordsetFault(file,
                             "is a recordset in binary form, which only Windows' own provider MSPersist can "
                             "read; save it as XML (adPersistXML)");
    }
}

std::string RecordsetBytes(const std::string& file) {
    const auto path = PathFromSetting(file);
    std::error_code failed;
    std::ifstream stream(path, std::ios::binary);
    if (!stream || std::filesystem::is_directory(path, failed)) {
        throw RecordsetFault(file, "cannot be read");
    }
    std::string bytes(std::istreambuf_iterator<char>(stream), {});
    RequireXmlForm(bytes, file);
    return bytes;
}

PersistedTable TableFromXml(const XmlElement& root, const std::string& file) {
    return Reading(root, file).Run();
}

} // namespace qel
