#include "platform/data/xmla/XmlaRecordset.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/XmlaConnection.h"

namespace qel {

void XmlaRecordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                         int /*cursorType*/, int /*lockType*/, int /*options*/) {
    if (answer_) {
        throw ServerError(errorObjectOpen, "Operation is not allowed when the object is open.");
    }
    answer_ = XmlaConnection::SessionOf(connection)->ExecuteTabular(source);
    row_ = 0;
}

void XmlaRecordset::Close() {
    Answer();
    answer_.reset();
}

const RowsetAnswer& XmlaRecordset::Answer() const {
    if (!answer_) {
        throw ServerError(errorObjectClosed, "Operation is not allowed when the object is closed.");
    }
    return *answer_;
}

std::int32_t XmlaRecordset::FieldCount() const { return static_cast<std::int32_t>(Answer().Fields().size()); }

std::size_t XmlaRecordset::CheckedField(std::int32_t index) const {
    if (index < 0 || index >= FieldCount()) {
        throw ServerError(
            errorItemNotFound,
            "Item cannot be found in the collection corresponding to the requested name or ordinal.");
    }
    return static_cast<std::size_t>(index);
}

void XmlaRecordset::RequireRow() const {
    if (AtEnd()) {
        throw ServerError(errorNoCurrentRow, "There is no current row: the recordset is at its end.");
    }
}

std::string XmlaRecordset::FieldName(std::int32_t index) const {
    return Answer().Fields()[CheckedField(index)];
}

Variant XmlaRecordset::FieldValue(std::int32_t index) const {
    const auto field = CheckedField(index);
    RequireRow();
    return Answer().Value(row_, field);
}

bool XmlaRecordset::AtEnd() const { return row_ >= Answer().RowCount(); }

void XmlaRecordset::MoveFirst() {
    row_ = 0;
    RequireRow();
}

void XmlaRecordset::MoveNext() {
    RequireRow();
    ++row_;
}

} // namespace qel
