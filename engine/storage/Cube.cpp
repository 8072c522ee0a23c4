#include "qel/engine/Cube.h"

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

void Cube::CheckUnchanged() const { pages_->CheckUnchanged(); }

std::optional<std::size_t> Cube::FindDimension(std::string_view name) const {
    return FindNamed(Dimensions(), name);
}

std::optional<std::size_t> Cube::FindMeasure(std::string_view name) const {
    return FindNamed(facts_.Measures(), name);
}

} // namespace qel::engine
