#include "engine/build/JsonObject.h"

#include "qel/engine/EngineError.h"
#include "text/Suggestion.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace qel::engine {

std::string JsonPlace::Where() const {
    return place.empty() ? file->name : fmt::format("{}: {}", file->name, place);
}

void JsonPlace::Fail(const std::string& fault) const {
    throw EngineError(ErrorKind::InvalidDefinition, fmt::format("{}: {}", Where(), fault));
}

std::string JsonPlace::Text() const {
    if (!value->is_string()) {
        Fail(fmt::format("expected a text, found {}", value->type_name()));
    }
    auto text = value->get<std::string>();
    if (text.empty()) {
        Fail("expected a text that is not empty");
    }
    return text;
}

bool JsonPlace::Boolean() const {
    if (!value->is_boolean()) {
        Fail(fmt::format("expected true or false, found {}", value->type_name()));
    }
    return value->get<bool>();
}

int JsonPlace::Integer(int least, int most) const {
    const bool isInRange = value->is_number_integer() && *value >= least && *value <= most;
    if (!isInRange) {
        Fail(fmt::format("expected a whole number from {} to {}", least, most));
    }
    return value->get<int>();
}

std::vector<JsonPlace> JsonPlace::Elements() const {
    if (!value->is_array()) {
        Fail(fmt::format("expected an array, found {}", value->type_name()));
    }
    if (value->empty()) {
        Fail("expected at least one element");
    }
    std::vector<JsonPlace> elements;
    for (std::size_t i = 0; i < value->size(); ++i) {
        elements.push_back({&(*value)[i], fmt::format("{}[{}]", place, i), file});
    }
    return elements;
}

std::vector<std::string> JsonPlace::Texts() const {
    if (value->is_string()) {
        return {Text()};
    }
    std::vector<std::string> texts;
    for (const JsonPlace& element : Elements()) {
        texts.push_back(element.Text());
    }
    return texts;
}

std::size_t JsonPlace::OneOf(const std::vector<std::string>& words) const {
    const auto found =
        value->is_string() ? std::find(words.begin(), words.end(), value->get<std::string>()) : words.end();
    if (found == words.end()) {
        Fail(fmt::format("expected one of \"{}\", found {}", fmt::join(words, "\", \""),
                         value->dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)));
    }
    return static_cast<std::size_t>(found - words.begin());
}

JsonObject::JsonObject(JsonPlace place) : place_(std::move(place)) {
    if (!place_.value->is_object()) {
        place_.Fail(fmt::format("expected an object, found {}", place_.value->type_name()));
    }
}

JsonPlace JsonObject::Child(const std::string& key, const nlohmann::json& value) const {
    return {&value, place_.place.empty() ? key : place_.place + "." + key, place_.file};
}

JsonPlace JsonObject::Required(const std::string& key) {
    const auto child = Optional(key);
    if (child) {
        return *child;
    }
    const auto others = UnknownKeys();
    const std::string* slip = NearestWord(key, others);
    place_.Fail(fmt::format("the key \"{}\" is missing{}", key,
                            slip == nullptr ? "" : fmt::format("; is \"{}\" meant for it?", *slip)));
}

std::optional<JsonPlace> JsonObject::Optional(const std::string& key) {
    known_.insert(key);
    const auto found = place_.value->find(key);
    if (found == place_.value->end()) {
        return std::nullopt;
    }
    return Child(key, *found);
}

std::string JsonObject::TextOr(const std::string& key, const std::string& whenAbsent) {
    const auto child = Optional(key);
    return child ? child->Text() : whenAbsent;
}

std::vector<std::pair<std::string, JsonPlace>> JsonObject::All() {
    std::vector<std::pair<std::string, JsonPlace>> all;
    for (const auto& [key, value] : place_.value->items()) {
        known_.insert(key);
        all.emplace_back(key, Child(key, value));
    }
    return all;
}

std::vector<std::string> JsonObject::UnknownKeys() const {
    std::vector<std::string> unknown;
    for (const auto& [key, value] : place_.value->items()) {
        if (known_.count(key) == 0) {
            unknown.push_back(key);
        }
    }
    return unknown;
}

void JsonObject::Finish() const {
    const std::vector<std::string> known(known_.begin(), known_.end());
    for (const std::string& key : UnknownKeys()) {
        const auto hint = hints_.find(key);
        place_.file->unknownKeys.push_back(
            fmt::format("{}unknown key \"{}\"{}", place_.place.empty() ? "" : place_.place + ": ", key,
                        hint == hints_.end() ? Suggestion(key, known) : "; " + hint->second));
    }
}

void JsonFile::RefuseUnknownKeys() const {
    if (!unknownKeys.empty()) {
        throw EngineError(ErrorKind::InvalidDefinition,
                          fmt::format("{}: {}", name, fmt::join(unknownKeys, "\n  ")));
    }
}

nlohmann::json ParseJson(std::string_view text, const std::string& fileName) {
    using nlohmann::json;
    const auto fail = [&fileName](std::string_view fault) {
        throw EngineError(ErrorKind::InvalidDefinition, fmt::format("{}: {}", fileName, fault));
    };
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark) {
        text.remove_prefix(byteOrderMark.size());
    }
    std::vector<std::set<std::string>> keys; // of the objects being parsed, outermost first
    const json::parser_callback_t noteKeys = [&](int, json::parse_event_t event, json& parsed) {
        if (event == json::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == json::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == json::parse_event_t::key &&
                   !keys.back().insert(parsed.get<std::string>()).second) {
            fail(fmt::format("the key \"{}\" stands twice in one object", parsed.get<std::string>()));
        }
        return true;
    };
    try {
        return json::parse(text, noteKeys, true, true);
    } catch (const json::exception& error) {
        // "[json.exception.parse_error.101] parse error at line 3, column 5: what was expected"
        std::string_view message = error.what();
        const auto place = message.find(" at line ");
        fail(place == std::string_view::npos ? message : message.substr(place + 4));
    }
    return {};
}

} // namespace qel::engine
