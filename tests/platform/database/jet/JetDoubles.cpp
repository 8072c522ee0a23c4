#include "tests/platform/database/jet/JetDoubles.h"

#include "platform/database/DatabaseFile.h"
#include "platform/windows/VariantConversion.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>

namespace qel::test {

namespace {

using SharedLog = std::shared_ptr<JetLog>;

constexpr auto databaseExists = static_cast<HRESULT>(0x80040E17);
constexpr auto fieldTooSmall = static_cast<HRESULT>(0x80040E57);
constexpr auto itemNotFound = static_cast<HRESULT>(0x800A0CC1);
constexpr std::size_t defaultLength = 255;

/// Records the call, or fails if it is the scripted one.
void Note(const SharedLog& log, const std::string& call) {
    log->calls.push_back(call);
    if (call.substr(0, call.find(' ')) == log->failingCall) {
        throw ScriptedFailure{E_FAIL, "scripted: " + call, "double"};
    }
}

/// An object that is counted for as long as its members live.
ComPointer<IDispatch> MakeCounted(const SharedLog& log,
                                  const std::function<void(DispatchDouble& object)>& define) {
    ++log->alive;
    const std::shared_ptr<void> life(nullptr, [log](void*) { --log->alive; });
    return MakeObject([&](DispatchDouble& object) {
        object.DefineNumber(DISPID_VALUE, [life](const Inputs&) { return OwnedVariant(); });
        define(object);
    });
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

/// The tables by their objects, for Tables.Append.
std::map<IDispatch*, std::shared_ptr<TableState>>& TableObjects() {
    static std::map<IDispatch*, std::shared_ptr<TableState>> tables;
    return tables;
}

ComPointer<IDispatch> MakeColumn(const std::shared_ptr<TableState>& table, const std::string& name) {
    return MakeObject([&](DispatchDouble& column) {
        table->Named(name);
        column.Put(L"Attributes", [table, name](const Inputs& values) {
            table->Named(name).attributes = NumberAt(values, 0);
        });
    });
}

ComPointer<IDispatch> MakeTable(const SharedLog& log) {
    return MakeCounted(log, [](DispatchDouble& table) {
        const auto state = std::make_shared<TableState>();
        auto columns = MakeObject([&](DispatchDouble& object) {
            object.Method(L"Append", [state](const Inputs& inputs) {
                state->columns.push_back({TextAt(inputs, 0), NumberAt(inputs, 1), NumberAt(inputs, 2), 0});
            });
            object.Define(L"Item", [state](const Inputs& inputs) {
                return ObjectValue(MakeColumn(state, TextAt(inputs, 0)));
            });
        });
        table.Put(L"Name", [state](const Inputs& inputs) { state->name = TextAt(inputs, 0); });
        table.Child(L"Columns", [columns] { return columns; });
        TableObjects()[&table] = state;
    });
}

ComPointer<IDispatch> MakeCatalog(const SharedLog& log) {
    return MakeCounted(log, [&](DispatchDouble& catalog) {
        auto tables = MakeObject([&](DispatchDouble& object) {
            object.Method(L"Append", [log](const Inputs& inputs) {
                const auto state = TableObjects().at(V_DISPATCH(inputs.at(0)));
                Note(log, state->Description());
                log->tables[state->name];
                log->columns[state->name] = state->columns.size();
            });
        });
        catalog.Method(L"Create", [log](const Inputs& inputs) {
            Note(log, "create " + TextAt(inputs, 0));
            const auto path = DatabaseFileOf(TextAt(inputs, 0));
            if (std::filesystem::exists(path)) {
                throw ScriptedFailure{databaseExists, "Database already exists.",
                                      "Microsoft JET Database Engine"};
            }
            std::ofstream(path, std::ios::binary).write("\0\1\0\0Standard Jet DB", 20);
        });
        catalog.Child(L"Tables", [tables] { return tables; });
    });
}

ComPointer<IDispatch> MakeConnection(const SharedLog& log) {
    return MakeCounted(log, [&](DispatchDouble& connection) {
        connection.Method(L"Open", [log](const Inputs& inputs) {
            Note(log, fmt::format("connect {}|{}|{}|{}", TextAt(inputs, 0), TextAt(inputs, 1),
                                  TextAt(inputs, 2), NumberAt(inputs, 3)));
        });
        connection.Define(L"BeginTrans", [log](const Inputs&) {
            Note(log, "begin");
            log->beforeTransaction = log->tables;
            return windows::ToAutomation(1);
        });
        connection.Method(L"CommitTrans", [log](const Inputs&) { Note(log, "commit"); });
        connection.Method(L"RollbackTrans", [log](const Inputs&) {
            log->tables = log->beforeTransaction;
            Note(log, "rollback");
        });
    });
}

/// A recordset's current row. A row being added follows the last one.
struct Cursor {
    std::string table;
    std::size_t row = 0;
    bool isDeleted = false;
    std::optional<std::vector<Variant>> added;
};

ComPointer<IDispatch> MakeField(const SharedLog& log, const std::shared_ptr<Cursor>& cursor,
                                std::size_t column) {
    return MakeObject([&](DispatchDouble& field) {
        const auto value = [log, cursor, column](const Inputs& inputs) {
            if (inputs.empty()) {
                return windows::ToAutomation(log->tables[cursor->table].at(cursor->row).at(column));
            }
            Variant added = windows::FromAutomation(*inputs[0]);
            if (added.Is<std::string>() && added.As<std::string>().empty()) {
                throw ScriptedFailure{E_FAIL, "Field cannot be a zero-length string.", "double"};
            }
            if (added.Is<std::string>() && windows::ToWide(added.As<std::string>()).size() > defaultLength) {
                throw ScriptedFailure{fieldTooSmall, "The field is too small to accept the amount of data.",
                                      "double"};
            }
            cursor->added.value().at(column) = added;
            return OwnedVariant();
        };
        field.Define(L"Value", value, DISPATCH_PROPERTYGET | DISPATCH_PROPERTYPUT);
    });
}

ComPointer<IDispatch> MakeFields(const SharedLog& log, const std::shared_ptr<Cursor>& cursor) {
    const auto count = static_cast<std::int32_t>(log->columns.at(cursor->table));
    return MakeCollection(count, [log, cursor, count](const Variant& key) {
        const auto column = key.As<std::int32_t>();
        if (column >= count) {
            throw ScriptedFailure{itemNotFound, "Item cannot be found in the collection", "ADODB.Fields"};
        }
        return MakeField(log, cursor, static_cast<std::size_t>(column));
    });
}

void DefineMoves(DispatchDouble& recordset, const SharedLog& log, const std::shared_ptr<Cursor>& cursor) {
    recordset.Property(L"EOF", [log, cursor] {
        return Variant(!cursor->isDeleted && cursor->row >= log->tables[cursor->table].size());
    });
    recordset.Method(L"MoveNext", [cursor](const Inputs&) {
        cursor->row += cursor->isDeleted ? 0U : 1U;
        cursor->isDeleted = false;
    });
}

void DefineChanges(DispatchDouble& recordset, const SharedLog& log, const std::shared_ptr<Cursor>& cursor) {
    recordset.Method(L"Delete", [log, cursor](const Inputs&) {
        Note(log, "delete");
        auto& rows = log->tables[cursor->table];
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(cursor->row));
        cursor->isDeleted = true;
    });
    recordset.Method(L"AddNew", [log, cursor](const Inputs&) {
        cursor->added.emplace(log->columns.at(cursor->table), Null{});
    });
    recordset.Method(L"Update", [log, cursor](const Inputs&) {
        Note(log, "update");
        log->tables[cursor->table].push_back(cursor->added.value());
        cursor->added.reset();
    });
}

ComPointer<IDispatch> MakeRecordset(const SharedLog& log) {
    return MakeCounted(log, [&](DispatchDouble& recordset) {
        const auto cursor = std::make_shared<Cursor>();
        recordset.Method(L"Open", [log, cursor](const Inputs& inputs) {
            cursor->table = TextAt(inputs, 0);
            const bool isConnected = V_VT(inputs.at(1)) == VT_DISPATCH && V_DISPATCH(inputs.at(1)) != nullptr;
            Note(log, fmt::format("open {}{} {} {} {}", cursor->table, isConnected ? "" : " unconnected",
                                  NumberAt(inputs, 2), NumberAt(inputs, 3), NumberAt(inputs, 4)));
        });
        recordset.Method(L"Close", [log](const Inputs&) { Note(log, "close"); });
        DefineMoves(recordset, log, cursor);
        DefineChanges(recordset, log, cursor);
        recordset.Child(L"Fields", [log, cursor] { return MakeFields(log, cursor); });
    });
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
