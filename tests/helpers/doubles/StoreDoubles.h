#pragma once

#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/value/AutomationError.h"
#include "store/StoreEnvironment.h"

#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

struct ShownMessage {
    std::int32_t style;
    std::string title, text;

    bool operator==(const ShownMessage&) const = default;
};

/// Records message boxes; raises an error of the standard library when `broken`.
class RecordedMessages : public MessageDisplay {
public:
    std::vector<ShownMessage> shown;
    std::vector<MessageBoxAnswer> answers; ///< to the next boxes; OK when there are no more
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

/// A registry in memory. It reuses closed handles, the last one first.
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

/// Answers from a script and records calls: "read SECTION/KEY CAPACITY FILE", ...
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

/// A store over doubles and SQLite, with Windows' separator. The suite's key exists and is empty.
struct StoreBench {
    ScriptedRegistry registry;
    ScriptedProfiles profiles;
    SqliteDatabase database;
    RecordedMessages messages;
    StoreEnvironment store{registry, profiles, database, messages, R"(C:\Program Files\Qel)", '\\'};

    std::map<std::string, RegistryValue>& SuiteKey() {
        return registry.keys[{RootKey::CurrentUser, R"(SOFTWARE\QRN\Pralix 17)"}];
    }

    StoreBench() { SuiteKey(); }
};

} // namespace qel::test
