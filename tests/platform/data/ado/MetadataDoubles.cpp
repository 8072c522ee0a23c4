#include "tests/platform/data/ado/MetadataDoubles.h"

namespace qel::test {

namespace {

/// The provider's properties of an object; only the caption is read.
void DefineCaption(DispatchDouble& object, const std::string& property, const std::string& caption) {
    object.Child(L"Properties", [property, caption] {
        return MakeCollection(1, [property, caption](const Variant& key) {
            return MakeObject([&](DispatchDouble& result) {
                result.Value(L"Value", key.As<std::string>() == property ? caption : "");
            });
        });
    });
}

ComPointer<IDispatch> MakeMember(const std::shared_ptr<Member>& member) {
    return MakeObject([&](DispatchDouble& object) {
        object.Value(L"Name", member->Name());
        object.Value(L"Caption", member->Caption());
        object.Value(L"UniqueName", member->UniqueName());
        object.Child(L"Parent", [member] {
            const std::shared_ptr<Member> parent = member->Parent();
            return parent ? MakeMember(parent) : ComPointer<IDispatch>();
        });
    });
}

ComPointer<IDispatch> MakeLevel(const std::shared_ptr<Level>& level) {
    return MakeObject([&](DispatchDouble& object) {
        object.Value(L"Name", level->Name());
        object.Value(L"Caption", level->Caption());
        object.Child(L"Members", [level] {
            return MakeCollection(level->MemberCount(), [level](const Variant& key) {
                return MakeMember(level->MemberAt(key.As<std::int32_t>()));
            });
        });
    });
}

ComPointer<IDispatch> MakeHierarchy(const std::shared_ptr<Hierarchy>& hierarchy) {
    return MakeObject([&](DispatchDouble& object) {
        object.Value(L"Name", hierarchy->Name());
        object.Value(L"UniqueName", hierarchy->UniqueName());
        DefineCaption(object, "HIERARCHY_CAPTION", hierarchy->Caption());
        object.Child(L"Levels", [hierarchy] {
            return MakeCollection(hierarchy->LevelCount(), [hierarchy](const Variant& key) {
                return MakeLevel(key.Is<std::string>() ? hierarchy->LevelNamed(key.As<std::string>())
                                                       : hierarchy->LevelAt(key.As<std::int32_t>()));
            });
        });
    });
}

ComPointer<IDispatch> MakeDimension(const std::shared_ptr<Dimension>& dimension) {
    return MakeObject([&](DispatchDouble& object) {
        object.Value(L"Name", dimension->Name());
        DefineCaption(object, "DIMENSION_CAPTION", dimension->Caption());
        object.Child(L"Hierarchies", [dimension] {
            return MakeCollection(dimension->HierarchyCount(), [dimension](const Variant& key) {
                return MakeHierarchy(dimension->HierarchyAt(key.As<std::int32_t>()));
            });
        });
    });
}

} // namespace

ComPointer<IDispatch> MakeCubeDef(const std::shared_ptr<CubeDef>& cube) {
    return MakeObject([&](DispatchDouble& object) {
        object.Value(L"Name", cube->Name());
        object.Child(L"Dimensions", [cube] {
            return MakeCollection(cube->DimensionCount(), [cube](const Variant& key) {
                return MakeDimension(key.Is<std::string>() ? cube->DimensionNamed(key.As<std::string>())
                                                           : cube->DimensionAt(key.As<std::int32_t>()));
            });
        });
    });
}

} // namespace qel::test
