#include "tests/server/ProviderDoubles.h"

#include "platform/AutomationError.h"
#include "platform/local/LocalDataAccess.h"
#include "platform/windows/Bstr.h"
#include "platform/windows/VariantConversion.h"

#include <gtest/gtest.h>

namespace qel::test {

namespace {

using Log = std::shared_ptr<ProviderLog>;
using Inputs = std::vector<const VARIANT*>;
using Factory = NamedClass::Factory;

LocalDataAccess& Engine() {
    static LocalDataAccess engine;
    return engine;
}

std::string TextAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::string>();
}

std::int32_t NumberAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::int32_t>();
}

std::string EngineText(std::string text) {
    const std::string alias = "double:ledger";
    if (const auto at = text.find(alias); at != std::string::npos)
        text.replace(at, alias.size(), QEL_TEST_CUBE);
    return text;
}

/// Runs the engine; its errors leave as the double's own.
template <class Work>
auto Scripted(const Work& work) {
    try {
        return work();
    } catch (const AutomationError& error) {
        throw ScriptedFailure{error.Number(), error.Description(), error.Source()};
    }
}

template <class T>
void DefineValue(DispatchDouble& object, const std::wstring& name, const T& value) {
    object.Define(name, [value](const Inputs&) { return windows::ToAutomation(Variant(value)); });
}

void DefineObject(DispatchDouble& object, const std::wstring& name, Factory make) {
    object.Define(name, [make](const Inputs&) { return ObjectValue(make()); });
}

ComPointer<IDispatch> Finished(const ComPointer<DispatchDouble>& object) {
    return ComPointer<IDispatch>(object.Get());
}

/// A collection with Count and Item, the item by number or by name.
ComPointer<IDispatch> Collection(std::int32_t count,
                                 std::function<ComPointer<IDispatch>(const Variant& key)> item) {
    auto collection = MakeDouble();
    DefineValue(*collection.Get(), L"Count", count);
    collection->Define(L"Item", [item](const Inputs& inputs) {
        return Scripted([&] { return ObjectValue(item(windows::FromAutomation(*inputs.at(0)))); });
    });
    return Finished(collection);
}

