#include "platform/data/embedded/EmbeddedCellset.h"

#include "platform/data/HeldAnswer.h"
#include "platform/data/embedded/CellVariant.h"
#include "platform/data/embedded/EmbeddedConnection.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "qel/engine/Cellset.h"
#include "text/DecimalText.h"

namespace qel {

namespace {

class EmbeddedCellset : public Cellset {
public:
    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
        answer_.Open([&] { return EmbeddedConnection::Run(connection, source); });
        cube_ = EmbeddedConnection::CubeOf(connection);
    }

    void Close() override {
        answer_.Close();
        cube_.reset();
    }

    std::int32_t AxisCount() const override { return static_cast<std::int32_t>(answer_.Get().AxisCount()); }

    std::int32_t PositionCount(std::int32_t axis) const override {
        const auto& answer = answer_.Get();
        return static_cast<std::int32_t>(answer.PositionCount(CheckedIndex(axis, answer.AxisCount())));
    }

    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override {
        CheckedIndex(position, static_cast<std::size_t>(PositionCount(axis)));
        return static_cast<std::int32_t>(answer_.Get().TupleSize(static_cast<std::size_t>(axis)));
    }

    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
        const auto place = CheckedIndex(index, static_cast<std::size_t>(MemberCount(axis, position)));
        const auto& member =
            answer_.Get().MemberAt(static_cast<std::size_t>(axis), static_cast<std::size_t>(position), place);
        return {member.name,
                member.uniqueName,
                member.levelName,
                member.caption,
                static_cast<std::int32_t>(member.levelDepth),
                KeyOf(member)};
    }

    Variant Value(const std::vector<std::int32_t>& positions) const override {
        return CellVariant(CellAt(positions));
    }

    std::optional<std::string> ExactText(const std::vector<std::int32_t>& positions) const override {
        const auto& cell = CellAt(positions);
        if (cell.isEmpty || !cell.isExact) {
            return std::nullopt;
        }
        return DecimalText(cell.scaled, cell.decimals);
    }

private:
    const engine::CellValue& CellAt(const std::vector<std::int32_t>& positions) const {
        const auto& answer = answer_.Get();
        if (positions.size() != answer.AxisCount()) {
            throw PlatformError(ErrorNumber::SubscriptOutOfRange);
        }
        std::vector<std::size_t> place;
        place.reserve(positions.size());
        for (const auto position : positions) {
            place.push_back(CheckedIndex(position, answer.PositionCount(place.size())));
        }
        return answer.Cell(place);
    }

    /// Measures and calculated members have no key.
    std::string KeyOf(const engine::AxisMember& member) const {
        if (member.member == engine::noMember) {
            return {};
        }
        return std::string(cube_->Hierarchies()[member.hierarchy].MemberKey(member.member));
    }

    std::shared_ptr<const engine::Cube> cube_;
    HeldAnswer<engine::Cellset> answer_{embeddedProvider};
};

} // namespace

std::unique_ptr<Cellset> MakeEmbeddedCellset() { return std::make_unique<EmbeddedCellset>(); }

} // namespace qel
