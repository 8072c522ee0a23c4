#include "platform/data/embedded/EmbeddedCellset.h"

#include "platform/data/embedded/EmbeddedConnection.h"
#include "platform/data/embedded/ProviderErrors.h"

namespace qel {

namespace {

void RequireBelow(std::int32_t index, std::size_t count) {
    if (index < 0 || static_cast<std::size_t>(index) >= count) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
}

} // namespace

void EmbeddedCellset::Open(const std::string& source, const std::shared_ptr<Connection>& connection) {
    if (answer_) {
        throw ProviderError(errorObjectOpen, "Operation is not allowed when the object is open.");
    }
    answer_ = EmbeddedConnection::Run(connection, source);
}

void EmbeddedCellset::Close() {
    Answer();
    answer_.reset();
}

const engine::Cellset& EmbeddedCellset::Answer() const {
    if (!answer_) {
        throw ProviderError(errorObjectClosed, "Operation is not allowed when the object is closed.");
    }
    return *answer_;
}

std::int32_t EmbeddedCellset::AxisCount() const { return static_cast<std::int32_t>(Answer().AxisCount()); }

std::int32_t EmbeddedCellset::PositionCount(std::int32_t axis) const {
    const auto& answer = Answer();
    RequireBelow(axis, answer.AxisCount());
    return static_cast<std::int32_t>(answer.PositionCount(static_cast<std::size_t>(axis)));
}

std::int32_t EmbeddedCellset::MemberCount(std::int32_t axis, std::int32_t position) const {
    RequireBelow(position, static_cast<std::size_t>(PositionCount(axis)));
    return static_cast<std::int32_t>(Answer().TupleSize(static_cast<std::size_t>(axis)));
}

CellsetMember EmbeddedCellset::MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const {
    RequireBelow(index, static_cast<std::size_t>(MemberCount(axis, position)));
    const auto& member = Answer().MemberAt(static_cast<std::size_t>(axis), static_cast<std::size_t>(position),
                                           static_cast<std::size_t>(index));
    return {member.name, member.uniqueName, member.levelName, member.caption,
            static_cast<std::int32_t>(member.levelDepth)};
}

Variant EmbeddedCellset::Value(const std::vector<std::int32_t>& positions) const {
    const auto& answer = Answer();
    if (positions.size() != answer.AxisCount()) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    std::vector<std::size_t> place;
    place.reserve(positions.size());
    for (const auto position : positions) {
        RequireBelow(position, answer.PositionCount(place.size()));
        place.push_back(static_cast<std::size_t>(position));
    }
    const auto& cell = answer.Cell(place);
    return cell.isEmpty ? Variant(Null{}) : Variant(cell.number);
}

} // namespace qel
