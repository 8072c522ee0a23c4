#include "platform/windows/ado/LateBoundCatalog.h"

#include "platform/windows/VariantConversion.h"
#include "platform/windows/ado/LateBoundConnection.h"

namespace qel::windows {

namespace {

/// A dimension or hierarchy keeps its caption among its provider's properties.
std::string CaptionIn(const DispatchObject& object, std::string_view property) {
    return object.Child(L"Properties").Child(L"Item", ArgumentList(property)).Text(L"Value");
}

/// The members of a collection object, by number or name.
template <class Interface, class Implementation, class Key>
std::unique_ptr<Interface> ItemOf(const DispatchObject& owner, const wchar_t* collection, const Key& key) {
    return std::make_unique<Implementation>(owner.Child(collection).Child(L"Item", ArgumentList(key)));
}

std::int32_t CountOf(const DispatchObject& owner, const wchar_t* collection) {
    return owner.Child(collection).Number(L"Count");
}

class LateBoundMember : public Member {
public:
    explicit LateBoundMember(DispatchObject member) : member_(std::move(member)) {}

    std::string Name() const override { return member_.Text(L"Name"); }
    std::string Caption() const override { return member_.Text(L"Caption"); }
    std::string UniqueName() const override { return member_.Text(L"UniqueName"); }

    std::unique_ptr<Member> Parent() const override {
        const OwnedVariant parent = member_.Property(L"Parent");
        const VARIANT& value = Dereferenced(parent.Get());
        if (V_VT(&value) != VT_DISPATCH || V_DISPATCH(&value) == nullptr)
            return nullptr;
        return std::make_unique<LateBoundMember>(
            DispatchObject(ComPointer<IDispatch>(V_DISPATCH(&value)), "Member"));
    }

private:
    DispatchObject member_;
};

/// Asks for its members once: each request may be a query of its own.
class LateBoundLevel : public Level {
public:
    explicit LateBoundLevel(DispatchObject level)
        : level_(std::move(level)), members_(level_.Child(L"Members")) {}

    std::string Name() const override { return level_.Text(L"Name"); }
    std::string Caption() const override { return level_.Text(L"Caption"); }
    std::int32_t MemberCount() const override { return members_.Number(L"Count"); }
    std::unique_ptr<Member> MemberAt(std::int32_t index) const override {
        return std::make_unique<LateBoundMember>(members_.Child(L"Item", ArgumentList(index)));
    }

private:
    DispatchObject level_;
    DispatchObject members_;
};

class LateBoundHierarchy : public Hierarchy {
public:
    explicit LateBoundHierarchy(DispatchObject hierarchy) : hierarchy_(std::move(hierarchy)) {}

    std::string Name() const override { return hierarchy_.Text(L"Name"); }
    std::string Caption() const override { return CaptionIn(hierarchy_, "HIERARCHY_CAPTION"); }
    std::string UniqueName() const override { return hierarchy_.Text(L"UniqueName"); }
    std::int32_t LevelCount() const override { return CountOf(hierarchy_, L"Levels"); }
    std::unique_ptr<Level> LevelAt(std::int32_t index) const override {
        return ItemOf<Level, LateBoundLevel>(hierarchy_, L"Levels", index);
    }
    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        return ItemOf<Level, LateBoundLevel>(hierarchy_, L"Levels", name);
    }

private:
    DispatchObject hierarchy_;
};

class LateBoundDimension : public Dimension {
public:
    explicit LateBoundDimension(DispatchObject dimension) : dimension_(std::move(dimension)) {}

    std::string Name() const override { return dimension_.Text(L"Name"); }
    std::string Caption() const override { return CaptionIn(dimension_, "DIMENSION_CAPTION"); }
    std::int32_t HierarchyCount() const override { return CountOf(dimension_, L"Hierarchies"); }
    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        return ItemOf<Hierarchy, LateBoundHierarchy>(dimension_, L"Hierarchies", index);
    }

private:
    DispatchObject dimension_;
};

class LateBoundCubeDef : public CubeDef {
public:
    explicit LateBoundCubeDef(DispatchObject cube) : cube_(std::move(cube)) {}

    std::string Name() const override { return cube_.Text(L"Name"); }
    std::int32_t DimensionCount() const override { return CountOf(cube_, L"Dimensions"); }
    std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const override {
        return ItemOf<Dimension, LateBoundDimension>(cube_, L"Dimensions", index);
    }
    std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const override {
        return ItemOf<Dimension, LateBoundDimension>(cube_, L"Dimensions", name);
    }

private:
    DispatchObject cube_;
};

} // namespace

void LateBoundCatalog::SetActiveConnection(const std::string& connectionString) {
    catalog_.Put(L"ActiveConnection", ToArgument(connectionString));
}

void LateBoundCatalog::SetActiveConnection(const std::shared_ptr<Connection>& connection) {
    catalog_.Put(L"ActiveConnection", ToArgument(LateBoundConnection::ObjectOf(connection)));
}

std::int32_t LateBoundCatalog::CubeCount() const { return CountOf(catalog_, L"CubeDefs"); }

std::unique_ptr<CubeDef> LateBoundCatalog::CubeAt(std::int32_t index) const {
    return ItemOf<CubeDef, LateBoundCubeDef>(catalog_, L"CubeDefs", index);
}

} // namespace qel::windows
