#include "tests/platform/database/jet/JetDoubles.h"

#include "platform/database/DatabaseFile.h"
#include "platform/windows/VariantConversion.h"

#include <filesystem>
#include <fstream>

namespace qel::test {

namespace {

using SharedLog = std::shared_ptr<JetLog>;
using Inputs = std::vector<const VARIANT*>;

constexpr auto databaseExists = static_cast<HRESULT>(0x80040E17);
constexpr auto fieldTooSmall = static_cast<HRESULT>(0x80040E57);
constexpr auto itemNotFound = static_cast<HRESULT>(0x800A0CC1);
constexpr std::size_t defaultLength = 255;

std::string TextAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::string>();
}

std::int32_t NumberAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::int32_t>();
}

/// Writes the call down, or fails when it is the one to fail.
void Note(const SharedLog& log, const std::string& call) {
    log->calls.push_back(call);
    if (call.substr(0, call.find(' ')) == log->failingCall) {
        throw ScriptedFailure{E_FAIL, "scripted: " + call, "double"};
    }
}

/// An object that is counted for as long as its members live.
ComPointer<DispatchDouble> MakeCounted(const SharedLog& log) {
    auto object = MakeDouble();
    ++log->alive;
    const std::shared_ptr<void> life(nullptr, [log](void*) { --log->alive; });
    object->DefineNumber(DISPID_VALUE, [life](const Inputs&) { return OwnedVariant(); });
    return object;
}

ComPointer<IDispatch> Finished(const ComPointer<DispatchDouble>& object) {
    return ComPointer<IDispatch>(object.Get());
}

void DefineObject(DispatchDouble& owner, const wchar_t* name, const ComPointer<DispatchDouble>& object) {
    owner.Define(name, [object](const Inputs&) { return ObjectValue(Finished(object)); });
}

struct ColumnState {
    std::string name;
    std::int32_t type = 0, size = 0, attributes = 0;
};

struct TableState {
    std::string name;
    std::vector<ColumnState> columns;

    ColumnState& Named(const std::string& column) {
        for (ColumnState& state : columns) {
            if (state.name == column) {
                return state;
            }
        }
        throw ScriptedFailure{itemNotFound, "Item cannot be found in the collection", "ADOX.Columns"};
    }
    std::string Description() const {
        std::string text = "table " + name + ":";
        for (const ColumnState& column : columns) {
            text += " " + column.name + "/" + std::to_string(column.type) + "/" +
                    std::to_string(column.size) + "/" + std::to_string(column.attributes);
        }
        return text;
    }
};

/// The tables by their objects, so that a catalog finds what is appended to it.
std::map<IDispatch*, std::shared_ptr<TableState>>& TableObjects() {
    static std::map<IDispatch*, std::shared_ptr<TableState>> tables;
    return tables;
}

ComPointer<IDispatch> MakeTable(const SharedLog& log) {
    const auto state = std::make_shared<TableState>();
    auto columns = MakeDouble();
    columns->Define(L"Append", [state](const Inputs& inputs) {
        state->columns.push_back({TextAt(inputs, 0), NumberAt(inputs, 1), NumberAt(inputs, 2), 0});
        return OwnedVariant();
    });
    columns->Define(L"Item", [state](const Inputs& inputs) {
        const std::string name = TextAt(inputs, 0);
        state->Named(name);
        auto column = MakeDouble();
        column->Define(L"Attributes", [state, name](const Inputs& values) {
            state->Named(name).attributes = NumberAt(values, 0);
            return OwnedVariant();
        });
        return ObjectValue(Finished(column));
    });
    auto table = MakeCounted(log);
    table->Define(L"Name", [state](const Inputs& inputs) {
        state->name = TextAt(inputs, 0);
        return OwnedVariant();
    });
    DefineObject(*table.Get(), L"Columns", columns);
    TableObjects()[table.Get()] = state;
    return Finished(table);
}

ComPointer<IDispatch> MakeCatalog(const SharedLog& log) {
    auto tables = MakeDouble();
    tables->Define(L"Append", [log](const Inputs& inputs) {
        const auto state = TableObjects().at(V_DISPATCH(inputs.at(0)));
        Note(log, state->Description());
        log->tables[state->name];
        log->columns[state->name] = state->columns.size();
        return OwnedVariant();
    });
    auto catalog = MakeCounted(log);
    catalog->Define(L"Create", [log](const Inputs& inputs) {
        Note(log, "create " + TextAt(inputs, 0));
        const auto path = DatabaseFileOf(TextAt(inputs, 0));
        if (std::filesystem::exists(path)) {
            throw ScriptedFailure{databaseExists, "Database already exists.",
                                  "Microsoft JET Database Engine"};
        }
        std::ofstream(path, std::ios::binary).write("\0\1\0\0Standard Jet DB", 20);
        return OwnedVariant();
    });
    DefineObject(*catalog.Get(), L"Tables", tables);
    return Finished(catalog);
}

ComPointer<IDispatch> MakeConnection(const SharedLog& log) {
    auto connection = MakeCounted(log);
    connection->Define(L"Open", [log](const Inputs& inputs) {
        Note(log, "connect " + TextAt(inputs, 0) + "|" + TextAt(inputs, 1) + "|" + TextAt(inputs, 2) + "|" +
                      std::to_string(NumberAt(inputs, 3)));
        return OwnedVariant();
    });
    connection->Define(L"BeginTrans", [log](const Inputs&) {
        Note(log, "begin");
        log->beforeTransaction = log->tables;
        return windows::ToAutomation(1);
    });
    connection->Define(L"CommitTrans", [log](const Inputs&) {
        Note(log, "commit");
        return OwnedVariant();
    });
    connection->Define(L"RollbackTrans", [log](const Inputs&) {
        log->tables = log->beforeTransaction;
        Note(log, "rollback");
        return OwnedVariant();
    });
    return Finished(connection);
}

