#include "platform/data/DataAccess.h"

#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <algorithm>

namespace qel {

namespace {

constexpr std::int32_t objectDoesNotSupportThisAction = 445;
// ADO's numbers and words.
constexpr std::int32_t featureNotAvailable = 3251;
constexpr std::int32_t itemNotFound = 3265;

/// The value of one property of a connection text; the last one counts, as for providers.
std::string PropertyOf(std::string_view text, std::string_view name) {
    std::string value;
    while (!text.empty()) {
        const auto end = std::min(text.find(';'), text.size());
        const auto part = text.substr(0, end);
        const auto equals = part.find('=');
        if (equals != std::string_view::npos && EqualIgnoringCase(Trimmed(part.substr(0, equals)), name)) {
            value = Trimmed(part.substr(equals + 1));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return value;
}

} // namespace

std::string Connection::Provider() const { return PropertyOf(ConnectionString(), "Provider"); }

std::string Connection::DefaultDatabase() const { return PropertyOf(ConnectionString(), "Initial Catalog"); }

std::unique_ptr<const PreparedCell> Connection::Prepare(const CellQuery& /*query*/) { return nullptr; }

std::unique_ptr<Recordset> Connection::OpenSchema(int /*schema*/) {
    throw AutomationError(featureNotAvailable,
                          "Object or provider is not capable of performing requested operation.");
}

Variant Recordset::FieldValueNamed(const std::string& name) const {
    const std::int32_t count = FieldCount();
    for (std::int32_t i = 0; i < count; ++i) {
        if (EqualIgnoringCase(FieldName(i), name)) {
            return FieldValue(i);
        }
    }
    throw AutomationError(itemNotFound,
                          "Item cannot be found in the collection corresponding to the requested name or "
                          "ordinal: '" +
                              name + "'.");
}

std::unique_ptr<Recordset> DataAccess::CreateRecordset() {
    throw AutomationError(objectDoesNotSupportThisAction,
                          "Object doesn't support this action: the provider has no "
                          "recordsets.");
}

std::optional<std::string> Cellset::ExactText(const std::vector<std::int32_t>&) const { return std::nullopt; }

std::vector<std::unique_ptr<Member>> Level::MembersNamed(const std::string& name) const {
    std::vector<std::unique_ptr<Member>> named;
    const std::int32_t count = MemberCount();
    for (std::int32_t i = 0; i < count; ++i) {
        auto member = MemberAt(i);
        if (EqualIgnoringCase(member->Name(), name)) {
            named.push_back(std::move(member));
        }
    }
    return named;
}

} // namespace qel
