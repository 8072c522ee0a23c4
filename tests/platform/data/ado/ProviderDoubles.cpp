#include "tests/platform/data/ado/ProviderDoubles.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/VariantConversion.h"
#include "tests/helpers/automation/NamedClass.h"
#include "tests/platform/data/ado/EngineDoubles.h"

#include <map>

namespace qel::test {

namespace {

using Log = std::shared_ptr<ProviderLog>;

void FailIf(const std::optional<ScriptedFailure>& failure) {
    if (failure) {
        throw *failure;
    }
}

/// The connections by their objects, so that a cellset finds the engine's own.
std::map<IDispatch*, std::shared_ptr<Connection>>& Connections() {
    static std::map<IDispatch*, std::shared_ptr<Connection>> connections;
    return connections;
}

ComPointer<IDispatch> MakeCatalog(const Log& log) {
    auto object = MakeDouble();
    const std::shared_ptr<Catalog> catalog = Engine().CreateCatalog();
    DefineMethod(*object.Get(), L"ActiveConnection", [catalog, log](const Inputs& inputs) {
        if (V_VT(inputs.at(0)) == VT_DISPATCH) {
            log->catalogs.emplace_back("a connection");
            catalog->SetActiveConnection(Connections().at(V_DISPATCH(inputs.at(0))));
            return;
        }
        log->catalogs.push_back(TextAt(inputs, 0));
        catalog->SetActiveConnection(EngineText(TextAt(inputs, 0)));
    });
    DefineObject(*object.Get(), L"CubeDefs", [catalog] {
        return Collection(catalog->CubeCount(), [catalog](const Variant& key) {
            return MakeCubeDef(catalog->CubeAt(key.As<std::int32_t>()));
        });
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeField(const std::shared_ptr<Recordset>& rows, std::int32_t index) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", rows->FieldName(index));
    DefineProperty(*object.Get(), L"Value", [rows, index] { return rows->FieldValue(index); });
    return Finished(object);
}

ComPointer<IDispatch> MakeNamedField(const std::shared_ptr<Recordset>& rows, const std::string& name) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Value", rows->FieldValueNamed(name));
    return Finished(object);
}

ComPointer<IDispatch> MakeRecordset(const Log& log, const std::shared_ptr<Recordset>& rows) {
    auto object = MakeDouble();
    DefineMethod(*object.Get(), L"Open", [rows, log](const Inputs& inputs) {
        log->recordsets.push_back(TextAt(inputs, 0) + "|" + std::to_string(NumberAt(inputs, 2)) + "|" +
                                  std::to_string(NumberAt(inputs, 3)) + "|" +
                                  std::to_string(NumberAt(inputs, 4)));
        FailIf(log->statementFailure);
        rows->Open(TextAt(inputs, 0), Connections().at(V_DISPATCH(inputs.at(1))), -1, -1, -1);
    });
    DefineMethod(*object.Get(), L"Close", [rows, log](const Inputs&) {
        ++log->recordsetsClosed;
        rows->Close();
    });
    DefineMethod(*object.Get(), L"MoveFirst", [rows](const Inputs&) { rows->MoveFirst(); });
    DefineMethod(*object.Get(), L"MoveNext", [rows](const Inputs&) { rows->MoveNext(); });
    DefineProperty(*object.Get(), L"EOF", [rows] { return Variant(rows->AtEnd()); });
    DefineObject(*object.Get(), L"Fields", [rows] {
        return Collection(rows->FieldCount(), [rows](const Variant& key) {
            return key.Is<std::string>() ? MakeNamedField(rows, key.As<std::string>())
                                         : MakeField(rows, key.As<std::int32_t>());
        });
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeConnection(const Log& log) {
    auto object = MakeDouble();
    const std::shared_ptr<Connection> connection = Engine().CreateConnection();
    // Counts the object for as long as its members live.
    const std::shared_ptr<void> life(nullptr, [log](void*) { --log->alive; });
    ++log->alive;
    Connections()[object.Get()] = connection;
    const auto text = std::make_shared<std::string>();
    DefineMethod(*object.Get(), L"Open", [connection, log, text, life](const Inputs& inputs) {
        *text = TextAt(inputs, 0);
        log->opened.push_back(*text + "|" + TextAt(inputs, 1) + "|" + TextAt(inputs, 2) + "|" +
                              std::to_string(NumberAt(inputs, 3)));
        FailIf(log->openFailure);
        connection->Open(EngineText(*text), "", "", optionsUnspecified);
    });
    DefineMethod(*object.Get(), L"Close", [connection, log](const Inputs&) {
        ++log->connectionsClosed;
        connection->Close();
    });
    DefineProperty(*object.Get(), L"State",
                   [connection] { return Variant(std::int32_t{connection->State()}); });
    DefineProperty(*object.Get(), L"ConnectionString", [text] { return Variant(*text); });
    DefineProperty(*object.Get(), L"Provider", [connection] { return Variant(connection->Provider()); });
    DefineProperty(*object.Get(), L"DefaultDatabase",
                   [connection] { return Variant(connection->DefaultDatabase()); });
    object->Define(L"OpenSchema", [connection, log](const Inputs& inputs) {
        return Scripted([&] {
            const std::shared_ptr<Recordset> rows = connection->OpenSchema(NumberAt(inputs, 0));
            return ObjectValue(MakeRecordset(log, rows));
        });
    });
    return Finished(object);
}

ComPointer<IDispatch> MakeCellsetMember(const CellsetMember& member) {
    auto object = MakeDouble();
    DefineValue(*object.Get(), L"Name", member.name);
    DefineValue(*object.Get(), L"UniqueName", member.uniqueName);
    DefineValue(*object.Get(), L"LevelName", member.levelName);
    DefineValue(*object.Get(), L"LevelDepth", member.levelDepth);
    DefineValue(*object.Get(), L"Caption", member.caption ? Variant(*member.caption) : Variant(Null{}));
    return Finished(object);
}

ComPointer<IDispatch> MakePositions(const std::shared_ptr<Cellset>& cellset, std::int32_t axis) {
    return Collection(cellset->PositionCount(axis), [cellset, axis](const Variant& position) {
        const auto at = position.As<std::int32_t>();
        auto result = MakeDouble();
        if (at >= cellset->PositionCount(axis)) {
            throw AutomationError(3265, "Item cannot be found in the collection");
        }
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
    DefineMethod(*object.Get(), L"Open", [cellset, log](const Inputs& inputs) {
        log->statements.push_back(TextAt(inputs, 0));
        FailIf(log->statementFailure);
        cellset->Open(TextAt(inputs, 0), Connections().at(V_DISPATCH(inputs.at(1))));
    });
    DefineMethod(*object.Get(), L"Close", [cellset, log](const Inputs&) {
        ++log->cellsetsClosed;
        cellset->Close();
    });
    object->Define(L"Item", [cellset](const Inputs& inputs) {
        return Scripted([&] {
            auto cell = MakeDouble();
            DefineValue(*cell.Get(), L"Value", cellset->Value({NumberAt(inputs, 0), NumberAt(inputs, 1)}));
            return ObjectValue(Finished(cell));
        });
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
    classes_.push_back(std::make_unique<NamedClass>(
        L"ADODB.Recordset", [log] { return MakeRecordset(log, Engine().CreateRecordset()); }));
    classes_.push_back(std::make_unique<NamedClass>(L"ADOMD.Catalog", [log] { return MakeCatalog(log); }));
    classes_.push_back(std::make_unique<NamedClass>(L"ADOMD.Cellset", [log] { return MakeCellset(log); }));
}

ProviderDoubles::~ProviderDoubles() { Connections().clear(); }

} // namespace qel::test
