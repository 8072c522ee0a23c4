#include "platform/data/xmla/RowsetAnswer.h"

#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

#include <charconv>
#include <system_error>

namespace qel {

namespace {

bool IsTextType(std::string_view type) {
    return type.empty() || type.ends_with("string") || type.ends_with("dateTime") || type.ends_with("uuid");
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
        rows_.emplace_back(fields_.size(), Null{});
    } else if (name == "complexType") {
        inRowType_ = attributes.Of("name") == "row";
    } else if (inRowType_ && name == "element") {
        const std::size_t field = FieldOfElement(attributes.Of("name"));
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
            row.resize(field + 1, Null{});
        }
        row[field] = TypedValue(type_, text);
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
        row.resize(fields_.size(), Null{});
    }
    return {.fields = std::move(fields_), .rows = std::move(rows_)};
}

} // namespace qel
