#include "cube/KnownCells.h"

#include <gtest/gtest.h>

#include <memory>

namespace qel::ModSetCube {
namespace {

struct CellOfSize : PreparedCell {
    explicit CellOfSize(std::size_t size) : bytes(size) {}
    Variant Value() const override { return {}; }
    std::size_t Bytes() const override { return bytes; }
    std::size_t bytes;
};

TEST(KnownCellsTest, CountACellOnceThatIsKeptAgain) {
    KnownCells cells;
    cells.Keep("small", std::make_unique<CellOfSize>(0));
    for (int i = 0; i < 20; ++i) {
        cells.Keep("large", std::make_unique<CellOfSize>(5U << 20U));
    }
    EXPECT_NE(cells.Find("small"), nullptr) << "without room for both, all are forgotten";
}

} // namespace
} // namespace qel::ModSetCube
