#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A JSON value and where it stands, for messages: "cubes[0].dimensions[2].name".
struct JsonPlace {
    const nlohmann::json* value = nullptr;
    std::string place;
    const std::string* fileName = nullptr;

    /// "FILE: place"
    std::string Where() const;
    /// Raises EngineError (InvalidDefinition): "FILE: place: fault".
    [[noreturn]] void Fail(const std::string& fault) const;

    /// The value as one type; Fail says which was expected.
    std::string Text() const; ///< not empty
    bool Boolean() const;
    int Integer(int least, int most) const;
    /// The elements of an array of at least one.
    std::vector<JsonPlace> Elements() const;
    /// A text, or an array of at least one text.
    std::vector<std::string> Texts() const;
    /// The text's position among `words`.
    std::size_t OneOf(const std::vector<std::string>& words) const;
};

/// An object whose keys are asked for by name; Finish refuses the keys that nobody asked for.
class JsonObject {
public:
    explicit JsonObject(JsonPlace place);

    const JsonPlace& Place() const { return place_; }
    JsonPlace Required(const std::string& key);
    std::optional<JsonPlace> Optional(const std::string& key);
    std::string TextOr(const std::string& key, const std::string& whenAbsent);
    /// Every key and its value, in order of the keys.
    std::vector<std::pair<std::string, JsonPlace>> All();
    /// Raises EngineError (InvalidDefinition) for an unknown key, with the known one that comes nearest.
    void Finish() const;

private:
    /// The keys that nobody has asked for yet.
    std::vector<std::string> UnknownKeys() const;
    JsonPlace Child(const std::string& key, const nlohmann::json& value) const;

    JsonPlace place_;
    std::set<std::string> known_;
};

/// Parses a text with comments. Raises EngineError (InvalidDefinition) with line and column, also for a key
/// that an object has twice.
nlohmann::json ParseJson(std::string_view text, const std::string& fileName);

} // namespace qel::engine
