#include "platform/data/xmla/RowsetAnswer.h"

#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace qel {

namespace {

bool IsTextType(std::string_view type) {
    return type.empty() || type.ends_with("string") || type.ends_with("dateTime") || type.ends_with("uuid");
}

bool IsNumberType(std::string_view type) {
    constexpr std::array numbers = {"double",      "float",         "decimal",      "integer",
                                    "int",         "long",          "short",        "byte",
                                    "unsignedInt", "unsignedShort", "unsignedLong", "unsignedByte"};
    const std::string_view name = type.substr(type.find(':') + 1);
    return std::find(numbers.begin(), numbers.end(), name) != numbers.end();
}

} // namespace

Variant TypedValue(std::string_view type, const std::string& text) {
    if (IsTextType(type)) {
        return text;
    }
    if (type.ends_with("boolean")) {
        return text == "true" || text == "1";
    }
    double number = 0;
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failed != std::errc() || end != text.data() + text.size()) {
        throw ServerError(errorServerAnswer, fmt::format("The server sent '{}' as a number.", text));
    }
    return number;
}

void RowsetAnswer::StartElement(std::string_view name, const XmlAttributes& attributes) {
    if (inRow_) {
        if (++depthInRow_ == 1) {
            type_ = attributes.Of("type");
        }
    } else if (name == "row") {
        inRow_ = true;
        budget_.Take(sizeof(std::vector<Variant>));
        rows_.emplace_back();
    } else if (name == "complexType") {
        inRowType_ = attributes.Of("name") == "row";
    } else if (inRowType_ && name == "element") {
        const std::size_t field = FieldOfElement(attributes.Of("name"));
        declaredTypes_[field] = attributes.Of("type");
        if (!attributes.Of("field").empty()) {
            fields_[field] = attributes.Of("field");
        }
    }
}

void RowsetAnswer::EndElement(std::string_view name, const std::string& text) {
    if (name == "complexType") {
        inRowType_ = false;
    }
    if (!inRow_) {
        return;
    }
    if (depthInRow_ == 0) {
        inRow_ = false;
    } else if (--depthInRow_ == 0) {
        const std::size_t field = FieldOfElement(name);
        auto& row = rows_.back();
        if (field >= row.size()) {
            Widen(row, field + 1);
        }
        budget_.Take(text.size());
        row[field] = TypedValue(type_, text);
    }
}

void RowsetAnswer::Widen(std::vector<Variant>& row, std::size_t fields) {
    budget_.Take((fields - row.size()) * sizeof(Variant));
    row.resize(fields, Null{});
}

void RowsetAnswer::ReadNumbers(std::vector<Variant>& row) const {
    for (std::size_t field = 0; field < row.size(); ++field) {
        if (IsNumberType(declaredTypes_[field]) && row[field].Is<std::string>()) {
            const std::string text = row[field].As<std::string>();
            row[field] = text.empty() ? Variant(Null{}) : TypedValue(declaredTypes_[field], text);
        }
    }
}

std::size_t RowsetAnswer::FieldOfElement(std::string_view element) {
    constexpr std::size_t mostFields = 10'000;
    const auto [found, isNew] = fieldsByElement_.try_emplace(std::string(element), fields_.size());
    if (isNew && fields_.size() == mostFields) {
        throw ServerError(errorServerAnswer, "The server's answer has too many columns.");
    }
    if (isNew) {
        fields_.emplace_back(element);
        declaredTypes_.emplace_back();
    }
    return found->second;
}

Variant RowsetAnswer::Value(std::size_t row, std::size_t field) const {
    return field < rows_[row].size() ? rows_[row][field] : Variant(Null{});
}

std::string RowsetAnswer::Text(std::size_t row, const std::string& field) const {
    const auto found = fieldsByElement_.find(field);
    if (found == fieldsByElement_.end()) {
        return {};
    }
    const Variant value = Value(row, found->second);
    return value.Is<std::string>() ? value.As<std::string>() : std::string();
}

Rowset RowsetAnswer::TakeRowset() {
    for (auto& row : rows_) {
        Widen(row, fields_.size());
        ReadNumbers(row);
    }
    return {.fields = std::move(fields_), .rows = std::move(rows_)};
}

} // namespace qel
