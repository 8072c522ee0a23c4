#include "platform/data/embedded/EmbeddedRecordset.h"

#include "platform/data/embedded/EmbeddedConnection.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "qel/engine/RunStatement.h"

namespace qel {

void EmbeddedRecordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                             int /*cursorType*/, int /*lockType*/, int /*options*/) {
    if (answer_) {
        throw ProviderError(errorObjectOpen, "Operation is not allowed when the object is open.");
    }
    const auto cube = EmbeddedConnection::CubeOf(connection);
    answer_ = TranslatingErrors([&] { return Flatten(*cube, engine::RunStatement(*cube, source)); });
    row_ = 0;
}

void EmbeddedRecordset::Close() {
    Answer();
    answer_.reset();
}

const FlattenedRows& EmbeddedRecordset::Answer() const {
    if (!answer_) {
        throw ProviderError(errorObjectClosed, "Operation is not allowed when the object is closed.");
    }
    return *answer_;
}

std::int32_t EmbeddedRecordset::FieldCount() const {
    return static_cast<std::int32_t>(Answer().fields.size());
}

std::size_t EmbeddedRecordset::CheckedField(std::int32_t index) const {
    if (index < 0 || index >= FieldCount()) {
        throw ProviderError(
            errorItemNotFound,
            "Item cannot be found in the collection corresponding to the requested name or ordinal.");
    }
    return static_cast<std::size_t>(index);
}

void EmbeddedRecordset::RequireRow() const {
    if (AtEnd()) {
        throw ProviderError(errorNoCurrentRow, "There is no current row: the recordset is at its end.");
    }
}

std::string EmbeddedRecordset::FieldName(std::int32_t index) const {
    return Answer().fields[CheckedField(index)];
}

Variant EmbeddedRecordset::FieldValue(std::int32_t index) const {
    const auto field = CheckedField(index);
    RequireRow();
    return Answer().rows[row_][field];
}

bool EmbeddedRecordset::AtEnd() const { return row_ >= Answer().rows.size(); }

void EmbeddedRecordset::MoveFirst() {
    row_ = 0;
    RequireRow();
}

void EmbeddedRecordset::MoveNext() {
    RequireRow();
    ++row_;
}

} // namespace qel
