#include "tests/platform/tables/RecordsetXmlCases.h"

#include <fmt/format.h>

namespace qel::test {

namespace {

constexpr const char* columns = R"(
  <s:AttributeType name='c1' rs:name='long name' rs:number='2'><s:datatype dt:type='string'/></s:AttributeType>
  <s:AttributeType name='lId' rs:number='1'><s:datatype dt:type='int'/></s:AttributeType>
  <s:AttributeType name='n' rs:number='3' dt:type='i2'/>)";

std::string Recordset(const std::string& data, const std::string& schema = columns) {
    return "<xml xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882' xmlns:dt='uuid:C2F41010-65B3-11d1-A29F-"
           "00AA00C14882' xmlns:rs='urn:schemas-microsoft-com:rowset' xmlns:z='#RowsetSchema'>"
           "<s:Schema id='RowsetSchema'><s:ElementType name='row'>" +
           schema + "<s:extends type='rs:rowbase'/></s:ElementType></s:Schema>" + data + "</xml>";
}

} // namespace

std::string Shown(const PersistedTable& table) {
    std::string text = fmt::format("{}", fmt::join(table.columns, "|"));
    for (const auto& row : table.rows) {
        text += "\n";
        for (const auto& value : row) {
            text += value.Is<Null>()           ? "-|"
                    : value.Is<std::int32_t>() ? fmt::format("{}|", value.As<std::int32_t>())
                                               : fmt::format("'{}'|", value.As<std::string>());
        }
    }
    return text;
}

std::vector<RecordsetXmlCase> ReadableRecordsets() {
    const std::string oneRow = "<rs:data><z:row lId='1' c1='שלום &quot;&lt;' n='-3'/></rs:data>";
    const std::string head = "lId|long name|n";
    std::string renamed = Recordset(oneRow);
    for (std::size_t at = 0; (at = renamed.find("z:row", at)) != std::string::npos;) {
        renamed.replace(at, 1, "other");
    }
    renamed.replace(renamed.find("xmlns:z"), 7, "xmlns:other");
    return {
        {"one row", Recordset(oneRow), head + "\n1|'שלום \"<'|-3|"},
        {"a byte order mark and a declaration",
         "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?>" + Recordset(oneRow),
         head + "\n1|'שלום \"<'|-3|"},
        {"namespaces by other names", renamed, head + "\n1|'שלום \"<'|-3|"},
        {"a field without a value", Recordset("<rs:data><z:row n='2'/></rs:data>"), head + "\n-|-|2|"},
        {"no rows", Recordset("<rs:data/>"), head},
        {"pending rows as they were shown",
         Recordset("<rs:data><rs:update><rs:original><z:row lId='1' c1='old' n='1'/></rs:original><z:row "
                   "c1='new'/></rs:update><rs:insert><z:row lId='2'/><z:row "
                   "lId='3'/></rs:insert><rs:delete><z:row lId='9'/></rs:delete></rs:data>"),
         head + "\n1|'new'|1|\n2|-|-|\n3|-|-|"},
    };
}

std::vector<RecordsetXmlCase> UnreadableRecordsets() {
    const std::string row = "<rs:data><z:row lId='1'/></rs:data>";
    const std::string whole = Recordset(row);
    return {
        {"nothing", "", "is empty"},
        {"binary form", std::string("TG!\0\x02", 5), "binary form"},
        {"cut off", whole.substr(0, whole.size() - 3), "is damaged "},
        {"cut off inside a row", whole.substr(0, whole.find("lId='1'") + 4), "is damaged "},
        {"other XML", "<html><body/></html>", "is not a recordset"},
        {"no namespaces", "<xml><data/></xml>", "is not a recordset"},
        {"no columns", Recordset(row, ""), "names no column"},
        {"no data", Recordset(""), "holds no data"},
        {"a word for a number", Recordset("<rs:data><z:row lId='1'/><z:row lId='one'/></rs:data>"),
         "row 2, column 'lId' holds 'one'"},
        {"a number too large", Recordset("<rs:data><z:row lId='99999999999'/></rs:data>"),
         "row 1, column 'lId'"},
    };
}

} // namespace qel::test
