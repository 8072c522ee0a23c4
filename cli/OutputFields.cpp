#include "cli/OutputFields.h"

#include "platform/value/ValueText.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace qel {

namespace {

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    }
    return quoted + '"';
}

} // namespace

void PrintCsvLine(const std::vector<std::string>& fields, std::ostream& output) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        output << (i == 0 ? "" : ",") << CsvField(fields[i]);
    }
    output << '\n';
}

nlohmann::ordered_json ValueJson(const Variant& value) {
    if (value.Is<double>() && std::isfinite(value.As<double>())) {
        return value.As<double>();
    }
    if (value.Is<double>()) { // JSON has no such numbers
        return std::isnan(value.As<double>()) ? "NaN" : value.As<double>() < 0 ? "-Infinity" : "Infinity";
    }
    if (value.Is<bool>()) {
        return value.As<bool>();
    }
    if (value.Is<Null>() || value.Is<Empty>()) {
        return nullptr;
    }
    return ValueText(value);
}

void PrintJson(const nlohmann::ordered_json& document, std::ostream& output) {
    using Handler = nlohmann::ordered_json::error_handler_t;
    output << document.dump(2, ' ', false, Handler::replace) << '\n';
}

} // namespace qel
