#include "platform/DataAccess.h"

#include "platform/Text.h"

namespace qel {

std::vector<std::unique_ptr<Member>> Level::MembersNamed(const std::string& name) const {
    std::vector<std::unique_ptr<Member>> named;
    const std::int32_t count = MemberCount();
    for (std::int32_t i = 0; i < count; ++i) {
        auto member = MemberAt(i);
        if (EqualIgnoringCase(member->Name(), name))
            named.push_back(std::move(member));
    }
    return named;
}

} // namespace qel
