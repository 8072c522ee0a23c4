#pragma once

#include "platform/value/Variant.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// A member as a statement names it: a path, and the names below it. It views into its query.
struct QueryMember {
    std::string_view path; ///< "[Accounts].[AccountCodes].[All]"
    std::array<std::string_view, 2> names;
    std::size_t nameCount = 0; ///< 0 for a calculated member, or for a hierarchy as a whole
};

/// What a statement with one cell asks, for providers that take it in parts: a measure at a tuple of members,
/// summed over periods and over the members of one more hierarchy. It views into what it was made of.
struct CellQuery {
    std::string_view cube, measure;
    std::vector<QueryMember> members;
    std::string_view periods; ///< the hierarchy of the periods
    std::string_view lastPeriod;
    int periodCount = 0;
    std::string_view summed;                                 ///< a hierarchy; empty for none
    const std::vector<std::string>* summedMembers = nullptr; ///< unique names; null for none
};

/// A cell that a connection prepared for being read many times, as long as its data is not refreshed. Values
/// are not kept.
class PreparedCell {
public:
    virtual ~PreparedCell() = default;
    /// As Cellset::Value. Raises what the provider raises; the statement may then still succeed.
    virtual Variant Value() const = 0;
    /// Begins to fetch what Value reads into the processor's caches. For a cell that was read; raises
    /// nothing then.
    virtual void Prefetch() const {}
    /// Approximate memory in bytes.
    virtual std::size_t Bytes() const = 0;
};

} // namespace qel
