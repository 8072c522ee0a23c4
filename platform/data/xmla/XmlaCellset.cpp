#include "platform/data/xmla/XmlaCellset.h"

#include "platform/data/HeldAnswer.h"
#include "platform/data/xmla/CellsetAnswer.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/XmlaConnection.h"

namespace qel {

namespace {

class XmlaCellset : public Cellset {
public:
    void Open(const std::string& source, const std::shared_ptr<Connection>& connection) override {
        answer_.Open([&] { return XmlaConnection::SessionOf(connection)->Execute(source); });
    }

    void Close() override { answer_.Close(); }

    std::int32_t AxisCount() const override { return static_cast<std::int32_t>(Axes().size()); }

    std::int32_t PositionCount(std::int32_t axis) const override {
        return static_cast<std::int32_t>(ItemAt(Axes(), axis).size());
    }

    std::int32_t MemberCount(std::int32_t axis, std::int32_t position) const override {
        return static_cast<std::int32_t>(Position(axis, position).size());
    }

    CellsetMember MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const override {
        return ItemAt(Position(axis, position), index);
    }

    Variant Value(const std::vector<std::int32_t>& positions) const override {
        if (positions.size() != Axes().size()) {
            throw PlatformError(ErrorNumber::SubscriptOutOfRange);
        }
        std::uint64_t ordinal = 0, stride = 1;
        for (std::size_t axis = 0; axis < positions.size(); ++axis) {
            const std::size_t count = Axes()[axis].size();
            ordinal += stride * CheckedIndex(positions[axis], count);
            stride *= count;
        }
        return answer_.Get().Cell(ordinal);
    }

private:
    const std::vector<std::vector<CellsetPosition>>& Axes() const { return answer_.Get().Axes(); }

    const CellsetPosition& Position(std::int32_t axis, std::int32_t position) const {
        return ItemAt(ItemAt(Axes(), axis), position);
    }

    HeldAnswer<CellsetAnswer> answer_{serverProvider};
};

} // namespace

std::unique_ptr<Cellset> MakeXmlaCellset() { return std::make_unique<XmlaCellset>(); }

} // namespace qel
