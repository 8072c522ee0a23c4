#include "platform/data/embedded/EmbeddedDimension.h"

#include "platform/data/ObjectErrors.h"
#include "platform/data/embedded/ProviderErrors.h"

#include <fmt/format.h>

namespace qel {

namespace {

using CubePointer = std::shared_ptr<const engine::Cube>;

class EmbeddedMember : public Member {
public:
    EmbeddedMember(CubePointer cube, std::size_t hierarchy, engine::MemberId member)
        : cube_(std::move(cube)), hierarchy_(hierarchy), member_(member) {}

    std::string Name() const override { return std::string(Stored().MemberName(member_)); }
    std::string Caption() const override { return std::string(Stored().MemberCaption(member_)); }
    std::string UniqueName() const override { return Stored().MemberUniqueName(member_); }

    std::unique_ptr<Member> Parent() const override {
        const auto parent = Stored().Parent(member_);
        if (parent == engine::noMember) {
            return nullptr;
        }
        return std::make_unique<EmbeddedMember>(cube_, hierarchy_, parent);
    }

private:
    const engine::Hierarchy& Stored() const { return cube_->Hierarchies()[hierarchy_]; }

    CubePointer cube_;
    std::size_t hierarchy_;
    engine::MemberId member_;
};

class EmbeddedLevel : public Level {
public:
    EmbeddedLevel(CubePointer cube, std::size_t hierarchy, std::size_t level)
        : cube_(std::move(cube)), hierarchy_(hierarchy), level_(level) {}

    std::string Name() const override { return Stored().name; }
    std::string Caption() const override { return Stored().name; }
    std::int32_t MemberCount() const override { return static_cast<std::int32_t>(Stored().members.Count()); }

    std::unique_ptr<Member> MemberAt(std::int32_t index) const override {
        const auto members = Stored().members;
        const auto offset = static_cast<engine::MemberId>(CheckedIndex(index, members.Count()));
        return std::make_unique<EmbeddedMember>(cube_, hierarchy_, members.first + offset);
    }

    std::vector<std::unique_ptr<Member>> MembersNamed(const std::string& name) const override {
        std::vector<engine::MemberId> found;
        cube_->Hierarchies()[hierarchy_].FindByName(name, found);
        const auto members = Stored().members;
        std::vector<std::unique_ptr<Member>> result;
        for (const auto member : found) {
            if (member >= members.first && member < members.last) {
                result.push_back(std::make_unique<EmbeddedMember>(cube_, hierarchy_, member));
            }
        }
        return result;
    }

private:
    const engine::Level& Stored() const { return cube_->Hierarchies()[hierarchy_].Levels()[level_]; }

    CubePointer cube_;
    std::size_t hierarchy_;
    std::size_t level_;
};

class EmbeddedHierarchy : public Hierarchy {
public:
    EmbeddedHierarchy(CubePointer cube, std::size_t hierarchy)
        : cube_(std::move(cube)), hierarchy_(hierarchy) {}

    std::string Name() const override { return Stored().Name(); }
    std::string Caption() const override { return Stored().Caption(); }
    std::string UniqueName() const override { return Stored().UniqueName(); }
    std::int32_t LevelCount() const override { return static_cast<std::int32_t>(Stored().Levels().size()); }

    std::unique_ptr<Level> LevelAt(std::int32_t index) const override {
        return std::make_unique<EmbeddedLevel>(cube_, hierarchy_,
                                               CheckedIndex(index, Stored().Levels().size()));
    }

    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        const auto found = Stored().FindLevel(name);
        if (!found) {
            throw ProviderError(errorItemNotFound,
                                fmt::format("The hierarchy {} has no level '{}'.", UniqueName(), name));
        }
        return std::make_unique<EmbeddedLevel>(cube_, hierarchy_, *found);
    }

private:
    const engine::Hierarchy& Stored() const { return cube_->Hierarchies()[hierarchy_]; }

    CubePointer cube_;
    std::size_t hierarchy_;
};

class EmbeddedDimension : public Dimension {
public:
    EmbeddedDimension(CubePointer cube, std::size_t dimension)
        : cube_(std::move(cube)), dimension_(dimension) {}

    std::string Name() const override { return Stored().name; }
    std::string Caption() const override { return Stored().caption; }

    std::int32_t HierarchyCount() const override {
        return static_cast<std::int32_t>(Stored().hierarchies.size());
    }

    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        const auto& hierarchies = Stored().hierarchies;
        return std::make_unique<EmbeddedHierarchy>(cube_,
                                                   hierarchies[CheckedIndex(index, hierarchies.size())]);
    }

private:
    const engine::Dimension& Stored() const { return cube_->Dimensions()[dimension_]; }

    CubePointer cube_;
    std::size_t dimension_;
};

} // namespace

std::unique_ptr<Dimension> MakeLocalDimension(std::shared_ptr<const engine::Cube> cube,
                                              std::size_t dimension) {
    return std::make_unique<EmbeddedDimension>(std::move(cube), dimension);
}

} // namespace qel
