#include "platform/data/xmla/XmlaCellset.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/XmlaConnection.h"

namespace qel {

namespace {

template <class Item>
const Item& ItemAt(const std::vector<Item>& items, std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= items.size()) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    return items[static_cast<std::size_t>(index)];
}

} // namespace

void XmlaCellset::Open(const std::string& source, const std::shared_ptr<Connection>& connection) {
    if (answer_) {
        throw ServerError(errorObjectOpen, "Operation is not allowed when the object is open.");
    }
    answer_ = XmlaConnection::SessionOf(connection)->Execute(source);
}

void XmlaCellset::Close() {
    Answer();
    answer_.reset();
}

const CellsetAnswer& XmlaCellset::Answer() const {
    if (!answer_) {
        throw ServerError(errorObjectClosed, "Operation is not allowed when the object is closed.");
    }
    return *answer_;
}

std::int32_t XmlaCellset::AxisCount() const { return static_cast<std::int32_t>(Answer().Axes().size()); }

std::int32_t XmlaCellset::PositionCount(std::int32_t axis) const {
    return static_cast<std::int32_t>(ItemAt(Answer().Axes(), axis).size());
}

const CellsetPosition& XmlaCellset::Position(std::int32_t axis, std::int32_t position) const {
    return ItemAt(ItemAt(Answer().Axes(), axis), position);
}

std::int32_t XmlaCellset::MemberCount(std::int32_t axis, std::int32_t position) const {
    return static_cast<std::int32_t>(Position(axis, position).size());
}

CellsetMember XmlaCellset::MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const {
    return ItemAt(Position(axis, position), index);
}

Variant XmlaCellset::Value(const std::vector<std::int32_t>& positions) const {
    const auto& axes = Answer().Axes();
    if (positions.size() != axes.size()) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    std::uint64_t ordinal = 0, stride = 1;
    for (std::size_t axis = 0; axis < axes.size(); ++axis) {
        static_cast<void>(ItemAt(axes[axis], positions[axis]));
        ordinal += stride * static_cast<std::uint64_t>(positions[axis]);
        stride *= axes[axis].size();
    }
    return Answer().Cell(ordinal);
}

} // namespace qel
