#include "platform/windows/VariantConversion.h"
#include "tests/platform/data/ado/EngineDoubles.h"

// ADOMD's objects of a cube's metadata.

namespace qel::test {

namespace {

/// The provider's properties of an object, of which only the caption is asked for.
void DefineCaption(DispatchDouble& object, const std::string& property, const std::string& caption) {
    DefineObject(object, L"Properties", [property, caption] {
        return Collection(1, [property, caption](const Variant& key) {
            auto result = MakeDouble();
            DefineValue(*result.Get(), L"Value", key.As<std::string>() == property ? caption : "");
            return Finished(result);
        });
    });
}

ComPointer<IDispatch> MakeMember(const std::shared_ptr<Member>& member) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", member->Name());
    DefineValue(*object.Get(), L"Caption", member->Caption());
    DefineValue(*object.Get(), L"UniqueName", member->UniqueName());
    DefineObject(*object.Get(), L"Parent", [member] {
        const std::shared_ptr<Member> parent = member->Parent();
        return parent ? MakeMember(parent) : ComPointer<IDispatch>();
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeLevel(const std::shared_ptr<Level>& level) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", level->Name());
    DefineValue(*object.Get(), L"Caption", level->Caption());
    DefineObject(*object.Get(), L"Members", [level] {
        return Collection(level->MemberCount(), [level](const Variant& key) {
            return MakeMember(level->MemberAt(key.As<std::int32_t>()));
        });
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeHierarchy(const std::shared_ptr<Hierarchy>& hierarchy) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", hierarchy->Name());
    DefineValue(*object.Get(), L"UniqueName", hierarchy->UniqueName());
    DefineCaption(*object.Get(), "HIERARCHY_CAPTION", hierarchy->Caption());
    DefineObject(*object.Get(), L"Levels", [hierarchy] {
        return Collection(hierarchy->LevelCount(), [hierarchy](const Variant& key) {
            return MakeLevel(key.Is<std::string>() ? hierarchy->LevelNamed(key.As<std::string>())
                                                   : hierarchy->LevelAt(key.As<std::int32_t>()));
        });
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeDimension(const std::shared_ptr<Dimension>& dimension) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", dimension->Name());
    DefineCaption(*object.Get(), "DIMENSION_CAPTION", dimension->Caption());
    DefineObject(*object.Get(), L"Hierarchies", [dimension] {
        return Collection(dimension->HierarchyCount(), [dimension](const Variant& key) {
            return MakeHierarchy(dimension->HierarchyAt(key.As<std::int32_t>()));
        });
    });
    return Finished(object);
}

} // namespace

ComPointer<IDispatch> MakeCubeDef(const std::shared_ptr<CubeDef>& cube) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", cube->Name());
    DefineObject(*object.Get(), L"Dimensions", [cube] {
        return Collection(cube->DimensionCount(), [cube](const Variant& key) {
            return MakeDimension(key.Is<std::string>() ? cube->DimensionNamed(key.As<std::string>())
                                                       : cube->DimensionAt(key.As<std::int32_t>()));
        });
    });
    return Finished(object);
}

} // namespace qel::test
