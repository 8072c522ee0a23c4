#include "platform/data/ado/AdoCatalog.h"

#include "platform/data/ado/AdoConnection.h"
#include "platform/windows/VariantConversion.h"

namespace qel::windows {

namespace {

/// Base of a catalog's objects. Collections are indexed by number or by name.
template <class Interface>
class NamedObject : public Interface {
public:
    explicit NamedObject(DispatchObject object) : object_(std::move(object)) {}

    std::string Name() const override { return object_.Text(L"Name"); }

protected:
    std::int32_t Count(const wchar_t* collection) const { return object_.Child(collection).Number(L"Count"); }

    template <class Item, class Key>
    std::unique_ptr<Item> ItemOf(const wchar_t* collection, const Key& key) const {
        return std::make_unique<Item>(object_.Child(collection).Child(L"Item", ArgumentList(key)));
    }

    /// A dimension or hierarchy keeps its caption among its provider's properties.
    std::string CaptionIn(std::string_view property) const {
        return object_.Child(L"Properties").Child(L"Item", ArgumentList(property)).Text(L"Value");
    }

    DispatchObject object_;
};

class AdoMember : public NamedObject<Member> {
public:
    using NamedObject::NamedObject;

    std::string Caption() const override { return object_.Text(L"Caption"); }
    std::string UniqueName() const override { return object_.Text(L"UniqueName"); }

    std::unique_ptr<Member> Parent() const override {
        const OwnedVariant parent = object_.Property(L"Parent");
        const VARIANT& value = Dereferenced(parent.Get());
        if (V_VT(&value) != VT_DISPATCH || V_DISPATCH(&value) == nullptr) {
            return nullptr;
        }
        return std::make_unique<AdoMember>(
            DispatchObject(ComPointer<IDispatch>(V_DISPATCH(&value)), "Member"));
    }
};

/// Reads the Members collection once, because each access may run a query.
class AdoLevel : public NamedObject<Level> {
public:
    explicit AdoLevel(DispatchObject level)
        : NamedObject(std::move(level)), members_(object_.Child(L"Members")) {}

    std::string Caption() const override { return object_.Text(L"Caption"); }
    std::int32_t MemberCount() const override { return members_.Number(L"Count"); }
    std::unique_ptr<Member> MemberAt(std::int32_t index) const override {
        return std::make_unique<AdoMember>(members_.Child(L"Item", ArgumentList(index)));
    }

private:
    DispatchObject members_;
};

class AdoHierarchy : public NamedObject<Hierarchy> {
public:
    using NamedObject::NamedObject;

    std::string Caption() const override { return CaptionIn("HIERARCHY_CAPTION"); }
    std::string UniqueName() const override { return object_.Text(L"UniqueName"); }
    std::int32_t LevelCount() const override { return Count(L"Levels"); }
    std::unique_ptr<Level> LevelAt(std::int32_t index) const override {
        return ItemOf<AdoLevel>(L"Levels", index);
    }
    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        return ItemOf<AdoLevel>(L"Levels", name);
    }
};

class AdoDimension : public NamedObject<Dimension> {
public:
    using NamedObject::NamedObject;

    std::string Caption() const override { return CaptionIn("DIMENSION_CAPTION"); }
    std::int32_t HierarchyCount() const override { return Count(L"Hierarchies"); }
    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        return ItemOf<AdoHierarchy>(L"Hierarchies", index);
    }
};

class AdoCubeDef : public NamedObject<CubeDef> {
public:
    using NamedObject::NamedObject;

    std::int32_t DimensionCount() const override { return Count(L"Dimensions"); }
    std::unique_ptr<Dimension> DimensionAt(std::int32_t index) const override {
        return ItemOf<AdoDimension>(L"Dimensions", index);
    }
    std::unique_ptr<Dimension> DimensionNamed(const std::string& name) const override {
        return ItemOf<AdoDimension>(L"Dimensions", name);
    }
};

} // namespace

void AdoCatalog::SetActiveConnection(const std::string& connectionString) {
    catalog_.Put(L"ActiveConnection", ToArgument(connectionString));
}

void AdoCatalog::SetActiveConnection(const std::shared_ptr<Connection>& connection) {
    catalog_.Put(L"ActiveConnection", ToArgument(AdoConnection::ObjectOf(connection)));
}

std::int32_t AdoCatalog::CubeCount() const { return catalog_.Child(L"CubeDefs").Number(L"Count"); }

std::unique_ptr<CubeDef> AdoCatalog::CubeAt(std::int32_t index) const {
    return std::make_unique<AdoCubeDef>(catalog_.Child(L"CubeDefs").Child(L"Item", ArgumentList(index)));
}

} // namespace qel::windows
