#include "engine/eval/TupleSet.h"

#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <numeric>

namespace qel::engine {

namespace {

void CheckSize(std::size_t size) {
    if (size > setLimit) {
        throw EngineError(ErrorKind::TooLarge, fmt::format("a set has more than {} members", setLimit));
    }
}

} // namespace

void TupleSet::Append(std::span<const MemberId> tuple) {
    CheckSize(ids.size() + tuple.size());
    ids.insert(ids.end(), tuple.begin(), tuple.end());
}

void TupleSet::Append(MemberRange members) {
    const std::size_t size = ids.size();
    CheckSize(size + members.Count());
    ids.resize(size + members.Count());
    std::iota(ids.begin() + static_cast<std::ptrdiff_t>(size), ids.end(), members.first);
}

} // namespace qel::engine
