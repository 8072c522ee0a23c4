#pragma once

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A file and what was found in it while it was read.
struct JsonFile {
    std::string name;
    std::vector<std::string> unknownKeys; ///< each with its place and a hint

    /// Raises EngineError (InvalidDefinition) when there are unknown keys, naming all of them.
    void RefuseUnknownKeys() const;
};

/// A JSON value with its location for messages, such as "cubes[0].dimensions[2].name".
struct JsonPlace {
    const nlohmann::json* value = nullptr;
    std::string place;
    JsonFile* file = nullptr;

    /// "FILE: place"
    std::string Where() const;
    /// Raises EngineError (InvalidDefinition): "FILE: place: fault".
    [[noreturn]] void Fail(const std::string& fault) const;

    /// The value as the given type; otherwise raises an error that says what was expected.
    std::string Text() const; ///< not empty
    bool Boolean() const;
    int Integer(int least, int most) const;
    /// The elements of a non-empty array.
    std::vector<JsonPlace> Elements() const;
    /// A text, or a non-empty array of texts.
    std::vector<std::string> Texts() const;
    /// The index of the text in `words`.
    std::size_t OneOf(const std::vector<std::string>& words) const;
};

/// An object read key by key; Finish notes keys that were never read.
class JsonObject {
public:
    explicit JsonObject(JsonPlace place);

    const JsonPlace& Place() const { return place_; }
    JsonPlace Required(const std::string& key);
    std::optional<JsonPlace> Optional(const std::string& key);
    std::string TextOr(const std::string& key, const std::string& whenAbsent);
    /// All keys and values, sorted by key.
    std::vector<std::pair<std::string, JsonPlace>> All();
    /// Gives an unknown key of this name a hint instead of the nearest known key.
    void HintFor(const std::string& key, const std::string& hint) { hints_[key] = hint; }
    /// Adds the keys that were never read to the file's unknown ones.
    void Finish() const;

private:
    /// The keys not read yet.
    std::vector<std::string> UnknownKeys() const;
    JsonPlace Child(const std::string& key, const nlohmann::json& value) const;

    JsonPlace place_;
    std::set<std::string> known_;
    std::map<std::string, std::string> hints_; ///< by unknown key
};

/// Parses JSON with comments. Raises EngineError (InvalidDefinition) with line and column, also for a
/// duplicate key.
nlohmann::json ParseJson(std::string_view text, const std::string& fileName);

} // namespace qel::engine