/// A recordset's place in its table; a row that is being added stands after the last one.
struct Cursor {
    std::string table;
    std::size_t row = 0;
    bool isDeleted = false;
    std::optional<std::vector<Variant>> added;
};

ComPointer<IDispatch> MakeField(const SharedLog& log, const std::shared_ptr<Cursor>& cursor,
                                std::size_t column) {
    auto field = MakeDouble();
    field->Define(L"Value", [log, cursor, column](const Inputs& inputs) {
        if (inputs.empty()) {
            return windows::ToAutomation(log->tables[cursor->table].at(cursor->row).at(column));
        }
        Variant value = windows::FromAutomation(*inputs[0]);
        if (value.Is<std::string>() && value.As<std::string>().empty()) {
            throw ScriptedFailure{E_FAIL, "Field cannot be a zero-length string.", "double"};
        }
        if (value.Is<std::string>() && windows::ToWide(value.As<std::string>()).size() > defaultLength) {
            throw ScriptedFailure{fieldTooSmall, "The field is too small to accept the amount of data.",
                                  "double"};
        }
        cursor->added.value().at(column) = value;
        return OwnedVariant();
    });
    return Finished(field);
}

ComPointer<DispatchDouble> MakeFields(const SharedLog& log, const std::shared_ptr<Cursor>& cursor) {
    auto fields = MakeDouble();
    fields->Define(L"Count", [log, cursor](const Inputs&) {
        return windows::ToAutomation(static_cast<std::int32_t>(log->columns.at(cursor->table)));
    });
    fields->Define(L"Item", [log, cursor](const Inputs& inputs) {
        const auto column = static_cast<std::size_t>(NumberAt(inputs, 0));
        if (column >= log->columns.at(cursor->table)) {
            throw ScriptedFailure{itemNotFound, "Item cannot be found in the collection", "ADODB.Fields"};
        }
        return ObjectValue(MakeField(log, cursor, column));
    });
    return fields;
}

void DefineMoves(DispatchDouble& recordset, const SharedLog& log, const std::shared_ptr<Cursor>& cursor) {
    recordset.Define(L"EOF", [log, cursor](const Inputs&) {
        return windows::ToAutomation(!cursor->isDeleted && cursor->row >= log->tables[cursor->table].size());
    });
    recordset.Define(L"MoveNext", [cursor](const Inputs&) {
        cursor->row += cursor->isDeleted ? 0U : 1U;
        cursor->isDeleted = false;
        return OwnedVariant();
    });
}

void DefineChanges(DispatchDouble& recordset, const SharedLog& log, const std::shared_ptr<Cursor>& cursor) {
    recordset.Define(L"Delete", [log, cursor](const Inputs&) {
        Note(log, "delete");
        auto& rows = log->tables[cursor->table];
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(cursor->row));
        cursor->isDeleted = true;
        return OwnedVariant();
    });
    recordset.Define(L"AddNew", [log, cursor](const Inputs&) {
        cursor->added.emplace(log->columns.at(cursor->table), Null{});
        return OwnedVariant();
    });
    recordset.Define(L"Update", [log, cursor](const Inputs&) {
        Note(log, "update");
        log->tables[cursor->table].push_back(cursor->added.value());
        cursor->added.reset();
        return OwnedVariant();
    });
}

ComPointer<IDispatch> MakeRecordset(const SharedLog& log) {
    const auto cursor = std::make_shared<Cursor>();
    auto recordset = MakeCounted(log);
    recordset->Define(L"Open", [log, cursor](const Inputs& inputs) {
        cursor->table = TextAt(inputs, 0);
        const bool isConnected = V_VT(inputs.at(1)) == VT_DISPATCH && V_DISPATCH(inputs.at(1)) != nullptr;
        Note(log, "open " + cursor->table + (isConnected ? "" : " unconnected") + " " +
                      std::to_string(NumberAt(inputs, 2)) + " " + std::to_string(NumberAt(inputs, 3)) + " " +
                      std::to_string(NumberAt(inputs, 4)));
        return OwnedVariant();
    });
    recordset->Define(L"Close", [log](const Inputs&) {
        Note(log, "close");
        return OwnedVariant();
    });
    DefineMoves(*recordset.Get(), log, cursor);
    DefineChanges(*recordset.Get(), log, cursor);
    DefineObject(*recordset.Get(), L"Fields", MakeFields(log, cursor));
    return Finished(recordset);
}

} // namespace

JetDoubles::JetDoubles() {
    const auto add = [this](const wchar_t* progId, ComPointer<IDispatch> (*make)(const SharedLog&)) {
        return std::make_unique<NamedClass>(progId, [log = log_, make] { return make(log); });
    };
    classes_.push_back(add(L"ADOX.Catalog", MakeCatalog));
    classes_.push_back(add(L"ADOX.Table", MakeTable));
    classes_.push_back(add(L"ADODB.Connection", MakeConnection));
    classes_.push_back(add(L"ADODB.Recordset", MakeRecordset));
    provider_ = add(L"Microsoft.Jet.OLEDB.4.0", MakeConnection);
}

} // namespace qel::test
