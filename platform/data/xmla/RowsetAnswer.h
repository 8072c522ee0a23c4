#pragma once

#include "platform/data/Rowset.h"
#include "platform/data/xmla/AnswerBudget.h"
#include "platform/data/xmla/XmlStream.h"
#include "platform/value/Variant.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace qel {

/// A value by the schema type of its element ("xsd:double", "xsd:string"); every number is a Double. Raises
/// AutomationError for a malformed number.
Variant TypedValue(std::string_view type, const std::string& text);

/// The rows of a Discover, or of an Execute whose answer is tabular.
class RowsetAnswer : public XmlHandler {
public:
    explicit RowsetAnswer(AnswerBudget budget = AnswerBudget()) : budget_(budget) {}

    void StartElement(std::string_view name, const XmlAttributes& attributes) override;
    void EndElement(std::string_view name, const std::string& text) override;

    /// In the order of the answer's schema; without a schema, in order of appearance.
    const std::vector<std::string>& Fields() const { return fields_; }
    std::size_t RowCount() const { return rows_.size(); }
    /// Null when the row has no such field.
    Variant Value(std::size_t row, std::size_t field) const;
    /// The text of a row's field, empty when there is none.
    std::string Text(std::size_t row, const std::string& field) const;
    /// Fields that a row lacks are Null; texts of fields that the schema declares as numbers are Doubles.
    /// Raises AutomationError for a malformed number. Leaves the answer empty.
    [[nodiscard]] Rowset TakeRowset();

private:
    void Widen(std::vector<Variant>& row, std::size_t fields);
    void ReadNumbers(std::vector<Variant>& row) const;
    std::size_t FieldOfElement(std::string_view element);

    AnswerBudget budget_;
    std::vector<std::string> fields_;
    std::vector<std::string> declaredTypes_; ///< by the answer's schema, for each field; may be empty
    std::unordered_map<std::string, std::size_t> fieldsByElement_;
    std::vector<std::vector<Variant>> rows_;
    bool inRow_ = false;
    std::size_t depthInRow_ = 0;
    bool inRowType_ = false; ///< in the schema's description of a row
    std::string type_;       ///< of the row's element that is open
};

} // namespace qel
