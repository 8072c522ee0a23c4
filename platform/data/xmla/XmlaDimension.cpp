#include "platform/data/xmla/XmlaDimension.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/data/ObjectErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel {

namespace {

using SessionPointer = std::shared_ptr<ServerSession>;

/// By name, letter case ignored. Raises 3265, naming the owner, when it is missing.
template <class Item>
const Item& ItemNamed(const std::vector<Item>& items, const std::string& name, const std::string& owner,
                      const char* kind) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const Item& item) { return EqualIgnoringCase(item.name, name); });
    if (found == items.end()) {
        throw ServerError(errorItemNotFound, fmt::format("{} has no {} '{}'.", owner, kind, name));
    }
    return *found;
}

class XmlaMember : public Member {
public:
    XmlaMember(SessionPointer session, const ServerHierarchy& hierarchy, std::size_t level,
               const ServerMember& member)
        : session_(std::move(session)), hierarchy_(hierarchy), level_(level), member_(member) {}

    std::string Name() const override { return member_.name; }
    std::string Caption() const override { return member_.caption; }
    std::string UniqueName() const override { return member_.uniqueName; }

    std::unique_ptr<Member> Parent() const override {
        if (level_ == 0 || member_.parent.empty()) {
            return nullptr;
        }
        for (std::size_t level = level_; level-- > 0;) { // a ragged hierarchy's parent is higher up
            const auto& above = session_->MembersOf(hierarchy_.levels[level]);
            const auto found = above.byUniqueName.find(member_.parent);
            if (found != above.byUniqueName.end()) {
                return std::make_unique<XmlaMember>(session_, hierarchy_, level,
                                                    above.members[found->second]);
            }
        }
        throw ServerError(errorServerAnswer,
                          fmt::format("The server names {} as the parent of {}, but does not list it.",
                                      ShownMessage(member_.parent), ShownMessage(member_.uniqueName)));
    }

private:
    SessionPointer session_; ///< owns the objects that the references point to
    const ServerHierarchy& hierarchy_;
    std::size_t level_;
    const ServerMember& member_;
};

class XmlaLevel : public Level {
public:
    XmlaLevel(SessionPointer session, const ServerHierarchy& hierarchy, std::size_t level)
        : session_(std::move(session)), hierarchy_(hierarchy), level_(level) {}

    std::string Name() const override { return Stored().name; }
    std::string Caption() const override { return Stored().caption; }
    std::int32_t MemberCount() const override { return static_cast<std::int32_t>(Members().members.size()); }

    std::unique_ptr<Member> MemberAt(std::int32_t index) const override {
        return std::make_unique<XmlaMember>(session_, hierarchy_, level_, ItemAt(Members().members, index));
    }

    std::vector<std::unique_ptr<Member>> MembersNamed(const std::string& name) const override {
        const auto& members = Members();
        std::vector<std::unique_ptr<Member>> result;
        const auto found = members.byName.find(FoldCase(name));
        if (found == members.byName.end()) {
            return result;
        }
        result.reserve(found->second.size());
        for (const std::size_t index : found->second) {
            result.push_back(
                std::make_unique<XmlaMember>(session_, hierarchy_, level_, members.members[index]));
        }
        return result;
    }

private:
    const ServerLevel& Stored() const { return hierarchy_.levels[level_]; }
    const ServerMembers& Members() const { return session_->MembersOf(Stored()); }

    SessionPointer session_;
    const ServerHierarchy& hierarchy_;
    std::size_t level_;
};

class XmlaHierarchy : public Hierarchy {
public:
    XmlaHierarchy(SessionPointer session, const ServerHierarchy& hierarchy)
        : session_(std::move(session)), hierarchy_(hierarchy) {}

    std::string Name() const override { return hierarchy_.name; }
    std::string Caption() const override { return hierarchy_.caption; }
    std::string UniqueName() const override { return hierarchy_.uniqueName; }
    std::int32_t LevelCount() const override { return static_cast<std::int32_t>(hierarchy_.levels.size()); }

    std::unique_ptr<Level> LevelAt(std::int32_t index) const override {
        static_cast<void>(ItemAt(hierarchy_.levels, index));
        return std::make_unique<XmlaLevel>(session_, hierarchy_, static_cast<std::size_t>(index));
    }

    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        const auto& level = ItemNamed(hierarchy_.levels, name,
                                      fmt::format("The hierarchy {}", hierarchy_.uniqueName), "level");
        return std::make_unique<XmlaLevel>(session_, hierarchy_,
                                           static_cast<std::size_t>(&level - hierarchy_.levels.data()));
    }

private:
    SessionPointer session_;
    const ServerHierarchy& hierarchy_;
};

class XmlaDimension : public Dimension {
public:
    XmlaDimension(SessionPointer session, const ServerDimension& dimension)
        : session_(std::move(session)), dimension_(dimension) {}

    std::string Name() const override { return dimension_.name; }
    std::string Caption() const override { return dimension_.caption; }
    std::int32_t HierarchyCount() const override {
        return static_cast<std::int32_t>(dimension_.hierarchies.size());
    }
    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        return std::make_unique<XmlaHierarchy>(session_, ItemAt(dimension_.hierarchies, index));
    }

private:
    SessionPointer session_;
    const ServerDimension& dimension_;
};

class XmlaCube : public CubeDef {
public:
    explicit XmlaCube(SessionPointer session) : session_(std::move(session)), cube_(session_->Cube()) {}

    std::string Name() const override { return cube_.name; }
    std::int32_t DimensionCount() const override {
        return static_cast<std::int32_t>(cube_.dimensions.size());
    }
    std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const override {
        return std::make_unique<XmlaDimension>(session_, ItemAt(cube_.dimensions, index));
    }
    std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const override {
        return std::make_unique<XmlaDimension>(
            session_,
            ItemNamed(cube_.dimensions, name, fmt::format("The cube '{}'", cube_.name), "dimension"));
    }

private:
    SessionPointer session_;
    const ServerCube& cube_;
};

} // namespace

std::unique_ptr<CubeDef> MakeXmlaCube(const std::shared_ptr<ServerSession>& session) {
    return std::make_unique<XmlaCube>(session);
}

} // namespace qel