ComPointer<IDispatch> MakeMember(std::shared_ptr<Member> member) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", member->Name());
    DefineValue(*object.Get(), L"UniqueName", member->UniqueName());
    object->Define(L"Parent", [member](const Inputs&) {
        std::shared_ptr<Member> parent = member->Parent();
        return ObjectValue(parent ? MakeMember(parent) : ComPointer<IDispatch>());
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeLevel(std::shared_ptr<Level> level) {
    auto object = MakeDouble();
    DefineObject(*object.Get(), L"Members", [level] {
        return Collection(level->MemberCount(), [level](const Variant& key) {
            return MakeMember(level->MemberAt(key.As<std::int32_t>()));
        });
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeDimension(std::shared_ptr<Dimension> dimension) {
    auto object = MakeDouble();
    DefineObject(*object.Get(), L"Hierarchies", [dimension] {
        return Collection(dimension->HierarchyCount(), [dimension](const Variant& key) {
            const std::shared_ptr<Hierarchy> hierarchy = dimension->HierarchyAt(key.As<std::int32_t>());
            auto result = MakeDouble();
            DefineObject(*result.Get(), L"Levels", [hierarchy] {
                return Collection(hierarchy->LevelCount(), [hierarchy](const Variant& level) {
                    return MakeLevel(level.Is<std::string>() ? hierarchy->LevelNamed(level.As<std::string>())
                                                             : hierarchy->LevelAt(level.As<std::int32_t>()));
                });
            });
            return Finished(result);
        });
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeCatalog(const Log& log) {
    auto object = MakeDouble();
    const std::shared_ptr<Catalog> catalog = Engine().CreateCatalog();
    object->Define(L"ActiveConnection", [catalog, log](const Inputs& inputs) {
        log->catalogs.push_back(TextAt(inputs, 0));
        Scripted([&] { catalog->SetActiveConnection(EngineText(TextAt(inputs, 0))); });
        return OwnedVariant();
    });
    DefineObject(*object.Get(), L"CubeDefs", [catalog] {
        return Collection(catalog->CubeCount(), [catalog](const Variant& key) {
            const std::shared_ptr<CubeDef> cube = catalog->CubeAt(key.As<std::int32_t>());
            auto result = MakeDouble();
            DefineObject(*result.Get(), L"Dimensions", [cube] {
                return Collection(cube->DimensionCount(), [cube](const Variant& name) {
                    return MakeDimension(cube->DimensionNamed(name.As<std::string>()));
                });
            });
            return Finished(result);
        });
    });
    return Finished(object);
}

/// The connections by their objects, so that a cellset finds the engine's own.
std::map<IDispatch*, std::shared_ptr<Connection>>& Connections() {
    static std::map<IDispatch*, std::shared_ptr<Connection>> connections;
    return connections;
}

ComPointer<IDispatch> MakeConnection(const Log& log) {
    auto object = MakeDouble();
    const std::shared_ptr<Connection> connection = Engine().CreateConnection();
    // Counts the object for as long as its members live.
    const std::shared_ptr<void> life(nullptr, [log](void*) { --log->alive; });
    ++log->alive;
    Connections()[object.Get()] = connection;
    const auto text = std::make_shared<std::string>();
    object->Define(L"Open", [connection, log, text, life](const Inputs& inputs) {
        *text = TextAt(inputs, 0);
        log->opened.push_back(*text + "|" + TextAt(inputs, 1) + "|" + TextAt(inputs, 2) + "|" +
                              std::to_string(NumberAt(inputs, 3)));
        if (log->openFailure)
            throw *log->openFailure;
        Scripted([&] { connection->Open(EngineText(*text), "", "", optionsUnspecified); });
        return OwnedVariant();
    });
    object->Define(L"Close", [connection, log](const Inputs&) {
        ++log->connectionsClosed;
        connection->Close();
        return OwnedVariant();
    });
    object->Define(L"State", [connection](const Inputs&) {
        return windows::ToAutomation(std::int32_t{connection->State()});
    });
    object->Define(L"ConnectionString", [text](const Inputs&) { return windows::ToAutomation(*text); });
    return Finished(object);
}

ComPointer<IDispatch> MakeCellsetMember(const CellsetMember& member) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", member.name);
    DefineValue(*object.Get(), L"UniqueName", member.uniqueName);
    DefineValue(*object.Get(), L"LevelName", member.levelName);
    DefineValue(*object.Get(), L"LevelDepth", member.levelDepth);
    DefineValue(*object.Get(), L"Caption", member.caption.value_or(""));
    return Finished(object);
}

ComPointer<IDispatch> MakePositions(const std::shared_ptr<Cellset>& cellset, std::int32_t axis) {
    return Collection(cellset->PositionCount(axis), [cellset, axis](const Variant& position) {
        const auto at = position.As<std::int32_t>();
        auto result = MakeDouble();
        if (at >= cellset->PositionCount(axis))
            throw AutomationError(3265, "Item cannot be found in the collection");
        DefineObject(*result.Get(), L"Members", [cellset, axis, at] {
            return Collection(cellset->MemberCount(axis, at), [cellset, axis, at](const Variant& index) {
                return MakeCellsetMember(cellset->MemberAt(axis, at, index.As<std::int32_t>()));
            });
        });
        return Finished(result);
    });
}

ComPointer<IDispatch> MakeCellset(const Log& log) {
    auto object = MakeDouble();
    const std::shared_ptr<Cellset> cellset = Engine().CreateCellset();
    object->Define(L"Open", [cellset, log](const Inputs& inputs) {
        log->statements.push_back(TextAt(inputs, 0));
        if (log->statementFailure)
            throw *log->statementFailure;
        Scripted([&] { cellset->Open(TextAt(inputs, 0), Connections().at(V_DISPATCH(inputs.at(1)))); });
        return OwnedVariant();
    });
    object->Define(L"Close", [cellset, log](const Inputs&) {
        ++log->cellsetsClosed;
        cellset->Close();
        return OwnedVariant();
    });
    object->Define(L"Item", [cellset](const Inputs& inputs) {
        const Variant value = cellset->Value({NumberAt(inputs, 0), NumberAt(inputs, 1)});
        auto cell = MakeDouble();
        cell->Define(L"Value", [value](const Inputs&) { return windows::ToAutomation(value); });
        return ObjectValue(Finished(cell));
    });
    DefineObject(*object.Get(), L"Axes", [cellset] {
        return Collection(cellset->AxisCount(), [cellset](const Variant& axis) {
            const auto at = axis.As<std::int32_t>();
            auto result = MakeDouble();
            DefineObject(*result.Get(), L"Positions", [cellset, at] { return MakePositions(cellset, at); });
            return Finished(result);
        });
    });
    return Finished(object);
}

} // namespace

ProviderDoubles::ProviderDoubles() : log_(std::make_shared<ProviderLog>()) {
    const auto log = log_;
    classes_.push_back(
        std::make_unique<NamedClass>(L"ADODB.Connection", [log] { return MakeConnection(log); }));
    classes_.push_back(std::make_unique<NamedClass>(L"ADOMD.Catalog", [log] { return MakeCatalog(log); }));
    classes_.push_back(std::make_unique<NamedClass>(L"ADOMD.Cellset", [log] { return MakeCellset(log); }));
}

ProviderDoubles::~ProviderDoubles() { Connections().clear(); }

} // namespace qel::test
