#include "qel/engine/Cube.h"

#include "engine/storage/FactTable.h"
#include "engine/storage/PageVerifier.h"
#include "text/CaseFold.h"

namespace qel::engine {

namespace {

template <class Named>
std::optional<std::size_t> FindNamed(std::span<const Named> all, std::string_view name) {
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (EqualIgnoringCase(all[i].name, name)) {
            return i;
        }
    }
    return std::nullopt;
}

} // namespace

std::uint64_t Cube::FactCount() const { return facts_->RowCount(); }

std::vector<std::vector<std::string>> Cube::SortOrders() const {
    std::vector<std::vector<std::string>> orders;
    for (const Projection& projection : facts_->Projections()) {
        std::vector<std::string>& names = orders.emplace_back();
        for (const std::uint16_t column : projection.SortOrder()) {
            names.push_back(facts_->KeyColumns()[column].name);
        }
    }
    return orders;
}

bool Cube::KeepsDetails() const { return facts_->Details() != nullptr; }

std::vector<Detail> Cube::Details() const {
    std::vector<Detail> details;
    if (KeepsDetails()) {
        details.assign(facts_->Details()->Columns().begin(), facts_->Details()->Columns().end());
    }
    return details;
}

void Cube::CheckUnchanged() const { pages_->CheckUnchanged(); }

std::optional<std::size_t> Cube::FindDimension(std::string_view name) const {
    return FindNamed(Dimensions(), name);
}

std::optional<std::size_t> Cube::FindMeasure(std::string_view name) const {
    return FindNamed(Measures(), name);
}

} // namespace qel::engine
