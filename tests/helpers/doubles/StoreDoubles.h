#pragma once

#include "platform/value/AutomationError.h"
#include "store/StoreEnvironment.h"

#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace qel::testing {

struct ShownMessage {
    std::int32_t style;
    std::string title, text;

    bool operator==(const ShownMessage&) const = default;
};

/// Writes message boxes down; raises what no box should when `broken`.
class RecordedMessages : public MessageDisplay {
public:
    std::vector<ShownMessage> shown;
    std::vector<MessageBoxAnswer> answers; ///< to the boxes to come; OK when there are no more
    bool broken = false;

    MessageBoxAnswer Show(std::int32_t style, const std::string& title, const std::string& text) override {
        if (broken) {
            throw std::runtime_error("no screen");
        }
        shown.push_back({style, title, text});
        if (answers.empty()) {
            return MessageBoxAnswer::Ok;
        }
        const auto answer = answers.front();
        answers.erase(answers.begin());
        return answer;
    }
};

/// A registry in memory that gives its handles out again, the one closed last first.
class ScriptedRegistry : public Registry {
public:
    std::map<std::pair<KeyHandle, std::string>, std::map<std::string, RegistryValue>> keys;
    std::map<KeyHandle, std::pair<KeyHandle, std::string>> open;
    KeyHandle nextHandle = 0x1A4;

    std::optional<KeyHandle> OpenKey(KeyHandle root, const std::string& subKey) override {
        if (!keys.contains({root, subKey})) {
            return std::nullopt;
        }
        const KeyHandle handle = free_.empty() ? nextHandle++ : free_.back();
        if (!free_.empty()) {
            free_.pop_back();
        }
        open[handle] = {root, subKey};
        return handle;
    }
    std::optional<RegistryValue> QueryValue(KeyHandle key, const std::string& name) override {
        const auto& values = keys.at(open.at(key));
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    std::int32_t CloseKey(KeyHandle key) override {
        constexpr std::int32_t invalidHandle = 6;
        if (open.erase(key) == 0) {
            return invalidHandle;
        }
        free_.push_back(key);
        return 0;
    }

private:
    std::vector<KeyHandle> free_;
};

/// Answers from a script and records every call: "read SECTION/KEY CAPACITY FILE", ...
class ScriptedProfiles : public ProfileFiles {
public:
    std::string value, section;
    std::vector<std::string> log;

    std::string ReadString(const std::string& name, const std::string& key, std::size_t capacity,
                           const std::string& file) override {
        log.push_back("read " + name + "/" + key + " " + std::to_string(capacity) + " " + file);
        return value;
    }
    std::int32_t WriteString(const std::string& name, const std::string& key, const std::string& text,
                             const std::string& file) override {
        log.push_back("write " + name + "/" + key + "=" + text + " " + file);
        return 1;
    }
    std::string ReadSection(const std::string& name, std::size_t capacity, const std::string& file) override {
        log.push_back("section " + name + " " + std::to_string(capacity) + " " + file);
        return section;
    }
};

/// Keeps rows in memory and records "create TEXT", "table NAME: COLUMN TYPE SIZE ATTRIBUTES, ...",
/// "open TEXT", "read TABLE", "replace TABLE".
class RecordedDatabase : public DatabaseEngine {
public:
    std::vector<std::string> log;
    std::map<std::string, std::vector<TableRow>> rows; ///< of each table
    bool isMissing = false, failsToCreate = false, failsToOpen = false;

    std::string Name() const override { return "recorder"; }
    std::unique_ptr<DatabaseCatalog> NewCatalog() override {
        if (isMissing) {
            throw AutomationError(429, "ActiveX component can't create object");
        }
        return std::make_unique<Catalog>(*this);
    }
    std::unique_ptr<DatabaseConnection> Open(const std::string& connectionString) override {
        log.push_back("open " + connectionString);
        if (failsToOpen) {
            throw AutomationError(-2147467259, "Could not find file.", "Microsoft JET Database Engine");
        }
        return std::make_unique<Rows>(*this);
    }

private:
    class Rows : public DatabaseConnection {
    public:
        explicit Rows(RecordedDatabase& database) : database_(database) {}

        std::vector<TableRow> ReadRows(const std::string& table) override {
            database_.log.push_back("read " + table);
            return database_.rows[table];
        }
        void ReplaceRows(const std::string& table, const std::vector<TableRow>& rows) override {
            database_.log.push_back("replace " + table);
            database_.rows[table] = rows;
        }

    private:
        RecordedDatabase& database_;
    };

    class Catalog : public DatabaseCatalog {
    public:
        explicit Catalog(RecordedDatabase& database) : database_(database) {}

        void Create(const std::string& connectionString) override {
            database_.log.push_back("create " + connectionString);
            if (database_.failsToCreate) {
                throw AutomationError(-2147217897, "Database already exists.",
                                      "Microsoft JET Database Engine");
            }
        }
        void AppendTable(const TableDefinition& table) override {
            std::string line;
            for (const auto& column : table.columns) {
                line += (line.empty() ? "table " + table.name + ": " : ", ") + column.name + " " +
                        std::to_string(static_cast<int>(column.type)) + " " +
                        std::to_string(column.definedSize) + " " + std::to_string(column.attributes);
            }
            database_.log.push_back(line);
        }

    private:
        RecordedDatabase& database_;
    };
};

/// A store over doubles, with Windows' separator. The suite's key exists and is empty.
struct StoreBench {
    ScriptedRegistry registry;
    ScriptedProfiles profiles;
    RecordedDatabase database;
    RecordedMessages messages;
    StoreEnvironment store{registry, profiles, database, messages, R"(C:\Program Files\Qel)", '\\'};

    std::map<std::string, RegistryValue>& SuiteKey() {
        return registry.keys[{RootKey::CurrentUser, R"(SOFTWARE\QRN\Pralix 17)"}];
    }

    StoreBench() { SuiteKey(); }
};

} // namespace qel::testing
