#pragma once

#include "cube/ValueQuery.h"
#include "platform/data/CellQuery.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qel::ModSetCube {

/// The members of the where tuple, in their order.
class SlicerMembers {
public:
    explicit SlicerMembers(const ValueQuery& query);

    const QueryMember* begin() const { return members_.data(); }
    const QueryMember* end() const { return members_.data() + count_; }

private:
    void Add(const QueryMember& member) { members_[count_++] = member; }
    void AddUnlessEmpty(std::string_view path, std::string_view name);

    std::array<QueryMember, 9> members_;
    std::size_t count_ = 0;
};

/// The summary group on the rows; none when the query asks for all of them together.
std::optional<QueryMember> SummaryMember(const ValueQuery& query);

void AppendMember(std::string& text, const QueryMember& member);

/// The text of the calculated member [Obs].Sel, which sums the members; none of them leaves the text without
/// its opening.
void AppendObsSel(std::string& text, const ObsMembers& members);

/// "[dimension].[member]" as the where tuple has it, or empty when the key restricts nothing.
std::string MemberSlicer(std::string_view dimension, std::string_view key);

/// The same query in parts, for providers that take it so. It views into the query.
CellQuery InParts(const ValueQuery& query);

/// The statement exactly as it is sent.
std::string ComposeValueStatement(const ValueQuery& query);

} // namespace qel::ModSetCube
