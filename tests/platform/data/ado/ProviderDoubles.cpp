#include "tests/platform/data/ado/ProviderDoubles.h"

#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/automation/RecordsetDouble.h"
#include "tests/platform/data/ado/MetadataDoubles.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <map>

namespace qel::test {

namespace {

using LogPointer = std::shared_ptr<ProviderLog>;

/// The engine behind all doubles.
DataAccess& Engine() {
    static EmbeddedDataAccess engine;
    return engine;
}

/// The connection text with a double's data source replaced by the example's cube.
std::string EngineText(const ProviderLog& log, const std::string& text) {
    return ReplaceAll(text, log.cubeFile, QEL_TEST_CUBE);
}

void FailIf(const std::optional<ScriptedFailure>& failure) {
    if (failure) {
        throw ScriptedFailure(*failure);
    }
}

/// The engine's connections by the objects that stand for them.
std::map<IDispatch*, std::shared_ptr<Connection>>& Connections() {
    static std::map<IDispatch*, std::shared_ptr<Connection>> connections;
    return connections;
}

std::shared_ptr<Connection> ConnectionAt(const Inputs& inputs, std::size_t index) {
    return Connections().at(V_DISPATCH(inputs.at(index)));
}

ComPointer<IDispatch> MakeCatalog(const LogPointer& log) {
    return MakeObject([&](DispatchDouble& object) {
        const std::shared_ptr<Catalog> catalog = Engine().CreateCatalog();
        object.Put(L"ActiveConnection", [catalog, log](const Inputs& inputs) {
            if (V_VT(inputs.at(0)) == VT_DISPATCH) {
                log->catalogs.emplace_back("a connection");
                catalog->SetActiveConnection(ConnectionAt(inputs, 0));
                return;
            }
            log->catalogs.push_back(TextAt(inputs, 0));
            catalog->SetActiveConnection(EngineText(*log, TextAt(inputs, 0)));
        });
        object.Child(L"CubeDefs", [catalog] {
            return MakeCollection(catalog->CubeCount(), [catalog](const Variant& key) {
                return MakeCubeDef(catalog->CubeAt(key.As<std::int32_t>()));
            });
        });
    });
}

ComPointer<IDispatch> MakeRecordset(const LogPointer& log, const std::shared_ptr<Recordset>& rows) {
    return MakeObject([&](DispatchDouble& object) {
        DefineRows(object, rows);
        object.Method(L"Open", [rows, log](const Inputs& inputs) {
            log->recordsets.push_back(fmt::format("{}|{}|{}|{}", TextAt(inputs, 0), NumberAt(inputs, 2),
                                                  NumberAt(inputs, 3), NumberAt(inputs, 4)));
            FailIf(log->statementFailure);
            rows->Open(TextAt(inputs, 0), ConnectionAt(inputs, 1), -1, -1, -1);
        });
        object.Method(L"Close", [rows, log](const Inputs&) {
            ++log->recordsetsClosed;
            rows->Close();
        });
    });
}

ComPointer<IDispatch> MakeConnection(const LogPointer& log) {
    return MakeObject([&](DispatchDouble& object) {
        const std::shared_ptr<Connection> connection = Engine().CreateConnection();
        // Counts the object for as long as its members live.
        const std::shared_ptr<void> life(nullptr, [log](void*) { --log->alive; });
        ++log->alive;
        Connections()[&object] = connection;
        const auto text = std::make_shared<std::string>();
        object.Method(L"Open", [connection, log, text, life](const Inputs& inputs) {
            *text = TextAt(inputs, 0);
            log->opened.push_back(
                fmt::format("{}|{}|{}|{}", *text, TextAt(inputs, 1), TextAt(inputs, 2), NumberAt(inputs, 3)));
            FailIf(log->openFailure);
            connection->Open(EngineText(*log, *text), "", "", optionsUnspecified);
        });
        object.Method(L"Close", [connection, log](const Inputs&) {
            ++log->connectionsClosed;
            connection->Close();
        });
        object.Property(L"State", [connection] { return Variant(std::int32_t{connection->State()}); });
        object.Property(L"ConnectionString", [text] { return Variant(*text); });
        object.Property(L"Provider", [connection] { return Variant(connection->Provider()); });
        object.Property(L"DefaultDatabase", [connection] { return Variant(connection->DefaultDatabase()); });
        object.Define(L"OpenSchema", [connection, log](const Inputs& inputs) {
            return ObjectValue(MakeRecordset(log, connection->OpenSchema(NumberAt(inputs, 0))));
        });
    });
}

ComPointer<IDispatch> MakeCellsetMember(const CellsetMember& member) {
    return MakeObject([&](DispatchDouble& object) {
        object.Value(L"Name", member.name);
        object.Value(L"UniqueName", member.uniqueName);
        object.Value(L"LevelName", member.levelName);
        object.Value(L"LevelDepth", member.levelDepth);
        object.Value(L"Caption", member.caption ? Variant(*member.caption) : Variant(Null{}));
    });
}

ComPointer<IDispatch> MakePositions(const std::shared_ptr<Cellset>& cellset, std::int32_t axis) {
    return MakeCollection(cellset->PositionCount(axis), [cellset, axis](const Variant& position) {
        const auto at = position.As<std::int32_t>();
        if (at >= cellset->PositionCount(axis)) {
            throw AutomationError(3265, "Item cannot be found in the collection");
        }
        return MakeObject([&](DispatchDouble& result) {
            result.Child(L"Members", [cellset, axis, at] {
                return MakeCollection(
                    cellset->MemberCount(axis, at), [cellset, axis, at](const Variant& index) {
                        return MakeCellsetMember(cellset->MemberAt(axis, at, index.As<std::int32_t>()));
                    });
            });
        });
    });
}

ComPointer<IDispatch> MakeCellset(const LogPointer& log) {
    return MakeObject([&](DispatchDouble& object) {
        const std::shared_ptr<Cellset> cellset = Engine().CreateCellset();
        object.Method(L"Open", [cellset, log](const Inputs& inputs) {
            log->statements.push_back(TextAt(inputs, 0));
            FailIf(log->statementFailure);
            cellset->Open(TextAt(inputs, 0), ConnectionAt(inputs, 1));
        });
        object.Method(L"Close", [cellset, log](const Inputs&) {
            ++log->cellsetsClosed;
            cellset->Close();
        });
        object.Define(L"Item", [cellset](const Inputs& inputs) {
            const Variant value = cellset->Value({NumberAt(inputs, 0), NumberAt(inputs, 1)});
            return ObjectValue(MakeObject([&](DispatchDouble& cell) { cell.Value(L"Value", value); }));
        });
        object.Child(L"Axes", [cellset] {
            return MakeCollection(cellset->AxisCount(), [cellset](const Variant& axis) {
                const auto at = axis.As<std::int32_t>();
                return MakeObject([&](DispatchDouble& result) {
                    result.Child(L"Positions", [cellset, at] { return MakePositions(cellset, at); });
                });
            });
        });
    });
}

} // namespace

ProviderDoubles::ProviderDoubles() : log_(std::make_shared<ProviderLog>()) {
    const auto add = [this](const wchar_t* progId,
                            const std::function<ComPointer<IDispatch>(const LogPointer&)>& make) {
        classes_.push_back(std::make_unique<NamedClass>(progId, [log = log_, make] { return make(log); }));
    };
    add(L"ADODB.Connection", MakeConnection);
    add(L"ADODB.Recordset",
        [](const LogPointer& log) { return MakeRecordset(log, Engine().CreateRecordset()); });
    add(L"ADOMD.Catalog", MakeCatalog);
    add(L"ADOMD.Cellset", MakeCellset);
}

ProviderDoubles::~ProviderDoubles() { Connections().clear(); }

} // namespace qel::test
