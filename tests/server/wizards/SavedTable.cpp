#include "tests/server/wizards/SavedTable.h"

#include "lang/StringTable.h"
#include "platform/windows/VariantConversion.h"

#include <vector>

namespace qel::test {

namespace {

struct TextRow {
    std::int32_t language, number;
    const char* text;

    Variant Column(std::int32_t column) const {
        return column == 2 ? Variant(std::string(text)) : Variant(column == 0 ? language : number);
    }
};

std::vector<TextRow> AllTexts() {
    std::vector<TextRow> rows;
    for (const StringTableEntry& entry : StringTable()) {
        rows.push_back({Language::English, entry.number, entry.english});
        rows.push_back({Language::Hebrew, entry.number, entry.hebrew});
    }
    return rows;
}

struct Cursor {
    std::vector<TextRow> rows = AllTexts();
    std::size_t at = 0;
};

ComPointer<IDispatch> MakeField(const std::shared_ptr<Cursor>& cursor, std::int32_t column) {
    static constexpr const char* names[] = {"lId", "sId", "sText"};
    auto field = MakeDouble();
    field->Define(L"Name", [column](const auto&) { return Text(names[column]); });
    field->Define(L"Value", [cursor, column](const auto&) {
        return windows::ToAutomation(cursor->rows.at(cursor->at).Column(column));
    });
    return ComPointer<IDispatch>(field.Get());
}

} // namespace

ComPointer<IDispatch> MakeSavedTable() {
    const auto cursor = std::make_shared<Cursor>();
    auto fields = MakeDouble();
    fields->Define(L"Count", [](const auto&) { return windows::ToAutomation(3); });
    fields->Define(L"Item", [cursor](const auto& inputs) {
        return ObjectValue(
            MakeField(cursor, windows::FromAutomation(*inputs.at(0)).template As<std::int32_t>()));
    });
    auto recordset = MakeDouble();
    const auto nothing = [](const auto&) { return OwnedVariant(); };
    recordset->Define(L"Open", nothing);
    recordset->Define(L"Close", nothing);
    recordset->Define(L"Fields",
                      [fields](const auto&) { return ObjectValue(ComPointer<IDispatch>(fields.Get())); });
    recordset->Define(
        L"EOF", [cursor](const auto&) { return windows::ToAutomation(cursor->at == cursor->rows.size()); });
    recordset->Define(L"MoveNext", [cursor](const auto&) {
        ++cursor->at;
        return OwnedVariant();
    });
    return ComPointer<IDispatch>(recordset.Get());
}

} // namespace qel::test
