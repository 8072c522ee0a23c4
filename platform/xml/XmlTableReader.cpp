#include "platform/xml/XmlTableReader.h"

#include "platform/AutomationError.h"
#include "platform/PathText.h"
#include "platform/Text.h"

#include <fmt/format.h>
#include <pugixml.hpp>

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

AutomationError FileFault(const std::string& name, std::string_view fault) {
    return {providerError, fmt::format("The file '{}' {}.", name, fault), source};
}

/// One file while it is read.
class Reading {
public:
    explicit Reading(const std::string& name) : name_(name) {}

    PersistedTable Run(const std::string& bytes) {
        RequireXml(bytes);
        const auto document = Parse(bytes);
        root_ = document->document_element();
        if (std::string_view(root_.name()) != "xml")
            throw Fault("is no recordset: its outermost element is not <xml>");
        ReadPrefixes();
        ReadColumns();
        ReadRows();
        for (const auto& column : columns_)
            table_.columns.push_back(column.name);
        return std::move(table_);
    }

private:
    AutomationError Fault(std::string_view fault) const { return FileFault(name_, fault); }

    void RequireXml(const std::string& bytes) const {
        if (bytes.empty())
            throw Fault("is empty");
        if (bytes.starts_with("TG!"))
            throw Fault(
                "is a recordset in binary form, which only Windows can read; save it as XML (adPersistXML)");
    }

    std::unique_ptr<pugi::xml_document> Parse(const std::string& text) const {
        auto document = std::make_unique<pugi::xml_document>();
        const auto result =
            document->load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_declaration);
        if (!result)
            throw Fault(fmt::format("is damaged at byte {}: {}", result.offset, result.description()));
        const std::string encoding = document->child("xml").attribute("encoding").value();
        if (!encoding.empty() && !EqualIgnoringCase(encoding, "utf-8") &&
            !EqualIgnoringCase(encoding, "utf-16"))
            throw Fault(fmt::format("is written in '{}'; save it as UTF-8", encoding));
        return document;
    }

    void ReadPrefixes() {
        for (const auto& attribute : root_.attributes()) {
            const std::string_view name = attribute.name();
            constexpr std::string_view declaration = "xmlns:";
            if (!name.starts_with(declaration))
                continue;
            const std::string prefix = std::string(name.substr(declaration.size())) + ":";
            if (EqualIgnoringCase(attribute.value(), schemaUri))
                schema_ = prefix;
            else if (EqualIgnoringCase(attribute.value(), datatypeUri))
                datatype_ = prefix;
            else if (EqualIgnoringCase(attribute.value(), rowsetUri))
                rowset_ = prefix;
            else if (EqualIgnoringCase(attribute.value(), rowUri))
                row_ = prefix;
        }
        if (schema_.empty() || rowset_.empty() || row_.empty())
            throw Fault("is no recordset: it lacks the namespaces of one");
    }

    void ReadColumns() {
        const auto type = root_.child((schema_ + "Schema").c_str()).child((schema_ + "ElementType").c_str());
        // The range keeps the pointer to the name, not the name.
        const std::string columnElement = schema_ + "AttributeType";
        for (const auto& attribute : type.children(columnElement.c_str()))
            columns_.push_back(ReadColumn(attribute));
        if (columns_.empty())
            throw Fault("is damaged: its schema names no column");
        std::stable_sort(columns_.begin(), columns_.end(),
                         [](const Column& a, const Column& b) { return a.ordinal < b.ordinal; });
    }

    Column ReadColumn(const pugi::xml_node& attribute) const {
        Column column;
        column.attribute = attribute.attribute("name").value();
        // A name that XML does not allow stands in an attribute of its own.
        column.name = attribute.attribute((rowset_ + "name").c_str()).as_string(column.attribute.c_str());
        column.ordinal = attribute.attribute((rowset_ + "number").c_str()).as_int();
        const std::string typeName = datatype_ + "type";
        const auto datatype = attribute.child((schema_ + "datatype").c_str()).attribute(typeName.c_str());
        const std::string type = datatype ? datatype.value() : attribute.attribute(typeName.c_str()).value();
        for (const char* integer : {"int", "i1", "i2", "i4", "ui1", "ui2"})
            column.isInteger = column.isInteger || type == integer;
        return column;
    }

    void ReadRows() {
        const auto data = root_.child((rowset_ + "data").c_str());
        if (!data)
            throw Fault("is damaged: it holds no data");
        for (const auto& element : data.children()) {
            const std::string_view name = element.name();
            if (name == row_ + "row")
                AddRow(element);
            else if (name == rowset_ + "insert" || name == rowset_ + "update")
                AddPendingRows(element);
        }
    }

    /// Rows that were inserted or changed; an original that was changed stands in an element of its own.
    void AddPendingRows(const pugi::xml_node& pending) {
        const std::string rowElement = row_ + "row";
        const auto original = pending.child((rowset_ + "original").c_str()).child(rowElement.c_str());
        for (const auto& row : pending.children(rowElement.c_str()))
            AddRow(row, original);
    }

    void AddRow(const pugi::xml_node& row, const pugi::xml_node& original = {}) {
        std::vector<Variant> values;
        for (const auto& column : columns_) {
            auto attribute = row.attribute(column.attribute.c_str());
            if (!attribute)
                attribute = original.attribute(column.attribute.c_str());
            values.push_back(attribute ? ValueOf(column, attribute.value()) : Variant(Null{}));
        }
        table_.rows.push_back(std::move(values));
    }

    Variant ValueOf(const Column& column, const std::string& text) const {
        if (!column.isInteger)
            return text;
        std::int32_t number = 0;
        const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (failure != std::errc() || end != text.data() + text.size())
            throw Fault(fmt::format("is damaged: row {}, column '{}' holds '{}', not a whole number",
                                    table_.rows.size() + 1, column.name, text));
        return number;
    }

    std::string name_;
    pugi::xml_node root_;
    std::string schema_, datatype_, rowset_, row_; ///< prefixes with their colons
    std::vector<Column> columns_;
    PersistedTable table_;
};

} // namespace

PersistedTable ParseXmlTable(const std::string& bytes, const std::string& name) {
    return Reading(name).Run(bytes);
}

PersistedTable XmlTableReader::Read(const std::string& path) {
    const auto file = PathFromText(path);
    std::error_code failed;
    std::ifstream stream(file, std::ios::binary);
    if (!stream || std::filesystem::is_directory(file, failed))
        throw FileFault(path, "cannot be read");
    return ParseXmlTable(std::string(std::istreambuf_iterator<char>(stream), {}), path);
}

} // namespace qel
